// A misread unit shows a measured value a thousand times too large.
#include "interfaces/signal/MeasuringUnit.h"
#include "support.h"

namespace {

using Unit = CMeasuringUnit;
constexpr unsigned int first_code_behind = 30;

Unit Make(unsigned int code, short prefix = 0, short power = 1) {
  return {static_cast<Unit::commonUnits>(code), prefix, power, 1.0F, 0};
}

TEST(Units, CodesThatAreNoneChangeNothing) {
  const Unit before(Unit::pressure_bar, -3, 2, 0.5F, 7);
  Unit unit = before;
  for (const unsigned int code : {1U, first_code_behind, UINT_MAX}) {
    EXPECT_FALSE(unit.set(code, 0, 1, 1.0F, 0)) << code;
    EXPECT_EQ(unit, before) << code;
    EXPECT_EQ(Make(code, 3), Unit()) << code;
  }
}

// Every kind with every prefix, also those without a symbol, and some powers.
TEST(Units, EveryTextLeadsBackToItsUnit) {
  std::vector<short> prefixes = {-32768, 32767};
  for (short prefix = -25; prefix <= 25; ++prefix) prefixes.push_back(prefix);
  for (unsigned int code = 0; code < first_code_behind; ++code) {
    if (code == 1) continue;
    for (const short prefix : prefixes) {
      for (const short power : std::vector<short>{1, 2, 3, -1, 0, -32768}) {
        const Unit unit = Make(code, prefix, power);
        for (const bool ascii : {false, true}) {
          const std::wstring text = unit.prefixunit(ascii);
          if (text.empty()) continue;  // dimensionless: no power to see
          Unit back;
          ASSERT_TRUE(back.set(text.c_str())) << testing::PrintToString(text);
          ASSERT_EQ(back, unit) << testing::PrintToString(text);
        }
      }
    }
  }
}

TEST(Units, CopiesKeepOrDropTheScale) {
  const Unit unit(Unit::frequency_hz, 3, 2, 0.5F, 7);
  EXPECT_EQ(Unit(unit, false), unit);
  EXPECT_EQ(Unit(unit, true), Make(Unit::frequency_hz, 0, 2));
  EXPECT_EQ(unit.Factor(), 0.5F);
  EXPECT_EQ(unit.Offset(), 7U);
  EXPECT_NE(unit, Unit(Unit::frequency_hz, 3, 2, 0.5F, 8));
  EXPECT_EQ(Unit(Unit::none, 0, 1, 1.0F, 0), Unit());
}

}  // namespace
