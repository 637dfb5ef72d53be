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

// Names that a host may have for itself, whatever the library calls its own helpers.
inline int Text() { return 0; }
inline int Number = 0, keys = 0, tables = 0, wildcard = 0, RGB = 0, LibraryVersion = 0;
struct Language {};
struct CWnd {};
struct CPoint {};
struct WindowHandle {};
enum CheckState { unchecked, checked };

template <class... Results>
void use(const Results&...) {}

// A handle on the sample. The programs run in its folder.
inline CQtParamInstance load() {
  CQtParamInstance db;
  CParameterLake::Lake().read(L"gearbox.par");
  assert(db.ReadTablesFromCandidateLake());
  return db;
}
