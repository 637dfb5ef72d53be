// The values of calculation parameters, and what the numbers and the values are called.

#include <algorithm>
#include <iterator>
#include <limits>
#include <optional>
#include <utility>

#include "catalogue/IpCalcParameter.h"
#include "frame/strings/ModuleStrings.h"
#include "interfaces/text/Number.h"
#include "tables/RowText.h"

using namespace kestrin;

namespace {

// The calculation parameters whose values have names: where these stand in the string table.
struct ValueNames {
  int number;
  StringId::Range ids;
};
constexpr ValueNames value_names[] = {
    {0, StringId::calculation},          {2, StringId::interpretation},
    {9, StringId::area_interpretation},  {27, StringId::bin_op_calc_mode},
    {33, StringId::calculation_special}, {34, StringId::shifting_evaluation},
};
static_assert(std::size(value_names) == QVIpCalcParameter::NumEnums);

std::optional<StringId::Range> IdsOfValues(int number) {
  const auto* const found =
      std::find_if(std::begin(value_names), std::end(value_names),
                   [number](const ValueNames& names) { return names.number == number; });
  return found == std::end(value_names) ? std::nullopt : std::optional(found->ids);
}

// The text of id base + offset, which may be beyond all ids.
std::optional<CString> FindText(int base, int offset) {
  const long long id = static_cast<long long>(base) + offset;
  if (id < 0 || id > std::numeric_limits<int>::max()) return std::nullopt;
  return FindModuleString(static_cast<int>(id));
}

// All texts of a range; one that the language lacks shows as its place, so that every text keeps
// its own.
unsigned ListTexts(StringId::Range ids, std::list<CString>& texts) {
  texts.clear();
  for (int id = ids.first; id <= ids.last; ++id) {
    if (auto found = FindModuleString(id)) {
      texts.push_back(*std::move(found));
      continue;
    }
    CString place(L"(");
    Number::Append(place, id - ids.first);
    texts.push_back(place + L")");
  }
  return static_cast<unsigned>(texts.size());
}

}  // namespace

QVIpCalcParameter::QVIpCalcParameter(const QVIpCalcParameter& other)
    : QValueBase(other), Fields(other) {
  TableType::strcopy(text, TableType::TextIn(other.text), TableType::text_width);
}

QVIpCalcParameter& QVIpCalcParameter::operator=(const QVIpCalcParameter& other) {
  if (this == &other) return *this;
  TableType::strcopy(text, TableType::TextIn(other.text), TableType::text_width);
  return *this;
}

int QVIpCalcParameter::ValueInt() const {
  if (text[0] == L'\0') return -1;
  return Number::ScanInt(TableType::TextIn(text)).value;
}

float QVIpCalcParameter::ValueFloat() const {
  return Number::ToFloat(Number::ScanDouble(TableType::TextIn(text)).value);
}

CString QVIpCalcParameter::GetCalcParamEnumText(int number) {
  if (auto found = FindText(StringId::calc_params.first, number)) return *std::move(found);
  CString general = LoadModuleString(StringId::calc_param) + L" #";
  Number::Append(general, number);
  return general;
}

CString QVIpCalcParameter::GetCalcParamEnumSubText(int number, int value) {
  const auto ids = IdsOfValues(number);
  return ids ? FindText(ids->first, value).value_or(CString()) : CString();
}

unsigned QVIpCalcParameter::GetCalcParamEnumTexts(std::list<CString>& texts) {
  return ListTexts(StringId::calc_params, texts);
}

unsigned QVIpCalcParameter::GetCalcParamEnumSubTexts(int number, std::list<CString>& texts) {
  constexpr StringId::Range no_list{0, 0};  // no text has the id 0
  return ListTexts(IdsOfValues(number).value_or(no_list), texts);
}
