// A wrong order, and every table lookup misses; a wrong bridge, and keys change on their way to the
// host.
#include <iomanip>
#include <locale>

#include "interfaces/signal/Clavis.h"
#include "keys/IndexRecords.h"
#include "support.h"

namespace {

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
TYPED_TEST(IdKeys, SortFieldByFieldAsSignedNumbersAndCopyAllFields) {
  for (const int id : Fields(TypeParam())) EXPECT_EQ(id, -1);
  constexpr std::array values = {-1, 0, 1, INT_MIN, INT_MAX};
  std::mt19937 random(4711);
  const auto draw = [&] {
    TypeParam key;
    std::apply([&](auto&... id) { ((id = random() % 3 == 0 ? values[random() % 5] : 7), ...); },
               key.tuple());
    return key;
  };
  for (int i = 0; i < 5000; ++i) {
    TypeParam a = draw();
    const TypeParam b = draw();
    ASSERT_EQ(std::less<TypeParam>()(a, b), Fields(a) < Fields(b));
    ASSERT_EQ(a == b, Fields(a) == Fields(b));
    a = b;
    ASSERT_EQ(Fields(a), Fields(b));
  }
}

template <class Key>
void ExpectOrder(const std::vector<Key>& sorted) {
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    for (std::size_t j = 0; j < sorted.size(); ++j) {
      EXPECT_EQ(sorted[i] < sorted[j], i < j) << i << " " << j;
      EXPECT_EQ(sorted[i] == sorted[j], i == j) << i << " " << j;
    }
  }
}

TEST(Keys, FloatDecidesBehindTheIdAndNaNComesLast) {
  ExpectOrder<QIdxIF>(
      {{-1, 0}, {3, -HUGE_VALF}, {3, 1.5F}, {3, 2.5F}, {3, std::nanf("")}, {4, -7.0F}});
  EXPECT_EQ(QIdxIF(), QIdxIF(-1, 0.0F));
}

TEST(Keys, NamesSortByCodeUnit) {
  const std::wstring longest(199, L'x');
  std::vector<QIdxName> sorted;
  for (const std::wstring& text :
       {std::wstring(), std::wstring(L"ABC"), std::wstring(L"abc"), std::wstring(L"abcd"), longest,
        std::wstring(L"\u00E4"), std::wstring(L"\xD83D\xDE00"), std::wstring(L"\xFF21")}) {
    EXPECT_EQ(sorted.emplace_back(text).text, text);
  }
  ExpectOrder(sorted);
  EXPECT_EQ(QIdxName(longest + L"yz"), QIdxName(longest));
  QIdxName name;
  std::fill_n(name.text, QIdxName::width, L'a');  // no closing zero: compared within the buffer
  EXPECT_LT(QIdxName(std::wstring(199, L'a')), name);
}

class GroupedDigits : public std::numpunct<wchar_t> {
  wchar_t do_thousands_sep() const override { return L'.'; }
  std::string do_grouping() const override { return "\3"; }
};

TEST(Keys, StreamTextIsPlainUnderEveryFormat) {
  std::wostringstream out;
  out.imbue(std::locale(std::locale::classic(), new GroupedDigits));
  out << std::hex << std::showpos << std::setw(19) << std::setfill(L'.') << QClavis() << L'|'
      << QClavis(1234567, INT_MAX, INT_MIN, 0, 10, 0);
  EXPECT_EQ(out.str(), L"..-1 -1 -1 -1 -1 -1|1234567 2147483647 -2147483648 0 10 0");
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
}

TEST(Keys, MatchWhereEqualOrWithoutValue) {
  const CClavis key(QClavis(1, 2, -1, 4, 5, 6).id);
  const std::pair<QClavis, bool> cases[] = {{{1, 2, 3, 4, 5, 6}, true},
                                            {{1, 2, 3, 4, 5, 7}, false},
                                            {{0, 2, 3, 4, 5, 6}, false},
                                            {{-1, 2, 3, 4, 5, -1}, true},
                                            {{-1, 2, 3, 4, 4, -1}, false},
                                            {{-2, 2, -1, 4, 5, 6}, false},
                                            {QClavis(), true}};
  for (const auto& [other, match] : cases) {
    EXPECT_EQ(key & CClavis(other.id), match);
    EXPECT_EQ(CClavis(other.id) & key, match);
  }
}

TEST(Keys, ElementWordsAreTextForEveryNumber) {
  const auto name = [](unsigned element, unsigned form) {
    return std::wstring(Clavis::ElementName(static_cast<Clavis::qOrder>(element), form));
  };
  EXPECT_EQ(name(3, 1) + name(0, 2), L"objectTest step");
  EXPECT_EQ(name(0, 3) + name(7, 1) + name(6, 2), L"");
}

}  // namespace
