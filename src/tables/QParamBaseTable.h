// The classes of tables. A table is a container of rows, each a key record and a value record, with
// a section name. It fills itself from a section of a lake or a list of a sea, writes itself to a
// sea, dumps itself to the log and can be emptied. The container is its base, so that readers
// search and walk a table directly.
//
//   CQParamBaseTable            the name
//   CQParamTypedTable<Map>      rows, dump
//   CQParamSeaTypedTable<Map>   reading and writing; may be bound to a local sea
//   CDynNameIdTable             ids and names, with an index from name to id
//
// How a section is read: every unnamed line of it is a row, blank and comment lines included. All
// lines are read into the same two records, so what a short line doesn't reach keeps the value of
// the line before (RowText.h). A line with a bad field is logged and its row stored as far as it
// was read. Of two rows with the same key the first stays, in tables with unique keys.
//
// Hosts may make tables of their own over rows of their own: a row record needs a default
// constructor and a tuple() of references to its fields, for reading and constant (RowRecords.h).
// Tables take no lock: reading, purging and clearing must not run beside queries.
#pragma once

#include <cwchar>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "interfaces/Export.h"
#include "interfaces/sea/LogListener.h"
#include "interfaces/sea/PrWin.h"
#include "interfaces/sea/ResourceSea.h"
#include "interfaces/text/Text.h"
#include "keys/IndexRecords.h"
#include "lake/Lake.h"
#include "tables/MapContainers.h"
#include "tables/QTableManager.h"
#include "tables/RowCollector.h"
#include "tables/RowText.h"

namespace kestrin {

// Logs the table's name, its rows and its name again. A limit other than 0 ends the rows after the
// first whose number is above it, with a line that says so.
template <class Table>
void DumpRows(const Table& table, int limit) {
  const auto log = [](const std::wstring& text) {
    PrWin::Output(text.c_str(), PrWin::category_data_base, PrWin::style_info);
  };
  const std::wstring name_line = std::wstring(L"\t").append(table.name).append(L"\n");
  log(L"<-" + name_line);
  int number = 0;
  for (const auto& [key, value] : table) {
    constexpr std::size_t width = 4;
    std::wstring line = std::to_wstring(++number);
    line.insert(0, width - std::min(width, line.size()), L' ').append(L":\t");
    RowText::AppendRecord(line, key);
    line.append(L" | ");
    RowText::AppendRecord(line, value);
    log(line.append(L"\n"));
    if (limit != 0 && number > limit) {
      log(L"... more ...\n");
      break;
    }
  }
  log(L"->" + name_line);
}

}  // namespace kestrin

class CQParamBaseTable {
 public:
  CQParamBaseTable(const CQParamBaseTable&) = delete;
  CQParamBaseTable& operator=(const CQParamBaseTable&) = delete;
  virtual ~CQParamBaseTable() = 0;

  // The section's name with its angle brackets.
  const wchar_t* name;

 protected:
  // The text must outlive the table.
  explicit CQParamBaseTable(const wchar_t* section_name) : name(section_name) {}
};

inline CQParamBaseTable::~CQParamBaseTable() = default;

template <class Map>
class CQParamTypedTable : public CQParamBaseTable,
                          public Map,
                          public virtual CQParamBaseTableInterface {
 public:
  explicit CQParamTypedTable(const wchar_t* section_name) : CQParamBaseTable(section_name) {}

  // Both erase all rows.
  void Clear() override { this->clear(); }
  void Purge() override { this->clear(); }

  void Dump(int limit) override { kestrin::DumpRows(*this, limit); }
};

template <class Map>
class CQParamSeaTypedTable : public CQParamTypedTable<Map>, public CQParamSeaTable {
 public:
  explicit CQParamSeaTypedTable(const wchar_t* section_name, CResourceSea* local_sea = nullptr)
      : CQParamTypedTable<Map>(section_name) {
    sea = local_sea;
  }

  // From the list of the table's name in the sea given, or else in the local sea. False if a line
  // was bad, or if neither sea has the list: then the table is empty.
  bool ReadTable(const CResourceSea* source) override;

  // From the section of the table's name, or from the local sea if the lake has no such key. False
  // if a line was bad, if the key is no section, or if there was nothing to read.
  bool ReadTable(CLake& lake) override;

  // Replaces the list of the table's name in the sea given, or in the local sea if that is null.
  // False if both are null. Texts with blanks go out without quotes and read back as several
  // fields.
  bool WriteTable(CResourceSea* target) override;

