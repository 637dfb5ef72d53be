#include "interfaces/sea/PrWin.h"
#include "interfaces/text/Number.h"
#include "tables/QParamBaseTableImpl.h"

namespace kestrin::tables {

void LogInfo(const std::wstring& text) {
  PrWin::Output(text.c_str(), PrWin::category_data_base, PrWin::style_info);
}

std::wstring DumpLineHead(long long number) {
  std::wstring digits;
  Number::Append(digits, number);
  constexpr std::size_t width = 4;
  std::wstring line(digits.size() < width ? width - digits.size() : 0, L' ');
  return line.append(digits).append(L":\t");
}

}  // namespace kestrin::tables
