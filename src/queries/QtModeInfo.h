// Where virtual modes get their names. A virtual mode stands in no table: it is a test step cut
// into bands of running values, and its name tells the state of the machine and the bands:
//
//   Spur set · 750rpm--S · 15Nm      (without the blanks)
//   |          |      |
//   |          |      direction of the signal, if its row in <TAutoModeParam> has one
//   |          centre of the band, unit of the signal
//   physical mode
//
// Nothing is kept here: a name is made from the tables each time it is asked for. The unit's text
// goes into its row on the way (Units.h).
#pragma once

#include <string>

#include "frame/TableList.h"

class CQtParamStore;

class CQtModeInfo {
 public:
  using AutoModeParams = kestrin::tables::TableOf<L"<TAutoModeParam>">;

  // The store must outlive this.
  explicit CQtModeInfo(CQtParamStore& param_store) : store_(&param_store) {}

  // The operations of CQtParamInstance of the same names.
  std::wstring VirtModeNameFragment(AutoModeParams::const_iterator row, bool positive,
                                    float position, unsigned precision) const;
  std::wstring VirtModeName(int id) const;

  // The name made for a virtual mode, as CQtParamInstance::ModeName gives it.
  const wchar_t* MadeName(int id) const;

 private:
  CQtParamStore* store_;
};
