// Triggers beyond what cases/triggers.txt tells: axes and cells that a host puts together itself.
#include <cstdint>

#include "support.h"
#include "trigger/TriggerStore.h"

namespace {

using Interval = CTriggerStore::CInterval;

TEST(Triggers, AreMadeOfBoundsOrOfALength) {
  Interval axis(10, 2, 5, false);
  EXPECT_EQ(axis.stop(), 20);
  axis.clear();
  EXPECT_FALSE(axis.raising());
  EXPECT_EQ(std::tuple(axis.start(), axis.step(), axis.stop(), axis.len()),
            std::tuple(0, 1, 0, 0U));
  axis.set(0, 1, NAN);
  EXPECT_TRUE(axis.raising());
}

TEST(Triggers, PackOneValueIntoTheCellThatIsGiven) {
  const Interval axis(0, 1, 10, true);
  std::int64_t cell = 0x00050004;
  EXPECT_TRUE(CTriggerStore::cell(axis, 0, 3, cell, false));
  EXPECT_EQ(cell, 0x00050007) << "ORed";
  EXPECT_FALSE(CTriggerStore::cell(axis, 0, -1, cell, false));
  const TestStore data("<TTriggerParam>: {\n10 1 1 2 0 30 10 1 0 3\n}\n");
  const CTriggerStore store(data.params);
  EXPECT_TRUE(store.cell(10 + 2048, 1, 0, 36, cell, false)) << "from the row's own start";
  EXPECT_FALSE(store.cell(10, 1, 1, 31, cell, true));
  float place = 5;
  for (const unsigned dim : {4U, UINT_MAX}) {
    EXPECT_FALSE(CTriggerStore::cell(axis, dim, 3, cell, true));
    EXPECT_FALSE(CTriggerStore::position(axis, cell, dim, place));
  }
  EXPECT_EQ(cell, 0x00050007);
  EXPECT_EQ(place, 5);
}

}  // namespace
