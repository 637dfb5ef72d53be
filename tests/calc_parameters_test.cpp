// What calculation parameters hold, and what they and their values are called.

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <list>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>

#include "frame/strings/ModuleStrings.h"
#include "test_store.h"

namespace {

using Texts = std::list<CString>;
using Row = QVIpCalcParameter;

// The texts between bars.
Texts Split(const CString& joined) {
  Texts texts;
  std::wistringstream stream(joined);
  for (CString text; std::getline(stream, text, L'|');) texts.push_back(text);
  return texts;
}

constexpr const wchar_t* calc_parameters =
    L"Calculation|Trigger|Interpretation|Definition|Base order ref.|x start|x end|"
    L"Source instrument|Source parameter|Area interpretation|Polygon|Avg. const.|"
    L"Track transformation|Track transf. param.|Offset|Std.deviation|Reg. time|Reg. link|"
    L"Reg. source|Reg. transform.|Reg. show mode|Reg. calc mode|Reg. source id|Reg. x param 1|"
    L"Reg. x param 2|Reg. x param 3|Reg. x param 4|Bin. op. calc. mode|2nd source instrument|"
    L"2nd source parameter|Source location|2nd Polygon|Composite Action Test|Calculation special|"
    L"Shifting Evaluation|Track parameter A|Track parameter B|Track parameter C|"
    L"Track parameter D|Track parameter E|y start|y end|Polygon mode";

constexpr int english = 9;

// In English, and then in the language before.
class CalcParameterTexts : public testing::Test {
 protected:
  CalcParameterTexts() { SetUserLanguage(english); }
  ~CalcParameterTexts() override { SetUserLanguage(before_); }

 private:
  int before_ = UserLanguage().id;
};

TEST_F(CalcParameterTexts, GoWithTheirNumbers) {
  Texts texts = {L"what was there"};
  EXPECT_EQ(Row::GetCalcParamEnumTexts(texts), 43U);
  EXPECT_EQ(texts, Split(calc_parameters));
  int number = 0;
  for (const CString& text : texts) EXPECT_EQ(Row::GetCalcParamEnumText(number++), text);
  const std::pair<int, const wchar_t*> others[] = {
      {43, L"Calculation parameter #43"},
      {-1, L"Calculation parameter"},  // its neighbour in the string table
      {100, L"not defined"},
      {-101, L"Calculation parameter #-101"},
      {INT_MAX, L"Calculation parameter #2147483647"},
      {INT_MIN, L"Calculation parameter #-2147483648"}};
  for (const auto& [other, text] : others) EXPECT_EQ(Row::GetCalcParamEnumText(other), text);
}

TEST_F(CalcParameterTexts, NameTheValues) {
  // The number of a parameter, how many of its values a list shows, and all texts that there are.
  const std::tuple<int, std::size_t, const wchar_t*> values[] = {
      {0, 7, L"not defined|Minimum|Maximum|Average|Log. average / RMS|Sum|Log. sum"},
      {2, 9, L"not defined|(1)|Points maximum|(3)|(4)|(5)|Maximum|(7)|Sum"},
      {9, 5,
       L"not defined|Minimum|Maximum|Sum above|Sum below|Deviation|RMS above|RMS below|"
       L"Minimum value|Maximum value|Area above|Area below"},
      {27, 5, L"invalid|Addition|Subtraction|Multiplication|Rel.Magn."},
      {33, 4, L"Standard|Median|Quantile 95%|Quantile 90%"},
      {34, 3, L"End position|Maximum position|Maximum force|Position max. force|Shifting time"},
      // Those without.
      {1, 1, L"(0)"},
      {35, 1, L"(0)"},
      {INT_MIN, 1, L"(0)"},
  };
  for (const auto& [number, listed, joined] : values) {
    SCOPED_TRACE(number);
    Texts expected = Split(joined);
    const bool has_names = expected.size() > 1;
    int value = 0;
    for (const CString& text : expected) {
      EXPECT_EQ(Row::GetCalcParamEnumSubText(number, value++), has_names ? text : L"");
    }
    for (const int unknown : {value, INT_MAX, INT_MIN}) {
      EXPECT_EQ(Row::GetCalcParamEnumSubText(number, unknown), L"");
    }
    Texts texts = {L"what was there"};
    EXPECT_EQ(Row::GetCalcParamEnumSubTexts(number, texts), listed);
    expected.resize(listed);
    EXPECT_EQ(texts, expected);
  }
}

TEST_F(CalcParameterTexts, SpeakTheUsersLanguage) {
  SetUserLanguage("de");
  EXPECT_EQ(Row::GetCalcParamEnumText(32), L"W\u00E4lzpr\u00FCfung");
  EXPECT_EQ(Row::GetCalcParamEnumText(43), *FindModuleString(99, *FindLanguage("de")) + L" #43");
  EXPECT_NE(Row::GetCalcParamEnumText(43), L"Calculation parameter #43");
}

TEST(CalcParameterValues, AreReadFromTheStartOfTheText) {
  const std::tuple<const wchar_t*, int, float> cases[] = {
      {L"", -1, 0.0F},     {L"12abc", 12, 12.0F},   {L"abc", 0, 0.0F}, {L"1.5", 1, 1.5F},
      {L" ", 0, 0.0F},     {L" \t-7 8", -7, -7.0F}, {L"+3", 3, 3.0F},  {L"1,5", 1, 1.0F},
      {L"0x10", 0, 16.0F}, {L"1e400", 1, INFINITY}};
  for (const auto& [text, integer, real] : cases) {
    Row row;
    std::wcscpy(row.text, text);
    EXPECT_EQ(std::pair(row.ValueInt(), row.ValueFloat()), std::pair(integer, real)) << row.text;
    EXPECT_STREQ(Row(row).ValueText(), text);
  }
}

}  // namespace
