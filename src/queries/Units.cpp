#include "queries/Units.h"

#include <cwchar>
#include <mutex>

#include "frame/QtParamDistillery.h"
#include "frame/QtParamInstance.h"
#include "tables/RowText.h"

namespace Units {
namespace {

constexpr const wchar_t* no_unit = L"----";

CMeasuringUnit DefaultUnit() { return {CMeasuringUnit::none, 0, 1, 1.0F, 0}; }

bool StandsInText(int code) {
  const auto unit = static_cast<unsigned>(code);
  return unit == CMeasuringUnit::in_text || unit > CMeasuringUnit::angular_acceleration_rad_s2;
}

short Prefix(int field) {
  return field == 1 || field == -1 ? short{0} : static_cast<short>(field);  // its low 16 bits
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
  CMeasuringUnit unit = DefaultUnit();
  if (!StandsInText(row.unit_code)) {
    unit.set(static_cast<unsigned>(row.unit_code), Prefix(row.unit_prefix), 1, 1.0F, 0);
  } else if (std::wcscmp(row.unit_text, no_unit) != 0) {
    unit.set(std::wstring(TableType::TextIn(row.unit_text)).c_str());
  }
  return unit;
}

std::wstring RefreshText(QVAppSignalProperty& row) {
  if (StandsInText(row.unit_code)) return std::wstring(TableType::TextIn(row.unit_text));
  std::wstring text = Of(row).prefixunit(false);
  PutText(row, text);
  return text;
}

}  // namespace Units

CMeasuringUnit CQtParamInstance::ApplicationSignalUnit(int signal) {
  auto& signals = AppSignalProperty();
  const auto found = signals.find(signal);
  if (found == signals.end()) return Units::DefaultUnit();
  QVAppSignalProperty& row = found->second;
  const CMeasuringUnit unit = Units::Of(row);
  if (!Units::StandsInText(row.unit_code)) Units::PutText(row, unit.prefixunit(false));
  return unit;
}
