#include "keys/IndexRecords.h"

#include <charconv>
#include <limits>
#include <ostream>
#include <string>

std::wostream& operator<<(std::wostream& out, const QClavis& key) {
  std::wstring text;
  for (const int id : key.id) {
    char digits[std::numeric_limits<int>::digits10 + 3];
    const auto [end, error] = std::to_chars(std::begin(digits), std::end(digits), id);
    if (!text.empty()) text += L' ';
    text.append(digits, end);
  }
  return out << text;
}
