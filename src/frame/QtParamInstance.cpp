#include "frame/QtParamInstance.h"

#include "frame/QtParamDerived.h"
#include "frame/QtParamServer.h"

CQtParamInstance::CQtParamInstance(CQtParamDistillery* store)
    : store_(store != nullptr ? store : &CQtParamServer::Object().store()) {}

bool CQtParamInstance::Initialized() const { return store_->initialized; }

bool CQtParamInstance::ReadTablesFromCandidateLake() {
  return store_->ReadTablesFromCandidateLake();
}

const kestrin::Refusal& CQtParamInstance::LastRefusal() const { return store_->LastRefusal(); }

void CQtParamInstance::WriteTablesToLocalSeas() const { store_->WriteTablesToLocalSeas(); }

void CQtParamInstance::PurgeTables() { store_->PurgeTables(); }

void CQtParamInstance::DumpTables(int limit) const {
  store_->DumpTables(limit);
  store_->derived->Dump(limit);
}

CString CQtParamInstance::BaseType() const { return store_->BaseType(); }
CString CQtParamInstance::AliasType() const { return store_->AliasType(); }
CString CQtParamInstance::CalibFileName() const { return store_->CalibFileName(); }
CString CQtParamInstance::LearnFileName() const { return store_->LearnFileName(); }

// Each accessor hands out the table that its declared type names.

const CQtParamInstance::Table<L"<TAliasType>">& CQtParamInstance::TypeNames() const {
  return store_->Table<L"<TAliasType>">();
}

const CQtParamInstance::Table<L"<TAliasBench>">& CQtParamInstance::BenchNames() const {
  return store_->Table<L"<TAliasBench>">();
}

const CQtParamInstance::Table<L"<TMode>">& CQtParamInstance::Mode() const {
  return store_->Table<L"<TMode>">();
}

const CQtParamInstance::Table<L"<TChannel>">& CQtParamInstance::Channel() const {
  return store_->Table<L"<TChannel>">();
}

const CQtParamInstance::Table<L"<TLocation>">& CQtParamInstance::Location() const {
  return store_->Table<L"<TLocation>">();
}

const CQtParamInstance::Table<L"<TInstrument>">& CQtParamInstance::Instrument() const {
  return store_->Table<L"<TInstrument>">();
}

const CQtParamInstance::Table<L"<TInstrumentParam>">& CQtParamInstance::InstrumentParam() const {
  return store_->Table<L"<TInstrumentParam>">();
}

const CQtParamInstance::Table<L"<TPhysMode>">& CQtParamInstance::PhysMode() const {
  return store_->Table<L"<TPhysMode>">();
}

const CQtParamInstance::Table<L"<TResamplingGroup>">& CQtParamInstance::ResamplingJob() const {
  return store_->Table<L"<TResamplingGroup>">();
}

const CQtParamInstance::Table<L"<TProcessingUnit>">& CQtParamInstance::ResamplingSet() const {
  return store_->Table<L"<TProcessingUnit>">();
}

const CQtParamInstance::Table<L"<TSensorGroup>">& CQtParamInstance::SensorGroup() const {
  return store_->Table<L"<TSensorGroup>">();
}

const CQtParamInstance::Table<L"<TTrigger>">& CQtParamInstance::Trigger() const {
  return store_->Table<L"<TTrigger>">();
}

const CQtParamInstance::Table<L"<TApplicationSignal>">& CQtParamInstance::ApplicationSignal()
    const {
  return store_->Table<L"<TApplicationSignal>">();
}

const CQtParamInstance::Table<L"<TSignalUnit>">& CQtParamInstance::SignalUnit() const {
  return store_->Table<L"<TSignalUnit>">();
}

const CQtParamInstance::Table<L"<TModeProperty>">& CQtParamInstance::ModeProperty() const {
  return store_->Table<L"<TModeProperty>">();
}

const CQtParamInstance::Table<L"<TModeTranslate>">& CQtParamInstance::ModeTranslate() const {
  return store_->Table<L"<TModeTranslate>">();
}

const CQtParamInstance::Table<L"<TChannelProperty>">& CQtParamInstance::ChannelProperty() const {
  return store_->Table<L"<TChannelProperty>">();
}

const CQtParamInstance::Table<L"<TLocationProperty>">& CQtParamInstance::LocationProperty() const {
  return store_->Table<L"<TLocationProperty>">();
}

const CQtParamInstance::Table<L"<TSensorGroupList>">& CQtParamInstance::SensorGroupList() const {
  return store_->Table<L"<TSensorGroupList>">();
}

const CQtParamInstance::Table<L"<TResamplingM>">& CQtParamInstance::ResamplingParams() const {
  return store_->Table<L"<TResamplingM>">();
}

const CQtParamInstance::Table<L"<TAppSignalProperty>">& CQtParamInstance::AppSignalProperty()
    const {
  return store_->Table<L"<TAppSignalProperty>">();
}

const CQtParamInstance::Table<L"<TTpSensorConfig>">& CQtParamInstance::SensorConfigName() const {
  return store_->Table<L"<TTpSensorConfig>">();
}

const CQtParamInstance::Table<L"<TTpSensorConfigProperty>">& CQtParamInstance::SensorConfiguration()
    const {
  return store_->Table<L"<TTpSensorConfigProperty>">();
}

