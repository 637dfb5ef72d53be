// What the readers of this folder's files share: lines and fields, and numbers that fill a field.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "interfaces/text/Number.h"
#include "interfaces/text/Text.h"

// The pieces of `text` between the separators, without white space at their ends; one at least.
inline std::vector<std::wstring_view> Split(std::wstring_view text, wchar_t separator) {
  std::vector<std::wstring_view> pieces;
  for (std::size_t end = text.find(separator); end != text.npos; end = text.find(separator)) {
    pieces.push_back(kestrin::Text::Trim(text.substr(0, end)));
    text.remove_prefix(end + 1);
  }
  pieces.push_back(kestrin::Text::Trim(text));
  return pieces;
}

// No number if anything else stands in the field.
inline std::optional<int> ReadNumber(std::wstring_view field) {
  const auto number = kestrin::Number::ScanInt(field);
  if (number.state != kestrin::Number::State::ok || number.used != field.size())
    return std::nullopt;
  return number.value;
}
