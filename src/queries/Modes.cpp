// Test steps: the arithmetic of their ids, the names of virtual ones, and what <TModeProperty> says
// about them. Ids come from anywhere, so that all arithmetic on bits is unsigned: it wraps where a
// signed overflow or a wide shift would be undefined.

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "frame/QtParamDerived.h"
#include "frame/QtParamDistillery.h"
#include "frame/QtParamInstance.h"
#include "interfaces/text/Number.h"
#include "queries/QtModeInfo.h"
#include "queries/QtSpeedInfo.h"
#include "queries/Units.h"
#include "tables/FieldOr.h"
#include "tables/RowText.h"

using namespace kestrin;

namespace {

constexpr unsigned base_bits = 11;
constexpr unsigned base_mask = (1U << base_bits) - 1;
constexpr unsigned digit_bits = 6;
constexpr unsigned digit_mask = (1U << digit_bits) - 1;
constexpr unsigned id_bits = 32;

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

bool CQtParamInstance::IsVirtualMode(int id) { return id > 0 && VirtModeExtension(id) != 0; }

int CQtParamInstance::VirtMode2BaseMode(int id) {
  return id > 0 ? static_cast<int>(static_cast<unsigned>(id) & base_mask) : id;
}

int CQtParamInstance::VirtModeExtension(int id) {
  return id > 0 ? static_cast<int>(static_cast<unsigned>(id) >> base_bits) : id;
}

int CQtParamInstance::VirtModeGenerateId(int base, int extension) {
  if (base < 0) return base;
  return static_cast<int>((static_cast<unsigned>(extension) << base_bits) +
                          static_cast<unsigned>(base));
}

int CQtParamInstance::VirtModeDigit(int id, std::size_t row) {
  if (id <= 0 || row >= id_bits / digit_bits) return 0;
  const auto extension = static_cast<unsigned>(VirtModeExtension(id));
  return static_cast<int>((extension >> (digit_bits * row)) & digit_mask);
}

int CQtParamInstance::VirtModeExtension(const int* indices) const {
  if (indices == nullptr) return 0;
  unsigned extension = 0;
  unsigned factor = 1;
  for (std::size_t i = 0; i < AutoModeParams().size(); ++i) {
    extension += factor * (static_cast<unsigned>(indices[i]) + 1);
    factor <<= digit_bits;
  }
  return static_cast<int>(extension);
}

float CQtParamInstance::VirtModePosition(const QVAutoModeParams& params, unsigned index) {
  const auto band = static_cast<float>(index);
  return std::floor((band + 0.5F) * params.step + params.start + 0.5F);
}

std::wstring CQtParamInstance::VirtModeNameFragment(Table<L"<TAutoModeParam>">::const_iterator row,
                                                    bool positive, float position,
                                                    unsigned precision) const {
  return store_->Derived().ModeInfo().VirtModeNameFragment(row, positive, position, precision);
}

std::wstring CQtParamInstance::VirtModeName(int id) const {
  return store_->Derived().ModeInfo().VirtModeName(id);
}

const wchar_t* CQtParamInstance::ModeName(int id) const {
  if (id < 0) return L"";
  const auto& names = store_->Table<L"<TMode>">();
  const auto row = names.find(id);
  if (row != names.end()) return row->second.text;
  return IsVirtualMode(id) ? store_->Derived().ModeInfo().MadeName(id) : L"";
}

bool CQtParamInstance::AddVModeName(int id, const wchar_t* name) {
  if (!IsVirtualMode(id) || IsValidMode(id)) return false;
  QIdxName text;
  TableType::strcopy(text.text, name, QIdxName::width);
  return store_->Table<L"<TMode>">().Insert(id, text).second;
}

int CQtParamInstance::PhysModeId(int id) const {
  return store_->Derived().SpeedInfo().PhysModeOf(VirtMode2BaseMode(id));
}

bool CQtParamInstance::ModeIsHidden(int id) const {
  return (FieldOr(ModeProperty(), id, &QVModeProps::flags, 0U) & QVModeProps::mode_hidden) != 0;
}

bool CQtParamInstance::ModeIsOfType(const QVModeProps& props, QVModeProps::modeFlag flag) {
  return (props.flags & flag) != 0;
}

bool CQtParamInstance::ModeIsOfType(int id, QVModeProps::modeFlag flag) const {
  return (FieldOr(ModeProperty(), VirtMode2BaseMode(id), &QVModeProps::flags, 0U) & flag) != 0;
}

// ---- names --------------------------------------------------------------------------------

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
