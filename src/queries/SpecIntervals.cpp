// The handle's look-ups in the spectrum intervals. Ids come as unsigned numbers and are the signed
// ones of the same 32 bits.
#include "frame/QtParamDerived.h"
#include "frame/QtParamDistillery.h"
#include "frame/QtParamInstance.h"
#include "spec/QtSpecIntervalStore.h"

const CQtParamInstance::SpecRecordMap& CQtParamInstance::IpSvOfSpec() const {
  return store_->Derived().SpecIntervals().IpSvOfSpec();
}

const wchar_t* CQtParamInstance::SpecIntervalDefinition(unsigned id) const {
  return store_->Derived().SpecIntervals().SpecIntervalDefinition(static_cast<int>(id));
}

CQtParamInstance::SpecIntervals CQtParamInstance::SpecIntervalRange(unsigned id) const {
  return store_->Derived().SpecIntervals().SpecIntervalRange(static_cast<int>(id));
}
