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
// The bodies of the templates stand in QParamBaseTableImpl.h and are instantiated once, where the
// tables are made. Tables take no lock: reading, purging and clearing must not run beside queries.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "interfaces/Export.h"
#include "keys/IndexRecords.h"
#include "tables/MapContainers.h"
#include "tables/QTableManager.h"
#include "tables/SecretHash.h"

namespace kestrin::tables {
class LineSource;
}

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
  explicit CQParamTypedTable(const wchar_t* section_name);

  // Both erase all rows.
  void Clear() override;
  void Purge() override;

  // Logs the table's name, its rows and its name again. A limit other than 0 ends the rows after
  // the first whose number is above it, with a line that says so.
  void Dump(int limit) const override;
};

template <class Map>
class CQParamSeaTypedTable : public CQParamTypedTable<Map>, public CQParamSeaTable {
 public:
  explicit CQParamSeaTypedTable(const wchar_t* section_name, CResourceSea* local_sea = nullptr);

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
  void Clear() override;

 private:
  bool ReadLines(kestrin::tables::LineSource& lines);
};

namespace kestrin {
using CNameMap = CUniqueTreeMap<QIdx1, QIdxName>;
}  // namespace kestrin

class KESTRIN_API CDynNameIdTable : public CQParamSeaTypedTable<kestrin::CNameMap> {
 public:
  explicit CDynNameIdTable(const wchar_t* section_name);

  // The id of that name, or -1. Of several rows with one name the lowest id answers. A name of more
  // than 199 characters is cut, and the cut logged. The index follows a read that met no bad line;
  // only Purge empties it.
  int Idx(const wchar_t* name_text) const;

  // The name of that id, or an empty text; never null. Good as long as the row.
  const wchar_t* Name(int id) const;

  bool IsValidId(int id) const;

  // Adds a row, and its name to the index if the row was new.
  std::pair<kestrin::CNameMap::iterator, bool> Insert(int id, const QIdxName& name_text);

  bool ReadTable(const CResourceSea* source) override;
  bool ReadTable(CLake& lake) override;
  void Purge() override;

 private:
  bool Index(bool was_read);

  std::unordered_map<std::wstring, int, SecretHash, std::equal_to<>> ids_by_name_;
};
