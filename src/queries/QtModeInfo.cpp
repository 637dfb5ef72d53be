#include "queries/QtModeInfo.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "frame/QtParamInstance.h"
#include "frame/QtParamStore.h"
#include "interfaces/text/Number.h"
#include "queries/QtSpeedInfo.h"
#include "queries/Units.h"

using namespace kestrin;

namespace {

// With a direction a digit also tells, below the band, two bits; the lowest is the sign.
constexpr unsigned direction_bits = 2;

constexpr wchar_t name_separator = L'\u00B7';

// As a stream of that precision writes it. More digits than the longest float has change nothing.
void AppendNumber(std::wstring& text, float value, unsigned precision) {
  if (precision == 0) return Number::Append(text, value);
  constexpr std::size_t all_digits = 120;
  std::array<char, 2 * all_digits> buffer;
  const auto [end, error] =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::general,
                    static_cast<int>(std::min<std::size_t>(precision, all_digits)));
  text.append(buffer.data(), end);
}

}  // namespace

std::wstring CQtModeInfo::VirtModeNameFragment(AutoModeParams::const_iterator row, bool positive,
                                               float position, unsigned precision) const {
  auto& signals = store_->Table<L"<TAppSignalProperty>">();
  const auto signal = signals.find(row->first);
  std::wstring text;
  if (signal == signals.end()) return text;
  AppendNumber(text, position, precision);
  text += Units::RefreshText(signal->second);
  if (row->second.directional != 0) text += positive ? L"--Z" : L"--S";
  return text;
}

std::wstring CQtModeInfo::VirtModeName(int id) const {
  std::wstring name;
  const int phys_mode = CQtSpeedInfo(*store_).PhysModeOf(CQtParamInstance::VirtMode2BaseMode(id));
  if (!CQtParamInstance::IsVirtualMode(id) || phys_mode == -1) return name;
  const AutoModeParams& rows = store_->Table<L"<TAutoModeParam>">();
  if (rows.empty()) {
    name = store_->Table<L"<TMode>">().Name(CQtParamInstance::VirtMode2BaseMode(id));
    name += L'#';
    Number::Append(name, CQtParamInstance::VirtModeExtension(id));
    return name;
  }
  name = store_->Table<L"<TPhysMode>">().Name(phys_mode);
  std::size_t i = 0;
  for (auto row = rows.begin(); row != rows.end(); ++row, ++i) {
    // Digit 0, no band, comes out as band 2^32 - 1, which shows that there is something wrong.
    const int index = CQtParamInstance::VirtModeDigit(id, i) - 1;
    const int band = row->second.directional != 0 ? index >> direction_bits : index;
    const float position =
        CQtParamInstance::VirtModePosition(row->second, static_cast<unsigned>(band));
    name += name_separator;
    name += VirtModeNameFragment(row, (index & 1) != 0, position, 0);
  }
  return name;
}

const wchar_t* CQtModeInfo::MadeName(int id) const {
  // An array and no string: a thread that ends has nothing to take down in a library that may be
  // gone by then.
  thread_local std::array<wchar_t, 500> made;
  const std::wstring name = VirtModeName(id);
  const std::size_t length = name.copy(made.data(), made.size() - 1);
  made[length] = L'\0';
  return made.data();
}
