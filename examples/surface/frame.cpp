// The entrance: the server, handles, a store and a data base of the host's own.

// Words that the library leaves to its hosts.
struct Language {};
struct Number {};
int keys, tables, StringId;
void Text(Language, Number) {}

#include "use.h"

int main() {
  CQtParamServer& server = CQtParamServer::Object();
  server.Create();
  CQtParamInstance db = load();
  const CQtParamInstance same(nullptr);
  same.WriteTablesToLocalSeas();
  same.DumpTables(1);

  CQtParamDistillery own;
  CQtParamInstance other(&own);
  assert(other.ReadTablesFromCandidateLake() && other.TriggerId(10011) == db.TriggerId(10011));

  DataSource::CCandidateSeaDataSource<int> triggers(1, -1);
  DataSource::CCandidateSeaDataSource<const wchar_t*> definitions(3);
  const wchar_t* definition = nullptr;
  int trigger = 0;
  assert(!triggers.Read(trigger) && triggers.Read(trigger, triggers.begin()->first));
  assert(definitions.Read(definition, 17001));
  definitions.Reset();

  CQtParamStore store;
  const CQtParamStore& reader = store;
  assert(store.ReadTablesFromCandidateLake() && LoadModuleString(9) != L"");
  reader.WriteTablesToLocalSeas();
  reader.DumpTables(1);
  store.PurgeTables();
  store.Clear();

  db.PurgeTables();
  assert(same.Initialized() && same.BaseType() == L"" && other.BaseType() != L"");
  server.Clear();
  assert(!same.Initialized() && other.Initialized());
  Text(Language(), Number());
}