  // Erases all rows and forgets the local sea, for good.
  void Clear() override {
    CQParamTypedTable<Map>::Clear();
    sea = nullptr;
  }

 private:
  enum class Logged { whole_line, rest_of_line };  // what the log shows of a bad line

  // `next` gives one line after the other, each good until it is called again, and nothing behind
  // the last.
  template <class Next>
  bool ReadLines(Logged logged, Next next);
};

template <class Map>
template <class Next>
bool CQParamSeaTypedTable<Map>::ReadLines(Logged logged, Next next) {
  typename Map::key_type key;
  typename Map::mapped_type value;
  const auto fields = TableType::Refs(key, value);
  kestrin::RowCollector<Map> rows(*this);
  bool all_well = true;
  kestrin::LogSubject subject(this->name);
  while ((subject.line = next()).has_value()) {
    std::string_view rest = *subject.line;
    if (!kestrin::RowText::Read(fields, rest)) {
      if (logged == Logged::whole_line) rest = *subject.line;
      kestrin::RowText::LogBadLine(L"CQParamSeaTypedTable< T >::ReadTable()", this->name, rest);
      all_well = false;
    }
    rows.Add(key, value);
  }
  rows.Finish();
  return all_well;
}

template <class Map>
bool CQParamSeaTypedTable<Map>::ReadTable(const CResourceSea* source) {
  this->clear();
  const auto has_list = [this](const CResourceSea* candidate) {
    return candidate != nullptr && candidate->IsListEntry(this->name);
  };
  if (!has_list(source)) source = sea;
  if (!has_list(source)) return false;
  CResourceList list(source, this->name);
  list.GotoHead();
  CString line;
  std::string bytes;
  return ReadLines(Logged::rest_of_line, [&]() -> std::optional<std::string_view> {
    if (!list.IsValid()) return std::nullopt;
    list.GetCurrentLine()->GetLine(line);
    list.GotoNext();
    return bytes = kestrin::Text::ToBytes(line);
  });
}

template <class Map>
bool CQParamSeaTypedTable<Map>::ReadTable(CLake& lake) {
  this->clear();
  const kestrin::RootLine line = lake.root_line(this->name);
  if (!line.exists) return this->ReadTable(static_cast<const CResourceSea*>(nullptr));
  if (!line.is_section) return false;
  if constexpr (requires(Map & map) { map.reserve(1); }) this->reserve(line.rows);
  return ReadLines(Logged::whole_line, line.next_row);
}

template <class Map>
bool CQParamSeaTypedTable<Map>::WriteTable(CResourceSea* target) {
  if (target == nullptr) target = sea;
  if (target == nullptr) return false;
  CResourceList list(target, this->name);
  list.RemoveAll();
  for (const auto& [key, value] : *this) {
    std::wstring line;
    kestrin::RowText::AppendRecord(line, key);
    line.push_back(L' ');
    kestrin::RowText::AppendRecord(line, value);
    list.AddLineTail()->SetSeaLine(line.c_str());
  }
  return true;
}

class KESTRIN_API CDynNameIdTable : public CQParamSeaTypedTable<CUniqueTreeMap<QIdx1, QIdxName>> {
 public:
  explicit CDynNameIdTable(const wchar_t* section_name);

  // The id of that name, or -1. Of several rows with one name the lowest id answers. A name of more
  // than 199 characters is cut, and the cut logged. The index follows a read that met no bad line;
  // only Purge empties it.
  int Idx(const wchar_t* name_text) const;

  // The name of that id, or an empty text; never null. Good as long as the row.
  const wchar_t* Name(int id) const;

  bool IsValidId(int id) const;

  // Adds a row, and its name to the index if the row was new. A name without its closing zero is
  // cut, and the cut logged.
  std::pair<iterator, bool> Insert(int id, const QIdxName& name_text);

  bool ReadTable(const CResourceSea* source) override;
  bool ReadTable(CLake& lake) override;
  void Purge() override;

 private:
  // A name is looked up as the text that it is, without a copy.
  struct NameLess {
    using is_transparent = void;
    static const wchar_t* Text(const wchar_t* text) { return text; }
    static const wchar_t* Text(const QIdxName& name) { return name.text; }
    bool operator()(const auto& a, const auto& b) const {
      return std::wcscmp(Text(a), Text(b)) < 0;
    }
  };

  bool Index(bool was_read);

  CUniqueTreeMap<QIdxName, QIdx1, NameLess> ids_by_name_;
};
