// Whoever loses this loses the grid on which results are taken: the cell of a running value, the
// place of a cell, the axes of a trigger, and the promise that none of it allocates.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <random>

#include "allocation_count.h"
#include "test_store.h"
#include "trigger/TriggerStore.h"

namespace {

using Interval = CTriggerStore::CInterval;
using Intervals = CTriggerStore::CIntervals;
using Dimensions = CTriggerStore::CDimensions;
using Cell = std::int64_t;

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr int virtual_10 = 10 + (7 << 11);

// Triggers of test step 10. 1 to 3: one axis, raising, falling, and falling with its bounds the
// other way round. 4: four axes, one running. 5: no axis that there is but number 2. 6: two
// running. 7: none running. 8: none of its axes is there. 9: step 0.
constexpr const char* rows =
    "<TTriggerParam>: {\n"
    "10 1 1 2 0 1000 3000 50 0 2\n"
    "10 2 1 2 0 1000 3000 50 0 3\n"
    "10 3 1 2 0 3000 1000 50 0 3\n"
    "10 4 1 2 0 0 10 1 0 1\n"
    "10 4 2 2 0 100 200 10 0 2\n"
    "10 4 3 2 0 -5 5 0.5 0 1\n"
    "10 4 4 2 0 0 8 2 0 1\n"
    "10 5 0 2 0 1 2 1 0 2\n"
    "10 5 2 2 0 0 10 1 0 3\n"
    "10 5 5 2 0 1 2 1 0 2\n"
    "10 6 1 2 0 0 10 1 0 2\n"
    "10 6 2 2 0 0 10 1 0 3\n"
    "10 7 1 2 0 0 10 1 0 1\n"
    "10 8 -2147483648 2 0 0 10 1 0 2\n"
    "10 8 0 2 0 0 10 1 0 2\n"
    "10 8 5 2 0 0 10 1 0 2\n"
    "10 8 2147483647 2 0 0 10 1 0 2\n"
    "10 9 1 2 0 5 10 0 0 2\n"
    "10 2147483647 4 2 0 0 10 1 0 2\n"
    "11 -2147483648 1 2 0 0 10 1 0 2\n"
    "}\n";

class Triggers : public testing::Test {
 protected:
  testing_support::TestStore data{rows};
  CTriggerStore store{data.params};
};

Dimensions Values(std::initializer_list<std::optional<float>> values) {
  Dimensions dimensions;
  unsigned dim = 0;
  for (const std::optional<float> value : values) {
    dimensions.value[dim] = value.value_or(777.0F);
    dimensions.is_set[dim++] = value.has_value();
  }
  return dimensions;
}

Interval Axis(float start, float step, float stop) {
  Interval interval;
  interval.set(start, step, stop);
  return interval;
}

TEST(TriggerAxes, ComeFromTheirBounds) {
  struct {
    float start, step, stop;
    float low, high;
    unsigned len;
    bool raising;
  } const cases[] = {
      {1000, 50, 3000, 1000, 3000, 40, true},
      {3000, 50, 1000, 1000, 3000, 40, false},
      {5, 1, 5, 5, 5, 0, true},
      {0, 0.3F, 1, 0, 1, 3, true},
      {0, 0, 1, 0, 1, 0, true},
      {0, 0, 0, 0, 0, 0, true},
      {0, -1, 5, 0, 5, 0, true},
      {0, 1e-30F, 1e9F, 0, 1e9F, UINT_MAX, true},
      {0, 1, infinity, 0, infinity, 0, true},
      {infinity, 1, 0, 0, infinity, 0, false},
  };
  for (const auto& c : cases) {
    QVTriggerParams row;
    row.start = c.start;
    row.step = c.step;
    row.stop = c.stop;
    row.direction = 3;  // plays no part
    for (const Interval& axis : {Axis(c.start, c.step, c.stop), Interval(row)}) {
      EXPECT_EQ(axis.start(), c.low) << c.start << " " << c.step << " " << c.stop;
      EXPECT_EQ(axis.stop(), c.high) << c.start << " " << c.step << " " << c.stop;
      EXPECT_EQ(axis.step(), c.step);
      EXPECT_EQ(axis.len(), c.len) << c.start << " " << c.step << " " << c.stop;
      EXPECT_EQ(axis.raising(), c.raising);
    }
  }
  EXPECT_TRUE(Axis(0, 1, nan).raising());
  Interval axis(10, 2, 5, false);
  EXPECT_EQ(axis.stop(), 20);
  axis.clear();
  EXPECT_FALSE(axis.raising());
  EXPECT_EQ(axis.start() + axis.stop() + static_cast<float>(axis.len()), 0);
  EXPECT_EQ(axis.step(), 1);
}

TEST(TriggerCells, OfOneValue) {
  constexpr int out = -1;
  struct {
    Interval axis;
    float value;
    int index;    // without clamp
    int clamped;  // with clamp
  } const cases[] = {
      {Axis(1000, 50, 3000), 1175, 3, 3},
      {Axis(1000, 50, 3000), 1000, 0, 0},
      {Axis(1000, 50, 3000), 1050, 1, 1},
      {Axis(1000, 50, 3000), 975, 0, 0},
      {Axis(1000, 50, 3000), 950, out, 0},
      {Axis(3000, 50, 1000), 2000, 20, 20},
      {Axis(0, 1, 10), 65535.5F, 65535, 65535},
      {Axis(0, 1, 10), 65536, out, 65535},
      {Axis(0, 1, 10), 3e9F, out, 65535},
      {Axis(0, 1, 10), -3e9F, out, 0},
      {Axis(0, 1e-30F, 10), 1e30F, out, 65535},
      {Axis(0, 1, 10), infinity, out, 65535},
      {Axis(0, 1, 10), -infinity, out, 0},
      {Axis(0, 1, 10), nan, out, 0},
      {Axis(5, 0, 10), 6, out, 65535},
      {Axis(5, 0, 10), 4, out, 0},
      {Axis(5, 0, 10), 5, out, 0},
  };
  for (const auto& c : cases) {
    for (const unsigned dim : {0U, 1U, 2U, 3U}) {
      SCOPED_TRACE(testing::Message() << c.value << " in dimension " << dim);
      for (const bool clamp : {false, true}) {
        const int index = clamp ? c.clamped : c.index;
        Cell cell = 0;
        EXPECT_EQ(CTriggerStore::cell(c.axis, dim, c.value, cell, clamp), index != out);
        const auto bits = static_cast<std::uint64_t>(index == out ? 0 : index) << (16 * dim);
        EXPECT_EQ(cell, static_cast<Cell>(bits));
      }
    }
  }
  Cell cell = 0x00050004;
  EXPECT_TRUE(CTriggerStore::cell(Axis(0, 1, 10), 0, 3, cell, false));
  EXPECT_EQ(cell, 0x00050007) << "ORed";
  EXPECT_FALSE(CTriggerStore::cell(Axis(0, 1, 10), 0, -3, cell, false));
  EXPECT_FALSE(CTriggerStore::cell(Axis(0, 1, 10), 4, 3, cell, true));
  EXPECT_FALSE(CTriggerStore::cell(Axis(0, 1, 10), UINT_MAX, 3, cell, true));
  EXPECT_EQ(cell, 0x00050007);
}

TEST_F(Triggers, GiveTheCellOfTheirRows) {
  struct {
    int mode, trigger;
    unsigned dim;
    float value;
    bool clamp;
    bool good;
    Cell cell;
  } const cases[] = {
      {10, 1, 0, 1175, false, true, 3},
      {virtual_10, 1, 0, 1175, false, true, 3},
      {10, 3, 0, 2000, false, false, 0},  // from the row's own start: -20
      {10, 3, 0, 2000, true, true, 0},
      {10, 4, 3, 6, false, true, Cell{3} << 48},
      {10, 9, 0, 6, false, false, 0},
      {10, 9, 0, 6, true, true, 65535},
      {10, INT_MAX, 3, 2, false, true, Cell{2} << 48},
      {10, 5, 4, 2, true, false, 0},
      {10, 8, UINT_MAX, 2, true, false, 0},
      {10, 8, INT_MAX - 1, 2, true, false, 0},
      {12, 1, 0, 1175, true, false, 0},
      {INT_MIN, INT_MIN, 0, 1175, true, false, 0},
  };
  for (const auto& c : cases) {
    Cell cell = 0;
    EXPECT_EQ(store.cell(c.mode, c.trigger, c.dim, c.value, cell, c.clamp), c.good)
        << c.trigger << " " << c.dim << " " << c.value;
    EXPECT_EQ(cell, c.cell) << c.trigger << " " << c.dim << " " << c.value;
  }
}

TEST_F(Triggers, GiveTheCellOfValuesInSeveralDimensions) {
  constexpr Cell before = 4711;
  struct {
    int trigger;
    Dimensions values;
    bool clamp;
    bool good;
    Cell cell;
  } const cases[] = {
      {4, Values({3, 150, 0, 5}), false, true, 0x0002'000A'0005'0003},
      {4, Values({3, {}, 0, {}}), false, true, 0x0000'000A'0000'0003},
      {4, Values({3, {}, -9, {}}), false, false, before},
      {4, Values({3, {}, -9, {}}), true, true, 3},
      {4, Values({}), false, true, 0},
      {1, Values({{}, 5, 5, 5}), false, true, 0},
      {5, Values({1, 2, 3, 4}), false, true, 0x0002'0000},
      {99, Values({1, 2, 3, 4}), true, false, before},
      {8, Values({1, 2, 3, 4}), true, false, before},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.trigger << " " << c.values.is_set << " " << c.clamp);
    Cell cell = before;
    EXPECT_EQ(store.cell(10, c.trigger, c.values, cell, c.clamp), c.good);
    EXPECT_EQ(cell, c.cell);
    Intervals intervals;
    if (!store.field(10, c.trigger, intervals)) continue;
    cell = before;
    EXPECT_EQ(CTriggerStore::cell(intervals, c.values, cell, c.clamp), c.good);
    EXPECT_EQ(cell, c.cell);
  }
}

TEST_F(Triggers, GiveTheEdgeInTheRunningDirection) {
  struct {
    int trigger;
    unsigned dim;
    Cell cell;
    std::optional<float> edge;   // by the row's direction
    std::optional<float> field;  // by the direction of its bounds
  } const cases[] = {
      {1, 0, 3, 1200, 1200},
      {2, 0, 3, 1150, 1200},
      {3, 0, 3, 1150, 1150},
      {4, 0, 3, {}, 4},  // no direction
      {4, 1, Cell{0x0007'0000} | 3, 180, 180},
      {1, 0, 65535, 1000, 1000},  // the index -1
      {1, 0, 32767, 1639400, 1639400},
      {5, 0, 3, {}, {}},
      {5, 4, 3, {}, {}},
      {8, UINT_MAX, 3, {}, {}},
      {INT_MAX, 3, Cell{5} << 48, 6, 6},
      {INT_MIN, 0, 3, {}, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.trigger << " " << c.dim);
    float value = 4711;
    EXPECT_EQ(store.position(10, c.trigger, c.cell, c.dim, value), c.edge.has_value());
    EXPECT_EQ(value, c.edge.value_or(4711));
    value = 4711;
    Interval axis(4711, 0, 0, true);
    EXPECT_EQ(store.field(10, c.trigger, c.dim, axis), c.field.has_value());
    EXPECT_EQ(CTriggerStore::position(axis, c.cell, c.dim, value), c.dim < 4);
    EXPECT_EQ(value, c.field.value_or(4711));
  }
}

TEST_F(Triggers, GiveTheMiddleOrTheEdgeOfACellNearby) {
  struct {
    int trigger;
    Cell cell, offset;
    Dimensions places;
  } const cases[] = {
      {1, 3, 0, Values({1175, {}, {}, {}})},
      {1, 3, 2, Values({1250, {}, {}, {}})},
      {1, 3, 0xFFFF, Values({1100, {}, {}, {}})},
      {1, 32767, 1, Values({-1637400, {}, {}, {}})},  // wraps to -32768
      {3, 3, 0, Values({1175, {}, {}, {}})},
      {4, 0x0002'000A'0005'0003, 0x0001'0000'FFFF'0000, Values({3.5F, 140, 0.25F, 6})},
      {5, 0, 0, Values({{}, 0.5F, {}, {}})},
      {8, 0, 0, Values({{}, {}, {}, {}})},
      {99, 0, 0, Values({{}, {}, {}, {}})},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.trigger << " " << c.offset);
    Dimensions table = Values({1, 2, 3, 4});
    Dimensions axes;
    Intervals intervals;
    EXPECT_EQ(store.position(10, c.trigger, c.cell, c.offset, table), c.places.is_set.any());
    EXPECT_EQ(table.is_set, c.places.is_set);
    EXPECT_EQ(store.field(10, c.trigger, intervals), c.places.is_set.any());
    EXPECT_TRUE(CTriggerStore::position(intervals, c.cell, c.offset, axes));
    EXPECT_TRUE(axes.is_set.all());
    for (unsigned dim = 0; dim < 4; ++dim) {
      if (!c.places.is_set[dim]) continue;
      EXPECT_EQ(table.value[dim], c.places.value[dim]) << dim;
      EXPECT_EQ(axes.value[dim], c.places.value[dim]) << dim;
    }
  }
}

TEST_F(Triggers, TellTheirDimensions) {
  struct {
    int mode, trigger;
    int running;
    unsigned mask;
  } const cases[] = {
      {10, 1, 0, 1},
      {10, 2, 0, 1},
      {10, 4, 1, 15},
      {10, 5, 1, 2},
      {10, 6, -1, 3},
      {10, 7, -1, 1},
      {10, 8, -1, 0},
      {10, 99, -1, 0},
      {10, INT_MAX, 3, 8},
      {virtual_10, 4, 1, 15},
      {11, INT_MIN, 0, 1},
      {-1, 1, -1, 0},
      {INT_MAX, INT_MAX, -1, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.mode << " " << c.trigger);
    unsigned mask = 4711;
    EXPECT_EQ(store.dimension(c.mode, c.trigger), c.running);
    EXPECT_EQ(store.dimensions(c.mode, c.trigger, mask), c.mask != 0);
    EXPECT_EQ(mask, c.mask);
    Intervals intervals;
    intervals.is_set.set();
    EXPECT_EQ(store.field(c.mode, c.trigger, intervals), c.mask != 0);
    EXPECT_EQ(intervals.is_set.to_ulong(), c.mask);
  }
}

// The middle of every cell lies in it, on rising and on falling axes.
TEST(TriggerCells, HoldTheirMiddle) {
  std::mt19937 random(8);
  for (int round = 0; round < 2000; ++round) {
    const auto bound = [&] {
      return static_cast<float>(std::uniform_int_distribution(-99, 99)(random));
    };
    Intervals axes;
    axes.is_set.set();
    for (Interval& axis : axes.interval) axis.set(bound(), 0.25F, bound());
    const auto index = [&] { return std::uniform_int_distribution<Cell>(0, 32767)(random); };
    const Cell cell = index() | index() << 16 | index() << 32 | index() << 48;
    Dimensions middle;
    Cell back = 0;
    CTriggerStore::position(axes, cell, 0, middle);
    EXPECT_TRUE(CTriggerStore::cell(axes, middle, back, false));
    EXPECT_EQ(back, cell);
  }
}

TEST_F(Triggers, AllocateNothing) {
  Intervals intervals;
  Dimensions dimensions = Values({3, 150, 0, 5});
  Interval axis;
  Cell cell = 0;
  unsigned mask = 0;
  float value = 0;
  const std::size_t before = AllocationCount();
  const bool all =
      store.field(10, 4, intervals) && store.field(10, 4, 1, axis) &&
      store.dimensions(10, 4, mask) && store.dimension(10, 4) == 1 &&
      store.cell(10, 4, dimensions, cell, false) && store.cell(10, 4, 1, 150, cell, false) &&
      CTriggerStore::cell(intervals, dimensions, cell, false) &&
      CTriggerStore::cell(axis, 1, 150, cell, false) && store.position(10, 4, cell, 1, value) &&
      store.position(10, 4, cell, 0, dimensions) && CTriggerStore::position(axis, cell, 1, value) &&
      CTriggerStore::position(intervals, cell, 0, dimensions);
  EXPECT_EQ(AllocationCount(), before);
  EXPECT_TRUE(all);
}

}  // namespace
