#include <cwchar>
#include <string_view>

#include "tables/QParamBaseTable.h"

CDynNameIdTable::CDynNameIdTable(const wchar_t* section_name)
    : CQParamSeaTypedTable(section_name) {}

int CDynNameIdTable::Idx(const wchar_t* name_text) const {
  if (name_text == nullptr) name_text = L"";
  const auto row = ids_by_name_.find(name_text);
  if (row != ids_by_name_.end()) return row->second[0];
  if (wcsnlen(name_text, QIdxName::width) < QIdxName::width) return -1;
  QIdxName cut;
  TableType::strcopy(cut.text, name_text, QIdxName::width);
  return Idx(cut.text);
}

const wchar_t* CDynNameIdTable::Name(int id) const {
  const auto row = find(id);
  return row == end() ? L"" : row->second.text;
}

bool CDynNameIdTable::IsValidId(int id) const { return contains(id); }

std::pair<CDynNameIdTable::iterator, bool> CDynNameIdTable::Insert(int id,
                                                                   const QIdxName& name_text) {
  const std::wstring_view text = TableType::TextIn(name_text.text);
  if (text.size() == QIdxName::width) {
    QIdxName cut;
    TableType::strcopy(cut.text, text, QIdxName::width);
    return Insert(id, cut);
  }
  const auto result = insert({id, name_text});
  if (result.second) ids_by_name_.try_emplace(name_text, id);
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
  for (const auto& [id, name_text] : *this) ids_by_name_.try_emplace(name_text, id);
  return true;
}

void CDynNameIdTable::Purge() {
  CQParamSeaTypedTable::Purge();
  ids_by_name_.clear();
}