const CQtParamInstance::Table<L"<TSignalDispatch>">& CQtParamInstance::SignalDispatch() const {
  return store_->Table<L"<TSignalDispatch>">();
}

const CQtParamInstance::Table<L"<TTriggerParam>">& CQtParamInstance::TriggerParam() const {
  return store_->Table<L"<TTriggerParam>">();
}

const CQtParamInstance::Table<L"<TAutoModeParam>">& CQtParamInstance::AutoModeParams() const {
  return store_->Table<L"<TAutoModeParam>">();
}

const CQtParamInstance::Table<L"<TAutoMode>">& CQtParamInstance::AutoMode() const {
  return store_->Table<L"<TAutoMode>">();
}

const CQtParamInstance::Table<L"<TAutoModeSelector>">& CQtParamInstance::AutoModeSelector() const {
  return store_->Table<L"<TAutoModeSelector>">();
}

const CQtParamInstance::Table<L"<TIpParamAndStore>">& CQtParamInstance::IpParamAndStore() const {
  return store_->Table<L"<TIpParamAndStore>">();
}

const CQtParamInstance::Table<L"<TInstrumentProperty>">& CQtParamInstance::InstrumentProperty()
    const {
  return store_->Table<L"<TInstrumentProperty>">();
}

const CQtParamInstance::Table<L"<TIpCalcParameter>">& CQtParamInstance::IpCalcParameter() const {
  return store_->Table<L"<TIpCalcParameter>">();
}

const CQtParamInstance::Table<L"<TIpLearnParams>">& CQtParamInstance::IpLearnParameter() const {
  return store_->Table<L"<TIpLearnParams>">();
}

const CQtParamInstance::Table<L"<TGrex11>">& CQtParamInstance::IpRunTest() const {
  return store_->Table<L"<TGrex11>">();
}

const CQtParamInstance::Table<L"<TLimSValue>">& CQtParamInstance::LimSValue() const {
  return store_->Table<L"<TLimSValue>">();
}

const CQtParamInstance::Table<L"<TLimCValue>">& CQtParamInstance::LimCValue() const {
  return store_->Table<L"<TLimCValue>">();
}

const CQtParamInstance::Table<L"<TIpPolygon>">& CQtParamInstance::IpPolygon() const {
  return store_->Table<L"<TIpPolygon>">();
}

const CQtParamInstance::Table<L"<TIpPolygonProperty>">& CQtParamInstance::IpPolygonProperty()
    const {
  return store_->Table<L"<TIpPolygonProperty>">();
}

const CQtParamInstance::Table<L"<TLimArea>">& CQtParamInstance::LimArea() const {
  return store_->Table<L"<TLimArea>">();
}

const CQtParamInstance::Table<L"<TGrex15>">& CQtParamInstance::RelativeLimit() const {
  return store_->Table<L"<TGrex15>">();
}

const CQtParamInstance::Table<L"<TErrorCode>">& CQtParamInstance::ErrorCode() const {
  return store_->Table<L"<TErrorCode>">();
}

const CQtParamInstance::Table<L"<TExternalError>">& CQtParamInstance::ExternalError() const {
  return store_->Table<L"<TExternalError>">();
}

const CQtParamInstance::Table<L"<TErrorGroup>">& CQtParamInstance::SeverityProperty() const {
  return store_->Table<L"<TErrorGroup>">();
}

const CQtParamInstance::Table<L"<TShadowGroupProperty>">& CQtParamInstance::ShadowGroupProperty()
    const {
  return store_->Table<L"<TShadowGroupProperty>">();
}

const CQtParamInstance::Table<L"<TRetype>">& CQtParamInstance::RetypeDefinition() const {
  return store_->Table<L"<TRetype>">();
}

const CQtParamInstance::Table<L"<TClavisUserNames>">& CQtParamInstance::ClavisUserNames() const {
  return store_->Table<L"<TClavisUserNames>">();
}

const CQtParamInstance::Table<L"<TLearnProcedures>">& CQtParamInstance::LearnProcedures() const {
  return store_->Table<L"<TLearnProcedures>">();
}

CQtParamInstance::Table<L"<TAppSignalProperty>">& CQtParamInstance::AppSignalProperty() {
  return store_->Table<L"<TAppSignalProperty>">();
}

CQtParamInstance::Table<L"<TSignalDispatch>">& CQtParamInstance::SignalDispatch() {
  return store_->Table<L"<TSignalDispatch>">();
}

CQtParamInstance::Table<L"<TTriggerParam>">& CQtParamInstance::TriggerParam() {
  return store_->Table<L"<TTriggerParam>">();
}

CQtParamInstance::Table<L"<TAutoModeParam>">& CQtParamInstance::AutoModeParams() {
  return store_->Table<L"<TAutoModeParam>">();
}

CQtParamInstance::Table<L"<TErrorCode>">& CQtParamInstance::ErrorCode() {
  return store_->Table<L"<TErrorCode>">();
}

CQtParamInstance::Table<L"<TErrorGroup>">& CQtParamInstance::SeverityProperty() {
  return store_->Table<L"<TErrorGroup>">();
}
