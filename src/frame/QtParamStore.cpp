#include "frame/QtParamStore.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "interfaces/sea/ResourceSea.h"
#include "lake/Lake.h"

using namespace kestrin;

namespace {

// The word that a document's line names: the text between the first two quotes if the value begins
// with one, or else the value up to the blank behind its first word.
CString CutName(std::wstring_view value) {
  const auto word = std::find_if_not(value.begin(), value.end(), Text::IsSpace);
  if (word == value.end()) return CString(value);
  if (*word == L'"') return {word + 1, std::find(word + 1, value.end(), L'"')};
  return {value.begin(), std::find_if(word, value.end(), Text::IsSpace)};
}

CString ReadName(const CLake& lake, const wchar_t* key) {
  return CutName(lake.root_line(key).value);
}

}  // namespace

namespace kestrin::tables {

template <Word Section, class Entry>
Slot<Section, Entry>::Slot(CResourceSea* application_sea)
    : table([&] {
        if constexpr (Section == sea_table) {
          return typename Entry::Table(Entry::section.text, application_sea);
        } else {
          return typename Entry::Table(Entry::section.text);
        }
      }()) {}

}  // namespace kestrin::tables

CQtParamStore::CQtParamStore()
    : tables_(CSeaBase::ApplicationSea()), manager_(std::make_unique<CQTableManager>()) {
  RegisterTables();
}

CQtParamStore::~CQtParamStore() = default;

void CQtParamStore::RegisterTables() {
  std::array<CQParamSeaTable*, tables::All::size> in_order{};
  tables::All::ForEach([&](auto entry) {
    using Entry = decltype(entry);
    in_order[Entry::reading_place - 1] = &tables::TableIn<Entry::section>(tables_);
  });
  for (CQParamSeaTable* table : in_order) manager_->RegisterTable(*table);
}

void CQtParamStore::Clear() { manager_->Clear(); }

void CQtParamStore::PurgeTables() {
  manager_->PurgeTables();
  for (CString* name :
       {&learn_archive_name_, &calibration_file_name_, &type_base_name_, &type_alias_name_}) {
    name->clear();
  }
}

bool CQtParamStore::ReadTablesFromCandidateLake() {
  if (!manager_->ReadTablesFromCandidateLake()) return false;
  ReadNames(CParameterLake::Lake());
  return true;
}

void CQtParamStore::ReadTables(const CLake& lake) {
  manager_->ReadTables(lake);
  ReadNames(lake);
}

void CQtParamStore::ReadNames(const CLake& lake) {
  learn_archive_name_ = ReadName(lake, learn_file_key);
  calibration_file_name_ = ReadName(lake, calib_file_key);
  type_base_name_ = ReadName(lake, base_type_key);
  type_alias_name_ = ReadName(lake, alias_type_key);
}

void CQtParamStore::WriteTablesToLocalSeas() const { manager_->WriteTablesToLocalSeas(); }

void CQtParamStore::DumpTables(int limit) const { manager_->DumpTables(limit); }
