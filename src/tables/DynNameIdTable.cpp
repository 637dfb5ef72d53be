#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cwchar>

#include "tables/QParamBaseTableImpl.h"

template class CQParamTypedTable<CNameMap>;
template class CQParamSeaTypedTable<CNameMap>;

namespace {

__extension__ using Wide = unsigned __int128;

// Odd, so that a product with it loses nothing.
std::uint64_t SecretOfProcess() {
  static const std::uint64_t secret = [] {
    std::uint64_t number = 0;
    if (getentropy(&number, sizeof number) != 0) {
      number =
          static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    }
    return number | 1U;
  }();
  return secret;
}

}  // namespace

CDynNameIdTable::NameHash::NameHash() : secret_(SecretOfProcess()) {}

// Four code units a step. Both halves of each product count: so what a difference between two names
// comes to depends on the secret, and nobody can write names that are known to collide.
std::size_t CDynNameIdTable::NameHash::operator()(std::wstring_view text) const {
  const auto unit = [&text](std::size_t i) { return static_cast<std::uint64_t>(text[i]); };
  std::uint64_t hash = secret_ ^ text.size();
  const auto mix = [&hash, this](std::uint64_t part) {
    const Wide product = Wide{hash ^ part ^ 0x9E3779B97F4A7C15U} * secret_;
    hash = static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
  };
  for (; text.size() >= 4; text.remove_prefix(4)) {
    mix(unit(0) | unit(1) << 16U | unit(2) << 32U | unit(3) << 48U);
  }
  for (std::size_t i = 0; i < text.size(); ++i) mix(unit(i));
  return static_cast<std::size_t>(hash);
}

CDynNameIdTable::CDynNameIdTable(const wchar_t* section_name)
    : CQParamSeaTypedTable(section_name) {}

int CDynNameIdTable::Idx(const wchar_t* name_text) const {
  if (name_text == nullptr) name_text = L"";
  const std::size_t length = wcsnlen(name_text, QIdxName::width);
  if (length == QIdxName::width) {
    QIdxName cut;
    TableType::strcopy(cut.text, name_text, QIdxName::width);
    return Idx(cut.text);
  }
  const auto place = ids_by_name_.find(std::wstring_view(name_text, length));
  return place == ids_by_name_.end() ? -1 : place->second;
}

const wchar_t* CDynNameIdTable::Name(int id) const {
  const auto row = find(id);
  return row == end() ? L"" : row->second.text;
}

bool CDynNameIdTable::IsValidId(int id) const { return contains(id); }

std::pair<CNameMap::iterator, bool> CDynNameIdTable::Insert(int id, const QIdxName& name_text) {
  const auto result = insert({id, name_text});
  if (result.second) ids_by_name_.try_emplace(name_text.text, id);
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
  for (const auto& [id, name_text] : *this) ids_by_name_.try_emplace(name_text.text, id[0]);
  return true;
}

void CDynNameIdTable::Purge() {
  CQParamSeaTypedTable::Purge();
  ids_by_name_.clear();
}
