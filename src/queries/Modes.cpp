// Test steps: the arithmetic of their ids, and what the tables say about them. Ids come from
// anywhere, so that all arithmetic on bits is unsigned: it wraps where a signed overflow or a wide
// shift would be undefined.

#include <cmath>

#include "frame/QtParamDerived.h"
#include "frame/QtParamDistillery.h"
#include "frame/QtParamInstance.h"
#include "queries/QtModeInfo.h"
#include "queries/QtSpeedInfo.h"
#include "tables/FieldOr.h"
#include "tables/RowText.h"

using namespace kestrin;

namespace {

constexpr unsigned base_bits = 11;
constexpr unsigned base_mask = (1U << base_bits) - 1;
constexpr unsigned digit_bits = 6;
constexpr unsigned digit_mask = (1U << digit_bits) - 1;
constexpr unsigned id_bits = 32;

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
