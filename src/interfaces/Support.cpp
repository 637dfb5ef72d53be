#include "interfaces/Support.h"

#include <array>
#include <new>
#include <string_view>

using namespace kestrin;

void* tl_malloc(std::size_t size) { return ::operator new(size); }

void tl_free(void* block) noexcept { ::operator delete(block); }

namespace Formatting {
namespace {

constexpr unsigned windows_1252 = 1252;
constexpr unsigned utf8 = 65001;

// Code page 1252 from 0x80 to 0x9F, where it differs from Latin 1.
constexpr std::array<wchar_t, 32> windows_middle = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

}  // namespace

std::wstring ansi2unicode(const char* text, unsigned codepage) {
  const std::string_view bytes = text ? text : "";
  if (codepage == utf8) return Text::FromUtf8(bytes);
  std::wstring out;
  out.reserve(bytes.size());
  for (const char byte : bytes) {
    const unsigned c = static_cast<unsigned char>(byte);
    const bool middle = codepage == windows_1252 && c >= 0x80 && c < 0xA0;
    out += middle ? windows_middle[c - 0x80] : static_cast<wchar_t>(c);
  }
  return out;
}

}  // namespace Formatting
