// One row of a loaded data base: its name by its id, its id by its name, a row by a whole key. The
// rivals hold the same rows: SQLite in its tables, asked by prepared statements, and two maps.

#include <boost/container/flat_map.hpp>
#include <map>
#include <string>
#include <vector>

#include "Benchmarks.h"
#include "Sqlite.h"

namespace benchmarks {
namespace {

template <class Key, class Row>
struct Rivals {
  boost::container::flat_map<Key, Row> flat;
  std::map<Key, Row> tree;

  void Add(const Key& key, const Row& row) {
    flat.emplace_hint(flat.end(), key, row);
    tree.emplace_hint(tree.end(), key, row);
  }

  // `key` tells the key of each question.
  template <class KeyOf>
  void Register(const std::string& what, KeyOf key) const {
    RegisterQuestion(what + "/flat_map",
                     [this, key](std::size_t i) { return &*flat.find(key(i)); });
    RegisterQuestion(what + "/std::map",
                     [this, key](std::size_t i) { return &*tree.find(key(i)); });
  }
};

// The data base in all its forms.
struct Fixture {
  explicit Fixture(const TemporaryFile& file) : data_base(file.Name()), params(data_base.Params()) {
    CParameterLake::Lake().clear();
    sqlite.Load(ReadFile(file.Name()));
    sqlite.Run("create index mode_names on \"<TMode>\" (c1)");
    for (const auto& [id, name] : params.Mode()) {
      by_id.Add(id, name);
      by_name.tree.emplace(name, id);
    }
    by_name.flat.insert(by_name.tree.begin(), by_name.tree.end());
    for (const auto& [key, row] : params.LimSValue()) by_key.Add(key, row);
    modes = AnyRows(params.Mode());
    limits = AnyRows(params.LimSValue());
    for (const auto* mode : modes) utf8_names.push_back(Text::ToUtf8(mode->second.text));
  }

  const QIdx1& Id(std::size_t i) const { return modes[i]->first; }
  const QIdxName& Name(std::size_t i) const { return modes[i]->second; }
  const QClavis& Key(std::size_t i) const { return limits[i]->first; }

  DataBase data_base;
  CQtParamInstance params;
  SqliteDataBase sqlite;
  Rivals<QIdx1, QIdxName> by_id;
  Rivals<QIdxName, QIdx1> by_name;
  Rivals<QClavis, QVLimSValue> by_key;

  std::vector<const CNameMap::value_type*> modes;
  std::vector<const std::pair<QClavis, QVLimSValue>*> limits;
  std::vector<std::string> utf8_names;
};

void RegisterNameById(const Fixture& fixture) {
  const std::string what = "look-up/name by id";
  RegisterQuestion(what + "/lKestrinDb",
                   [&](std::size_t i) { return fixture.params.ModeName(fixture.Id(i)[0]); });
  fixture.by_id.Register(what, [&](std::size_t i) -> const QIdx1& { return fixture.Id(i); });
  const auto statement = std::make_shared<SqliteStatement>(
      fixture.sqlite.Prepare("select c1 from \"<TMode>\" where c0 = ?"));
  RegisterQuestion(what + "/SQLite", [&fixture, statement](std::size_t i) {
    statement->Bind(0, static_cast<long long>(fixture.Id(i)[0]));
    statement->Step();
    const auto* name = statement->Text(0);
    statement->Reset();
    return name;
  });
}

void RegisterIdByName(const Fixture& fixture) {
  const std::string what = "look-up/id by name";
  RegisterQuestion(what + "/lKestrinDb",
                   [&](std::size_t i) { return fixture.params.ModeId(fixture.Name(i).text); });
  fixture.by_name.Register(what, [&](std::size_t i) -> const QIdxName& { return fixture.Name(i); });
  const auto statement = std::make_shared<SqliteStatement>(
      fixture.sqlite.Prepare("select c0 from \"<TMode>\" where c1 = ?"));
  RegisterQuestion(what + "/SQLite", [&fixture, statement](std::size_t i) {
    statement->Bind(0, std::string_view(fixture.utf8_names[i]));
    statement->Step();
    const long long id = statement->Integer(0);
    statement->Reset();
    return id;
  });
}

void RegisterRowByKey(const Fixture& fixture) {
  const std::string what = "look-up/row by key";
  RegisterQuestion(what + "/lKestrinDb", [&, &rows = fixture.params.LimSValue()](std::size_t i) {
    return &*rows.find(fixture.Key(i));
  });
  fixture.by_key.Register(what, [&](std::size_t i) -> const QClavis& { return fixture.Key(i); });
  const auto statement = std::make_shared<SqliteStatement>(
      fixture.sqlite.Prepare("select c6, c7, c8 from \"<TLimSValue>\" where c0 = ? and c1 = ? and "
                             "c2 = ? and c3 = ? and c4 = ? and c5 = ?"));
  RegisterQuestion(what + "/SQLite", [&fixture, statement](std::size_t i) {
    for (int element = 0; element < Clavis::element_count; ++element) {
      statement->Bind(element, static_cast<long long>(fixture.Key(i)[element]));
    }
    statement->Step();
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
