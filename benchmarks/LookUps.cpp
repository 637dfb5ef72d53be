// One row of a loaded data base: its name by its id, its id by its name, a row by a whole key. The
// rivals hold the same rows: SQLite in its tables, asked by prepared statements, and std::map.

#include <map>
#include <string>
#include <vector>

#include "Benchmarks.h"
#include "Sqlite.h"

using namespace kestrin;

namespace benchmarks {
namespace {

// `key` tells the key of each question.
template <class Key, class Row, class KeyOf>
void RegisterMap(const std::string& what, const std::map<Key, Row>& map, KeyOf key) {
  RegisterQuestion(what + "/std::map", [&map, key](std::size_t i) { return &*map.find(key(i)); });
}

// A name in the forms in which it is asked for.
struct Name {
  explicit Name(const QIdxName& name) : wide(name), utf8(Text::ToUtf8(name.text)) {}
  QIdxName wide;
  std::string utf8;
};

// The data base in all its forms, and what is asked of them.
struct Fixture {
  explicit Fixture(const TemporaryFile& file) : data_base(file.Name()), params(data_base.Params()) {
    CParameterLake::Lake().clear();
    sqlite.Load(ReadFile(file.Name()));
    RequireSameRows();
    sqlite.Run("create index mode_names on \"<TMode>\" (c1)");
    for (const auto& [id, name] : params.Mode()) {
      by_id.emplace(id, name);
      by_name.emplace(name, id);
      names.try_emplace(id, name);
    }
    by_key.insert(params.LimSValue().begin(), params.LimSValue().end());
    ids = AnyKeys(params.Mode());
    for (const QIdx1& id : ids) asked_names.push_back(&names.at(id));
    keys = AnyKeys(params.LimSValue());
  }

  void RequireSameRows() const {
    auto sections = sqlite.Prepare("select name from sqlite_schema where type = 'table'");
    while (sections.Step()) {
      const std::string section(reinterpret_cast<const char*>(sections.Text(0)));
      auto count = sqlite.Prepare("select count(*) from \"" + section + "\"");
      count.Step();
      const std::size_t rows = TableCatalogue::Find(section)->row_count(data_base.Store());
      Require(static_cast<std::size_t>(count.Integer(0)) == rows, "SQLite has other rows");
    }
  }

  DataBase data_base;
  CQtParamInstance params;
  SqliteDataBase sqlite;
  std::map<QIdx1, QIdxName> by_id;
  std::map<QIdxName, QIdx1> by_name;
  std::map<QClavis, QVLimSValue> by_key;

  std::vector<QIdx1> ids;
  std::map<QIdx1, Name> names;
  std::vector<const Name*> asked_names;
  std::vector<QClavis> keys;
};

void RegisterNameById(const Fixture& fixture) {
  const std::string what = "look-up/name by id";
  RegisterQuestion(what + "/lKestrinDb",
                   [&](std::size_t i) { return fixture.params.ModeName(fixture.ids[i][0]); });
  RegisterMap(what, fixture.by_id, [&](std::size_t i) -> const QIdx1& { return fixture.ids[i]; });
  const auto statement = std::make_shared<SqliteStatement>(
      fixture.sqlite.Prepare("select c1 from \"<TMode>\" where c0 = ?"));
  RegisterQuestion(what + "/SQLite", [&fixture, statement](std::size_t i) {
    statement->Bind(0, static_cast<long long>(fixture.ids[i][0]));
    Require(statement->Step(), "no such row in SQLite");
    const auto* name = statement->Text(0);
    statement->Reset();
    return name;
  });
}

void RegisterIdByName(const Fixture& fixture) {
  const std::string what = "look-up/id by name";
  RegisterQuestion(what + "/lKestrinDb", [&](std::size_t i) {
    return fixture.params.ModeId(fixture.asked_names[i]->wide.text);
  });
  RegisterMap(what, fixture.by_name,
              [&](std::size_t i) -> const QIdxName& { return fixture.asked_names[i]->wide; });
  const auto statement = std::make_shared<SqliteStatement>(
      fixture.sqlite.Prepare("select c0 from \"<TMode>\" where c1 = ?"));
  RegisterQuestion(what + "/SQLite", [&fixture, statement](std::size_t i) {
    statement->Bind(0, std::string_view(fixture.asked_names[i]->utf8));
    Require(statement->Step(), "no such row in SQLite");
    const long long id = statement->Integer(0);
    statement->Reset();
    return id;
  });
}

void RegisterRowByKey(const Fixture& fixture) {
  const std::string what = "look-up/row by key";
  RegisterQuestion(what + "/lKestrinDb", [&, &rows = fixture.params.LimSValue()](std::size_t i) {
    return &*rows.find(fixture.keys[i]);
  });
  RegisterMap(what, fixture.by_key,
              [&](std::size_t i) -> const QClavis& { return fixture.keys[i]; });
  const auto statement = std::make_shared<SqliteStatement>(
      fixture.sqlite.Prepare("select c6, c7, c8 from \"<TLimSValue>\" where c0 = ? and c1 = ? and "
                             "c2 = ? and c3 = ? and c4 = ? and c5 = ?"));
  RegisterQuestion(what + "/SQLite", [&fixture, statement](std::size_t i) {
    for (int element = 0; element < Clavis::element_count; ++element) {
      statement->Bind(element, static_cast<long long>(fixture.keys[i][element]));
    }
    Require(statement->Step(), "no such row in SQLite");
    QVLimSValue row;
    row.first = static_cast<int>(statement->Integer(0));
    row.second = static_cast<float>(statement->Real(1));
    row.third = static_cast<float>(statement->Real(2));
    statement->Reset();
    return row;
  });
}

}  // namespace

void RegisterLookUps(const Files& files) {
  static const Fixture fixture(files.medium);
  RegisterNameById(fixture);
  RegisterIdByName(fixture);
  RegisterRowByKey(fixture);
}

}  // namespace benchmarks
