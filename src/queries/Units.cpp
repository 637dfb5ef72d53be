#include "queries/Units.h"

#include <cwchar>
#include <mutex>

#include "frame/QtParamDistillery.h"
#include "frame/QtParamInstance.h"
#include "tables/RowText.h"

namespace Units {
namespace {

constexpr const wchar_t* no_unit = L"----";

// Takes the kind that the row's code names; false if the unit stands in the text instead.
bool SetByCode(CMeasuringUnit& unit, const QVAppSignalProperty& row) {
  const bool no_prefix = row.unit_prefix == 1 || row.unit_prefix == -1;
  const auto prefix = no_prefix ? short{0} : static_cast<short>(row.unit_prefix);  // low 16 bits
  return unit.set(static_cast<unsigned>(row.unit_code), prefix, 1, 1.0F, 0);
}

// Into a row with a code.
void PutText(QVAppSignalProperty& row, const std::wstring& text) {
  static std::mutex writing;
  const std::lock_guard lock(writing);
  if (text == TableType::TextIn(row.unit_text)) return;
  TableType::strcopy(row.unit_text, text.c_str(), TableType::text_width);
}

}  // namespace

CMeasuringUnit Of(const QVAppSignalProperty& row) {
  CMeasuringUnit unit;
  if (!SetByCode(unit, row) && std::wcscmp(row.unit_text, no_unit) != 0) {
    unit.set(std::wstring(TableType::TextIn(row.unit_text)).c_str());
  }
  return unit;
}

std::wstring RefreshText(QVAppSignalProperty& row) {
  CMeasuringUnit unit;
  if (!SetByCode(unit, row)) return std::wstring(TableType::TextIn(row.unit_text));
  std::wstring text = unit.prefixunit(false);
  PutText(row, text);
  return text;
}

}  // namespace Units

CMeasuringUnit CQtParamInstance::ApplicationSignalUnit(int signal) {
  auto& signals = AppSignalProperty();
  const auto found = signals.find(signal);
  if (found == signals.end()) return {};
  Units::RefreshText(found->second);
  return Units::Of(found->second);
}
