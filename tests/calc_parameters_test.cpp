// What calculation parameters hold, and what they and their values are called.

#include <gtest/gtest.h>

#include <limits>
#include <list>
#include <string>

#include "frame/ModuleStrings.h"
#include "test_store.h"

namespace {

using Texts = std::list<CString>;
using Row = QVIpCalcParameter;

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();

// The texts between bars.
Texts Split(const CString& joined) {
  Texts texts(1);
  for (const wchar_t c : joined) {
    if (c == L'|') {
      texts.emplace_back();
    } else {
      texts.back() += c;
    }
  }
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

// Those with a list of values: how many it shows, and all texts that there are.
struct Values {
  int number;
  std::size_t listed;
  const wchar_t* texts;
};
constexpr Values values[] = {
    {0, 7, L"not defined|Minimum|Maximum|Average|Log. average / RMS|Sum|Log. sum"},
    {2, 9, L"not defined|(1)|Points maximum|(3)|(4)|(5)|Maximum|(7)|Sum"},
    {9, 5,
     L"not defined|Minimum|Maximum|Sum above|Sum below|Deviation|RMS above|RMS below|"
     L"Minimum value|Maximum value|Area above|Area below"},
    {27, 5, L"invalid|Addition|Subtraction|Multiplication|Rel.Magn."},
    {33, 4, L"Standard|Median|Quantile 95%|Quantile 90%"},
    {34, 3, L"End position|Maximum position|Maximum force|Position max. force|Shifting time"},
};

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
  for (const CString& text : texts) {
    EXPECT_EQ(Row::GetCalcParamEnumText(number++), text);
  }
  const std::pair<int, const wchar_t*> others[] = {
      {43, L"Calculation parameter #43"},
      {-1, L"Calculation parameter"},  // its neighbour in the string table
      {100, L"not defined"},
      {-2, L"Calculation parameter #-2"},
      {-101, L"Calculation parameter #-101"},
      {highest, L"Calculation parameter #2147483647"},
      {lowest, L"Calculation parameter #-2147483648"}};
  for (const auto& [other, text] : others) EXPECT_EQ(Row::GetCalcParamEnumText(other), text);
}

TEST_F(CalcParameterTexts, NameTheValues) {
  for (const Values& of : values) {
    Texts expected = Split(of.texts);
    int value = 0;
    for (const CString& text : expected) {
      EXPECT_EQ(Row::GetCalcParamEnumSubText(of.number, value++), text) << of.number;
    }
    Texts texts = {L"what was there"};
    EXPECT_EQ(Row::GetCalcParamEnumSubTexts(of.number, texts), of.listed) << of.number;
    expected.resize(of.listed);
    EXPECT_EQ(texts, expected) << of.number;
    for (const int unknown : {value, highest, lowest}) {
      EXPECT_EQ(Row::GetCalcParamEnumSubText(of.number, unknown), L"") << of.number;
    }
  }
  for (const int number : {1, 35, 43, -1, highest, lowest}) {
    Texts texts = {L"what was there"};
    EXPECT_EQ(Row::GetCalcParamEnumSubTexts(number, texts), 1U) << number;
    EXPECT_EQ(texts, Texts{L"(0)"}) << number;
    EXPECT_EQ(Row::GetCalcParamEnumSubText(number, 0), L"") << number;
  }
}

TEST_F(CalcParameterTexts, SpeakTheUsersLanguage) {
  for (const Language& language : Languages()) {
    SetUserLanguage(language.id);
    Texts texts;
    Row::GetCalcParamEnumTexts(texts);
    EXPECT_EQ(texts.size(), 43U);
    EXPECT_EQ(*FindModuleString(100 + 9, language), *std::next(texts.begin(), 9));
    const CString unknown = Row::GetCalcParamEnumText(43);
    EXPECT_EQ(unknown, *FindModuleString(99, language) + L" #43");
    const bool shares_english = language.id == english || language.tag == "default";
    EXPECT_EQ(unknown == L"Calculation parameter #43", shares_english) << language.tag;
  }
}

TEST(CalcParameterValues, AreReadFromTheStartOfTheText) {
  struct Case {
    const wchar_t* text;
    int integer;
    float real;
  };
  const Case cases[] = {
      {L"", -1, 0.0F},         {L"12abc", 12, 12.0F},
      {L"abc", 0, 0.0F},       {L"1.5", 1, 1.5F},
      {L" \t-7 8", -7, -7.0F}, {L" ", 0, 0.0F},
      {L"+3", 3, 3.0F},        {L"1,5", 1, 1.0F},
      {L"0x10", 0, 16.0F},     {L"1e400", 1, std::numeric_limits<float>::infinity()},
  };
  for (const Case& c : cases) {
    Row row;
    std::wcscpy(row.text, c.text);
    EXPECT_EQ(row.ValueInt(), c.integer) << Text::ToUtf8(c.text);
    EXPECT_EQ(row.ValueFloat(), c.real) << Text::ToUtf8(c.text);
    EXPECT_STREQ(Row(row).ValueText(), c.text);
  }
}

}  // namespace
