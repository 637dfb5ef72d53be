#include "frame/QtParamInstance.h"

#include "frame/QtParamDerived.h"
#include "frame/QtParamServer.h"

CQtParamInstance::CQtParamInstance(CQtParamDistillery* store)
    : store_(store != nullptr ? store : &CQtParamServer::Object().store()) {}

bool CQtParamInstance::Initialized() const { return store_->initialized_; }

bool CQtParamInstance::ReadTablesFromCandidateLake() {
  return store_->ReadTablesFromCandidateLake();
}

const kestrin::Refusal& CQtParamInstance::LastRefusal() const { return store_->LastRefusal(); }

void CQtParamInstance::WriteTablesToLocalSeas() const { store_->WriteTablesToLocalSeas(); }

void CQtParamInstance::PurgeTables() { store_->PurgeTables(); }

void CQtParamInstance::DumpTables(int limit) const {
  store_->DumpTables(limit);
  store_->derived_->Dump(limit);
}

CString CQtParamInstance::BaseType() const { return store_->BaseType(); }
CString CQtParamInstance::AliasType() const { return store_->AliasType(); }
CString CQtParamInstance::CalibFileName() const { return store_->CalibFileName(); }
CString CQtParamInstance::LearnFileName() const { return store_->LearnFileName(); }
