// kestrindb diff OLD NEW: what differs between two files, by table, key and field.

#include <ctime>
#include <iostream>

#include "Commands.h"
#include "Rows.h"

using namespace kestrin;

namespace kestrindb {
namespace {

// A file loaded beside others. Whatever keeps it from that is trouble, as diff has it; but an empty
// one, such as /dev/null for a file that git adds or removes, is a data base without rows.
struct Side {
  explicit Side(const std::string& file) {
    if (ReadCandidateLake(file).empty()) return;
    TellIfCut();
    if (!params.ReadTablesFromCandidateLake()) {
      throw Failure(file_unusable, "The file '" + file + "' was not accepted as a data base: " +
                                       Utf8(params.LastRefusal().sentence));
    }
    const CLake& lake = CParameterLake::Lake();
    version = std::to_string(int{lake[CQTableManager::major_key]}) + "." +
              std::to_string(int{lake[CQTableManager::minor_key]});
  }

  CQtParamDistillery data;
  CQtParamInstance params{&data};
  IdNames names{data};
  std::string version;
};

Json Names(const Side& before, const Side& after) {
  Json json = Json::array();
  const auto compare = [&json](const char* name, const std::string& a, const std::string& b) {
    if (a != b) json.push_back({{"name", name}, {"before", a}, {"after", b}});
  };
  const CQtParamInstance& a = before.params;
  const CQtParamInstance& b = after.params;
  compare("version", before.version, after.version);
  compare("base type", Utf8(a.BaseType()), Utf8(b.BaseType()));
  compare("alias type", Utf8(a.AliasType()), Utf8(b.AliasType()));
  compare("calibration file", Utf8(a.CalibFileName()), Utf8(b.CalibFileName()));
  compare("learn archive", Utf8(a.LearnFileName()), Utf8(b.LearnFileName()));
  return json;
}

// The fields that differ, each with both values, by their names.
Json Changes(const RowsInfo& table, Difference::Columns a, Difference::Columns b, Side& before,
             Side& after) {
  Json json = Json::object();
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    if (Difference::IsSame(a[i], b[i])) continue;
    const std::string& name = table.columns[i].name;
    const auto of = [&](Difference::Columns row, Side& side) {
      return ToJson(table, ValuesOf(row), i, i + 1, side.names);
    };
    Json& change = json[name] = Json::object();
    const auto put = [&](const char* when, const Json& field) {
      change[when] = field[name];
      if (field.size() > 1) change[std::string(when) + "_name"] = field[name + "_name"];
    };
    put("before", of(a, before));
    put("after", of(b, after));
  }
  return json;
}

Json Row(const RowsInfo& table, Difference::Columns a, Difference::Columns b, Side& before,
         Side& after) {
  const bool is_removed = b.empty();
  const Values row = ValuesOf(is_removed ? a : b);
  IdNames& names = is_removed ? before.names : after.names;
  const std::size_t keys = table.key_columns;
  const bool is_changed = !a.empty() && !b.empty();
  return {{"section", table.section},
          {"change", is_changed   ? "changed"
                     : is_removed ? "removed"
                                  : "added"},
          {"key", ToJson(table, row, 0, keys, names)},
          {"fields", is_changed ? Changes(table, a, b, before, after)
                                : ToJson(table, row, keys, row.size(), names)}};
}

// A value of `record` as people read it, texts in quotes, an id with its name.
std::string Shown(const Json& record, const std::string& field) {
  const auto name = record.find(field + "_name");
  return record[field].dump() + (name == record.end() ? "" : " " + name->dump());
}

// "mode 130 "Spur 30 Hz low load", channel 3"
std::string Shown(const Json& record) {
  std::string text;
  for (const auto& [field, value] : record.items()) {
    const bool is_name =
        field.ends_with("_name") && record.contains(field.substr(0, field.size() - 5));
    if (!is_name) text += (text.empty() ? "" : ", ") + field + " " + Shown(record, field);
  }
  return text;
}

void PrintChange(const std::string& name, const Json& change) {
  std::cout << "    " << name << ": " << Shown(change, "before") << " -> " << Shown(change, "after")
            << '\n';
}

}  // namespace

Answer DescribeDiff(const Request& request) {
  const auto began = std::time(nullptr);
  Side before(request.file);
  Side after(request.other_file);
  Json rows = Json::array();
  Difference::Compare(
      before.data, after.data,
      [&](const RowsInfo& table, Difference::Columns a, Difference::Columns b) {
        rows.push_back(Row(table, a, b, before, after));
      },
      began);
  const Json names = Names(before, after);
  return {{{"names", names}, {"rows", rows}}, names.empty() && rows.empty() ? fine : data_bad};
}

void PrintDiff(const Json& json) {
  for (const Json& change : json["names"]) PrintChange(Cell(change, "name"), change);
  std::string section;
  for (const Json& row : json["rows"]) {
    if (row["section"] != section) std::cout << (section = Cell(row, "section")) << '\n';
    const std::string change = Cell(row, "change");
    const char sign = change == "added" ? '+' : change == "removed" ? '-' : '~';
    std::cout << sign << ' ' << Shown(row["key"]) << '\n';
    if (sign != '~')
      std::cout << "    " << Shown(row["fields"]) << '\n';
    else
      for (const auto& [name, both] : row["fields"].items()) PrintChange(name, both);
  }
}

}  // namespace kestrindb
