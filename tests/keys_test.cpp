// A wrong order, and every table lookup misses; a wrong bridge, and keys change on their way to the
// host.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <iomanip>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "interfaces/Clavis.h"
#include "keys/IndexRecords.h"

namespace {

constexpr float nan_value = std::numeric_limits<float>::quiet_NaN();

template <class Record>
auto Fields(const Record& record) {
  return std::apply([](auto... field) { return std::array{field...}; }, record.tuple());
}

template <class Record>
class IdKeys : public testing::Test {};
using IdKeyTypes = testing::Types<QIdx1, QIdx2, QIdx3, QIdx4, QIdx5, QIdx6, QIdx8, QClavis>;
TYPED_TEST_SUITE(IdKeys, IdKeyTypes);

// Few different values, so that long common beginnings are frequent; the bounds catch a comparison
// by subtraction.
TYPED_TEST(IdKeys, SortFieldByFieldAsSignedNumbers) {
  constexpr std::array values = {-1, 0, 1, std::numeric_limits<int>::min(),
                                 std::numeric_limits<int>::max()};
  std::mt19937 random(4711);
  const auto draw = [&] {
    TypeParam key;
    std::apply([&](auto&... id) { ((id = random() % 3 == 0 ? values[random() % 5] : 7), ...); },
               key.tuple());
    return key;
  };
  for (int i = 0; i < 5000; ++i) {
    const TypeParam a = draw();
    const TypeParam b = draw();
    ASSERT_EQ(std::less<TypeParam>()(a, b), Fields(a) < Fields(b));
    ASSERT_EQ(a == b, Fields(a) == Fields(b));
  }
}

TYPED_TEST(IdKeys, StartWithoutValuesAndCopyAllFields) {
  TypeParam key;
  for (const int id : Fields(key)) EXPECT_EQ(id, -1);
  int next = 10;
  std::apply([&](auto&... id) { ((id = next++), ...); }, key.tuple());
  EXPECT_LT(TypeParam(), key);
  TypeParam copy;
  copy = key;
  EXPECT_EQ(Fields(copy), Fields(key));
  EXPECT_EQ(Fields(copy).back(), next - 1);
}

TEST(Keys, FloatDecidesBehindTheIdAndNaNComesLast) {
  const std::vector<QIdxIF> sorted = {{-1, 0.0F},     {3, -std::numeric_limits<float>::infinity()},
                                      {3, 1.5F},      {3, 2.5F},
                                      {3, nan_value}, {4, -7.0F}};
  EXPECT_EQ(QIdxIF(), sorted.front());
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    for (std::size_t j = 0; j < sorted.size(); ++j) {
      EXPECT_EQ(sorted[i] < sorted[j], i < j) << i << " " << j;
      EXPECT_EQ(sorted[i] == sorted[j], i == j) << i << " " << j;
    }
  }
}

TEST(Keys, NamesSortByCodeUnit) {
  const std::wstring longest(199, L'x');
  const std::vector<std::wstring> sorted = {L"",     L"ABC",    L"abc",          L"abcd",
                                            longest, L"\u00E4", L"\xD83D\xDE00", L"\xFF21"};
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    EXPECT_EQ(QIdxName(sorted[i]).text, sorted[i]);
    for (std::size_t j = 0; j < sorted.size(); ++j) {
      EXPECT_EQ(QIdxName(sorted[i]) < QIdxName(sorted[j]), i < j) << i << " " << j;
    }
  }
  EXPECT_EQ(QIdxName(longest + L"yz"), QIdxName(longest));

  QIdxName name;
  EXPECT_EQ(std::wstring(name.text), L"");
  std::get<0>(name.tuple())[0] = L'a';  // the buffer itself, which the row reader fills
  EXPECT_EQ(name, QIdxName(L"a"));
  const QIdxName& constant = name;
  EXPECT_EQ(std::get<const wchar_t*>(constant.tuple()), constant.text);
  std::fill_n(name.text, QIdxName::width, L'a');  // no closing zero: compared within the buffer
  EXPECT_LT(QIdxName(std::wstring(199, L'a')), name);
}

class GroupedDigits : public std::numpunct<wchar_t> {
  wchar_t do_thousands_sep() const override { return L'.'; }
  std::string do_grouping() const override { return "\3"; }
};

TEST(Keys, StreamTextIsPlainUnderEveryFormat) {
  const std::vector<std::pair<QClavis, std::wstring>> cases = {
      {QClavis(), L"-1 -1 -1 -1 -1 -1"},
      {QClavis(4, 7, -1, -1, -1, -1), L"4 7 -1 -1 -1 -1"},
      {QClavis(1234567, std::numeric_limits<int>::max(), std::numeric_limits<int>::min(), 0, 10, 0),
       L"1234567 2147483647 -2147483648 0 10 0"},
  };
  for (const auto& [key, text] : cases) {
    std::wostringstream out;
    out.imbue(std::locale(std::locale::classic(), new GroupedDigits));
    out << std::hex << std::showpos << std::setw(19) << std::setfill(L'.') << key << L'|' << key;
    std::wstring expected(19 - std::min<std::size_t>(19, text.size()), L'.');
    expected += text;
    expected += L'|';
    expected += text;
    EXPECT_EQ(out.str(), expected);
  }
}

TEST(Keys, AllFormsKeepNumbersAndOrder) {
  const QClavis table_key(1, 2, 3, 4, 5, 6);
  CClavis key(table_key.id);
  EXPECT_EQ((std::array{key.Mode(), key.Instrument(), key.Channel(), key.Location(),
                        key.InstrParam(), key.Sensor()}),
            Fields(table_key));
  EXPECT_EQ(key.Parameter(), 5);
  key[Clavis::Location] = -1;
  EXPECT_EQ(QClavis(key), QClavis(1, 2, 3, -1, 5, 6));
  EXPECT_EQ(CClavis(key.Base()), key);

  const QIdx8 wide(8, 9, table_key);
  EXPECT_EQ(Fields(wide), (std::array{8, 9, 1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(wide, QIdx8(8, 9, CClavis(table_key.id)));
  EXPECT_EQ(wide, QIdx8(8, 9, 1, 2, 3, 4, 5, 6));
}

TEST(Keys, MatchWhereEqualOrWithoutValue) {
  struct Case {
    QClavis other;
    bool match;
  };
  const CClavis key(QClavis(1, 2, -1, 4, 5, 6).id);
  const std::vector<Case> cases = {
      {{1, 2, -1, 4, 5, 6}, true},   {{1, 2, 3, 4, 5, 6}, true},
      {{1, 2, 3, 4, 5, 7}, false},   {{0, 2, 3, 4, 5, 6}, false},
      {{-1, 2, 3, 4, 5, -1}, true},  {{-1, 2, 3, 4, 4, -1}, false},
      {{-2, 2, -1, 4, 5, 6}, false}, {QClavis(), true},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(key & CClavis(c.other.id), c.match);
    EXPECT_EQ(CClavis(c.other.id) & key, c.match);
  }
}

TEST(Keys, ElementWordsAreTextForEveryNumber) {
  EXPECT_STREQ(Clavis::ElementName(Clavis::Location, 1), L"object");
  EXPECT_STREQ(Clavis::ElementName(Clavis::Mode, 2), L"Test step");
  EXPECT_STREQ(Clavis::ElementName(Clavis::Mode, 3), L"");
  EXPECT_STREQ(Clavis::ElementName(static_cast<Clavis::qOrder>(-1), 1), L"");
  EXPECT_STREQ(Clavis::ElementName(static_cast<Clavis::qOrder>(6), 2), L"");
}

}  // namespace
