// The bodies of the table templates (QParamBaseTable.h). Included where tables are instantiated,
// nowhere else.
#pragma once

#include <string>
#include <string_view>

#include "interfaces/sea/ResourceSea.h"
#include "lake/Lake.h"
#include "tables/LineSource.h"
#include "tables/QParamBaseTable.h"
#include "tables/RowCollector.h"
#include "tables/RowText.h"

namespace kestrin::tables {

// The map that a table's row collector is chosen by: the container itself, not its typed table.
template <class K, class V, class Less, class Alloc>
CUniqueVectorMap<K, V, Less, Alloc>& Container(CUniqueVectorMap<K, V, Less, Alloc>& map) {
  return map;
}
template <class K, class V, class Less, class Alloc>
CUniqueTreeMap<K, V, Less, Alloc>& Container(CUniqueTreeMap<K, V, Less, Alloc>& map) {
  return map;
}
template <class K, class V, class Less>
CDbMultiMap<K, V, Less>& Container(CDbMultiMap<K, V, Less>& map) {
  return map;
}

void LogInfo(const std::wstring& text);

// The start of a row's line in a dump: the running number, at least 4 characters wide.
std::wstring DumpLineHead(long long number);

}  // namespace kestrin::tables

template <class Map>
CQParamTypedTable<Map>::CQParamTypedTable(const wchar_t* section_name)
    : CQParamBaseTable(section_name) {}

template <class Map>
void CQParamTypedTable<Map>::Clear() {
  this->clear();
}

template <class Map>
void CQParamTypedTable<Map>::Purge() {
  this->clear();
}

template <class Map>
void CQParamTypedTable<Map>::Dump(int limit) const {
  kestrin::tables::LogInfo(std::wstring(L"<-\t").append(name).append(L"\n"));
  long long number = 0;
  for (const auto& row : *this) {
    std::wstring line = kestrin::tables::DumpLineHead(++number);
    kestrin::RowText::AppendRecord(line, row.first);
    line.append(L" | ");
    kestrin::RowText::AppendRecord(line, row.second);
    kestrin::tables::LogInfo(line.append(L"\n"));
    if (limit != 0 && number > limit) {
      kestrin::tables::LogInfo(L"... more ...\n");
      break;
    }
  }
  kestrin::tables::LogInfo(std::wstring(L"->\t").append(name).append(L"\n"));
}

template <class Map>
CQParamSeaTypedTable<Map>::CQParamSeaTypedTable(const wchar_t* section_name,
                                                CResourceSea* local_sea)
    : CQParamTypedTable<Map>(section_name) {
  this->sea = local_sea;
}

template <class Map>
void CQParamSeaTypedTable<Map>::Clear() {
  CQParamTypedTable<Map>::Clear();
  this->sea = nullptr;
}

template <class Map>
bool CQParamSeaTypedTable<Map>::ReadLines(kestrin::tables::LineSource& lines) {
  typename Map::key_type key;
  typename Map::mapped_type value;
  const auto key_fields = TableType::Refs(key);
  const auto value_fields = TableType::Refs(value);
  RowCollector collector(kestrin::tables::Container(*this));
  bool all_well = true;
  for (std::wstring_view line; lines.Next(line);) {
    if (!lines.ReadRow(line, key_fields, value_fields, this->name)) all_well = false;
    collector.Add(key, value);
  }
  collector.Finish();
  return all_well;
}

template <class Map>
bool CQParamSeaTypedTable<Map>::ReadTable(const CResourceSea* source) {
  this->clear();
  const auto has_list = [this](const CResourceSea* candidate) {
    return candidate != nullptr && candidate->IsListEntry(this->name);
  };
  if (!has_list(source)) source = this->sea;
  if (!has_list(source)) return false;
  kestrin::tables::SeaLines lines(*source, this->name);
  return ReadLines(lines);
}

template <class Map>
bool CQParamSeaTypedTable<Map>::ReadTable(CLake& lake) {
  this->clear();
  const auto found = lake[this->name];
  if (!found.exists()) return this->ReadTable(static_cast<const CResourceSea*>(nullptr));
  const CLake::CNode& section = *found;
  if (!section.is_section()) return false;
  if constexpr (requires(Map & map) { map.reserve(1); }) {
    if (this->capacity() < section.unnamed_size()) this->reserve(section.unnamed_size());
  }
  kestrin::tables::SectionLines lines(section);
  return ReadLines(lines);
}

template <class Map>
bool CQParamSeaTypedTable<Map>::WriteTable(CResourceSea* target) {
  if (target == nullptr) target = this->sea;
  if (target == nullptr) return false;
  CResourceList list(target, this->name);
  list.RemoveAll();
  for (const auto& row : *this) {
    std::wstring line;
    kestrin::RowText::AppendRecord(line, row.first);
    line.push_back(L' ');
    kestrin::RowText::AppendRecord(line, row.second);
    list.AddLineTail()->SetSeaLine(line.c_str());
  }
  return true;
}
