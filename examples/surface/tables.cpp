// Tables: the manager, a table class and a row of the host's own, typed tables over each container,
// the name table, and binary table files.
#include "use.h"

struct Counter : CQParamSeaTable {
  void Clear() override { sea = nullptr; }
  void Purge() override { calls = 0; }
  void Dump(int limit) override { calls += limit; }
  bool ReadTable(const CResourceSea* from) override { return from != nullptr; }
  bool ReadTable(CLake& lake) override { return ++calls > 0 && !lake.empty(); }
  bool WriteTable(CResourceSea* to) override { return to != nullptr; }

  int calls = 0;
};

struct Note : QValueBase {
  auto tuple() { return std::tuple<wchar_t*, long long&, QClavis&>(text, time, key); }
  auto tuple() const {
    return std::tuple<const wchar_t*, const long long&, const QClavis&>(text, time, key);
  }

  wchar_t text[200] = {};
  long long time = 0;
  QClavis key;
};

template <class Map>
void use_table() {
  CResourceSea sea;
  CQParamSeaTypedTable<Map> table(L"<TNote>"), bound(L"<TNote>", &sea);
  bound.insert({QIdx2(1, 2), Note()});
  assert(bound.WriteTable(nullptr) && table.ReadTable(&sea) && table.begin() != table.end());
  assert(bound.ReadTable(CParameterLake::Lake()) && !table.WriteTable(nullptr));
  CQParamTypedTable<Map> derived(L"<PiNote>");
  CQParamBaseTableInterface* const bases[] = {&derived, &bound};
  for (CQParamBaseTableInterface* base : bases) {
    base->Dump(0);
    base->Purge();
    base->Clear();
  }
}

struct File {
  unsigned Read(void*, unsigned) { return 0; }
  void Write(const void*, unsigned count) { written += count; }

  unsigned written = 0;
};

int main() {
  load();
  CQTableManager manager;
  CDynNameIdTable names(L"<TMode>");
  Counter counter;
  assert(manager.RegisterTable(counter) == 1u && manager.RegisterTable(names) == 2u);
  assert(manager.ReadTablesFromCandidateLake() && manager.Table(0) == &counter);
  assert(names.Idx(names.Name(130)) == 130 && names.IsValidId(130));
  assert(names.Insert(1, QIdxName(L"Warm up")).second && names.find(QIdx1(1)) == names.begin());
  manager.WriteTablesToLocalSeas();
  manager.DumpTables(1);
  manager.PurgeTables();
  manager.Clear();
  use_table<CDbUniqueMap<QIdx2, Note>>();
  use_table<CDbMultiMap<QIdx2, Note>>();
  use_table<CUniqueTreeMap<QIdx2, Note>>();
  use_table<std::map<QIdx2, Note>>();
  DynTables::log_error(L"Host", L"<TNote>", std::wstring(L"line"));

  File file;
  DynTables::QtTableHeader header;
  wchar_t text[4] = L"one";
  int number = 7;
  const int sizes[] = {4, -4};
  const void* const from[] = {&number, text};
  void* const to[] = {&number, text};
  DynTables::FillHeader(header, 2, 7, 8, 9);
  use(header.header_size, header.magic, header.format_version, header.param1, header.param2,
      header.param3);
  DynTables::WriteToFile(file, header);
  DynTables::WriteToFile(file, sizes, from, 2);
  assert(!DynTables::ReadFromFile(file, header) && !DynTables::ReadFromFile(file, sizes, to, 2));
  assert(file.written == 28 + 4 + 4 + 8);
}
