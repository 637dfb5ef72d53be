#include <cwchar>

#include "tables/QParamBaseTableImpl.h"

template class CQParamTypedTable<CNameMap>;
template class CQParamSeaTypedTable<CNameMap>;

bool CDynNameIdTable::NameLess::operator()(const QIdxName& a, const wchar_t* b) const {
  return std::wcscmp(a.text, b) < 0;
}

bool CDynNameIdTable::NameLess::operator()(const wchar_t* a, const QIdxName& b) const {
  return std::wcscmp(a, b.text) < 0;
}

CDynNameIdTable::CDynNameIdTable(const wchar_t* section_name)
    : CQParamSeaTypedTable(section_name) {}

int CDynNameIdTable::Idx(const wchar_t* name_text) const {
  if (name_text == nullptr) name_text = L"";
  if (wcsnlen(name_text, QIdxName::width) == QIdxName::width) {
    QIdxName cut;
    TableType::strcopy(cut.text, name_text, QIdxName::width);
    return Idx(cut.text);
  }
  const auto place = ids_by_name_.find(name_text);
  return place == ids_by_name_.end() ? -1 : place->second[0];
}

const wchar_t* CDynNameIdTable::Name(int id) const {
  const auto row = find(id);
  return row == end() ? L"" : row->second.text;
}

bool CDynNameIdTable::IsValidId(int id) const { return contains(id); }

std::pair<CNameMap::iterator, bool> CDynNameIdTable::Insert(int id, const QIdxName& name_text) {
  const auto result = insert({id, name_text});
  if (result.second) ids_by_name_.insert({name_text, id});
  return result;
}

bool CDynNameIdTable::ReadTable(const CResourceSea* source) {
  return Index(CQParamSeaTypedTable::ReadTable(source));
}

bool CDynNameIdTable::ReadTable(CLake& lake) {
  return Index(CQParamSeaTypedTable::ReadTable(lake));
}

bool CDynNameIdTable::Index(bool was_read) {
  if (!was_read) return false;
  for (const auto& [id, name_text] : *this) ids_by_name_.insert({name_text, id});
  return true;
}

void CDynNameIdTable::Purge() {
  CQParamSeaTypedTable::Purge();
  ids_by_name_.clear();
}
