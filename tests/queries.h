// What can be asked of the data base, in one map by name: for those who ask everything and don't
// want to name each query in code, such as the case files, the memory that runs out and the fuzzer
// of loads.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "frame/QtParamInstance.h"

namespace queries {

// A number, which may be any of 32 bits, or a text, which may be null.
struct Argument {
  char kind = 'n';  // or 't'
  double number = 0;
  std::optional<std::wstring> text = {};

  template <class T>
  operator T() const {
    if constexpr (std::is_integral_v<T>) {
      return static_cast<T>(static_cast<long long>(number));
    } else if constexpr (std::is_floating_point_v<T>) {
      return static_cast<T>(number);
    } else {
      return text ? text->c_str() : nullptr;
    }
  }
};
using Arguments = std::span<const Argument>;

struct Query {
  std::string arguments;  // their kinds
  bool changes;           // the data base, so that it may run beside no other
  // The answer in UTF-8: texts in double quotes, blanks between values, commas between rows.
  std::function<std::string(CQtParamInstance&, Arguments)> ask;
};

// By name; those of one name differ in their arguments.
const std::multimap<std::string, Query>& All();

// A query of a test file's own, of one text; it runs beside no other.
struct OfTest {
  OfTest(const std::string& name, std::string (*answer)(const wchar_t* text));
};

// The query of that name with arguments of such kinds; null if there is none.
const Query* Find(const std::string& name, Arguments arguments);

// Asks all that has arguments and changes nothing: the numbers go round, the text is the same.
void AskAll(CQtParamInstance& params, std::span<const int> numbers, const wchar_t* text);

}  // namespace queries
