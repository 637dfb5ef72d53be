// What these programs share. Each of them is a host that uses every operation of one family of
// classes once: that it compiles, links and runs is all it is for.
#pragma once

#undef NDEBUG
#include <lKestrinDb.h>

#include <array>
#include <bitset>
#include <cassert>
#include <cstdint>
#include <functional>
#include <iostream>
#include <list>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

template <class... Results>
void use(const Results&...) {}

// A handle on the sample. The programs run in its folder.
inline CQtParamInstance load() {
  CQtParamInstance db;
  CParameterLake::Lake().read(L"gearbox.par");
  assert(db.ReadTablesFromCandidateLake());
  return db;
}
