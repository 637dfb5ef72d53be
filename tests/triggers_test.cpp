// Whoever loses this loses the grid on which results are taken: the cell of a running value, the
// place of a cell, the axes of a trigger, and the promise that none of it allocates.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <optional>
#include <random>
#include <tuple>

#include "allocation_count.h"
#include "test_store.h"
#include "trigger/TriggerStore.h"

namespace {

using Interval = CTriggerStore::CInterval;
using Intervals = CTriggerStore::CIntervals;
using Dimensions = CTriggerStore::CDimensions;
using Cell = std::int64_t;

constexpr int virtual_10 = 10 + (7 << 11);
constexpr auto missing = std::nullopt;

// Triggers of test step 10. 1 to 3: one axis, raising, falling, and falling with its bounds the
// other way round. 4: four axes, one running. 5: no axis that there is but number 2. 6: two
// running. 7: none running. 8: none of its axes is there.
constexpr const char* rows =
    "<TTriggerParam>: {\n"
    "10 1 1 2 0 1000 3000 50 0 2\n"
    "10 2 1 2 0 1000 3000 50 0 3\n"
    "10 3 1 2 0 3000 1000 50 0 3\n"
    "10 4 1 2 0 0 10 1 0 1\n10 4 2 2 0 100 200 10 0 2\n"
    "10 4 3 2 0 -5 5 0.5 0 1\n10 4 4 2 0 0 8 2 0 1\n"
    "10 5 0 2 0 1 2 1 0 2\n10 5 2 2 0 0 10 1 0 3\n10 5 5 2 0 1 2 1 0 2\n"
    "10 6 1 2 0 0 10 1 0 2\n10 6 2 2 0 0 10 1 0 3\n"
    "10 7 1 2 0 0 10 1 0 1\n"
    "10 8 -2147483648 2 0 0 10 1 0 2\n10 8 0 2 0 0 10 1 0 2\n"
    "10 8 5 2 0 0 10 1 0 2\n10 8 2147483647 2 0 0 10 1 0 2\n"
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
  dimensions.value.fill(777.0F);
  unsigned dim = 0;
  for (const std::optional<float> value : values) {
    if (value) dimensions.value[dim] = *value;
    dimensions.is_set[dim++] = value.has_value();
  }
  return dimensions;
}

Interval Axis(float start, float step, float stop) {
  Interval interval;
  interval.set(start, step, stop);
  return interval;
}

using Shape = std::tuple<float, float, unsigned, bool>;  // start, stop, length, raising

Shape ShapeOf(const Interval& axis) {
  return {axis.start(), axis.stop(), axis.len(), axis.raising()};
}

TEST(TriggerAxes, ComeFromTheirBounds) {
  const std::tuple<float, float, float, Shape> cases[] = {
      {1000, 50, 3000, {1000, 3000, 40, true}},
      {3000, 50, 1000, {1000, 3000, 40, false}},
      {5, 1, 5, {5, 5, 0, true}},
      {0, 0.3F, 1, {0, 1, 3, true}},
      {0, 0, 1, {0, 1, 0, true}},
      {0, 1e-30F, 1e9F, {0, 1e9F, UINT_MAX, true}},
      {INFINITY, 1, 0, {0, INFINITY, UINT_MAX, false}},
      {INFINITY, 1, INFINITY, {INFINITY, INFINITY, 0, true}}};
  for (const auto& [start, step, stop, shape] : cases) {
    QVTriggerParams row;
    std::tie(row.start, row.step, row.stop) = std::tie(start, step, stop);
    row.direction = 3;  // plays no part
    for (const Interval& axis : {Axis(start, step, stop), Interval(row)}) {
      EXPECT_EQ(ShapeOf(axis), shape) << start << ' ' << step << ' ' << stop;
      EXPECT_EQ(axis.step(), step);
    }
  }
  EXPECT_TRUE(Axis(0, 1, NAN).raising());
  Interval axis(10, 2, 5, false);
  EXPECT_EQ(axis.stop(), 20);
  axis.clear();
  EXPECT_EQ(ShapeOf(axis), Shape(0, 0, 0, false));
  EXPECT_EQ(axis.step(), 1);
}

TEST(TriggerCells, OfOneValue) {
  struct {
    Interval axis;
    float value;
    std::optional<std::uint64_t> index;
    std::uint64_t clamped;
  } const cases[] = {
      {Axis(1000, 50, 3000), 1175, 3, 3},      {Axis(1000, 50, 3000), 1050, 1, 1},
      {Axis(1000, 50, 3000), 975, 0, 0},       {Axis(1000, 50, 3000), 950, missing, 0},
      {Axis(3000, 50, 1000), 2000, 20, 20},    {Axis(0, 1, 10), 65535.5F, 65535, 65535},
      {Axis(0, 1, 10), 65536, missing, 65535}, {Axis(0, 1, 10), INFINITY, missing, 65535},
      {Axis(0, 1, 10), -INFINITY, missing, 0}, {Axis(0, 1, 10), NAN, missing, 0},
      {Axis(5, 0, 10), 6, missing, 65535},     {Axis(5, 0, 10), 5, missing, 0},
  };
  for (const auto& c : cases) {
    for (const unsigned dim : {0U, 1U, 2U, 3U}) {
      SCOPED_TRACE(testing::Message() << c.value << " in dimension " << dim);
      Cell cell = 0;
      EXPECT_EQ(CTriggerStore::cell(c.axis, dim, c.value, cell, false), c.index.has_value());
      EXPECT_EQ(cell, static_cast<Cell>(c.index.value_or(0) << (16 * dim)));
      cell = 0;
      EXPECT_TRUE(CTriggerStore::cell(c.axis, dim, c.value, cell, true));
      EXPECT_EQ(cell, static_cast<Cell>(c.clamped << (16 * dim)));
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

// A miss leaves the cell and the place as they were.
constexpr int before = 4711;

TEST_F(Triggers, GiveTheCellOfTheirRows) {
  const std::tuple<int, int, unsigned, float, bool, std::optional<Cell>> cases[] = {
      {virtual_10, 1, 0, 1175, false, 3},
      {10, 3, 0, 2000, false, missing},  // from the row's own start: -20
      {10, 3, 0, 2000, true, 0},
      {10, 4, 3, 6, false, Cell{3} << 48},
      {10, 5, 4, 2, true, missing},
      {INT_MIN, INT_MIN, 0, 1175, true, missing},
  };
  for (const auto& [mode, trigger, dim, value, clamp, expected] : cases) {
    SCOPED_TRACE(testing::Message() << trigger << ' ' << dim << ' ' << value);
    Cell cell = 0;
    EXPECT_EQ(store.cell(mode, trigger, dim, value, cell, clamp), expected.has_value());
    EXPECT_EQ(cell, expected.value_or(0));
  }
}

TEST_F(Triggers, GiveTheCellOfValuesInSeveralDimensions) {
  const std::tuple<int, Dimensions, bool, std::optional<Cell>> cases[] = {
      {4, Values({3, 150, 0, 5}), false, 0x0002'000A'0005'0003},
      {4, Values({3, {}, 0, {}}), false, 0x0000'000A'0000'0003},
      {4, Values({3, {}, -9, {}}), false, missing},
      {4, Values({3, {}, -9, {}}), true, 3},
      {1, Values({{}, 5, 5, 5}), false, 0},
      {5, Values({1, 2, 3, 4}), false, 0x0002'0000},
      {8, Values({1, 2, 3, 4}), true, missing},
  };
  for (const auto& [trigger, values, clamp, expected] : cases) {
    SCOPED_TRACE(testing::Message() << trigger << ' ' << values.is_set << ' ' << clamp);
    Cell cell = before;
    EXPECT_EQ(store.cell(10, trigger, values, cell, clamp), expected.has_value());
    EXPECT_EQ(cell, expected.value_or(before));
    Intervals intervals;
    if (!store.field(10, trigger, intervals)) continue;
    cell = before;
    EXPECT_EQ(CTriggerStore::cell(intervals, values, cell, clamp), expected.has_value());
    EXPECT_EQ(cell, expected.value_or(before));
  }
}

TEST_F(Triggers, GiveTheEdgeInTheRunningDirection) {
  // The last two: by the row's direction, and by the direction of its bounds.
  const std::tuple<int, unsigned, Cell, std::optional<float>, std::optional<float>> cases[] = {
      {1, 0, 3, 1200, 1200},
      {2, 0, 3, 1150, 1200},
      {3, 0, 3, 1150, 1150},
      {4, 0, 3, missing, 4},  // no direction
      {4, 1, Cell{0x0007'0000} | 3, 180, 180},
      {1, 0, 65535, 1000, 1000},  // the index -1
      {5, 0, 3, missing, missing},
      {8, UINT_MAX, 3, missing, missing},
      {INT_MAX, 3, Cell{5} << 48, 6, 6},
  };
  for (const auto& [trigger, dim, cell, by_row, by_bounds] : cases) {
    SCOPED_TRACE(testing::Message() << trigger << ' ' << dim);
    float value = before;
    EXPECT_EQ(store.position(10, trigger, cell, dim, value), by_row.has_value());
    EXPECT_EQ(value, by_row.value_or(before));
    value = before;
    Interval axis(before, 0, 0, true);
    EXPECT_EQ(store.field(10, trigger, dim, axis), by_bounds.has_value());
    EXPECT_EQ(CTriggerStore::position(axis, cell, dim, value), dim < 4);
    EXPECT_EQ(value, by_bounds.value_or(before));
  }
}

TEST_F(Triggers, GiveTheMiddleOrTheEdgeOfACellNearby) {
  const std::tuple<int, Cell, Cell, Dimensions> cases[] = {
      {1, 3, 0, Values({1175})},
      {1, 32767, 1, Values({-1637400})},  // wraps to -32768
      {3, 3, 0, Values({1175})},
      {4, 0x0002'000A'0005'0003, 0x0001'0000'FFFF'0000, Values({3.5F, 140, 0.25F, 6})},
      {5, 0, 0, Values({{}, 0.5F})},
      {8, 0, 0, Values({})},
  };
  for (const auto& [trigger, cell, offset, places] : cases) {
    SCOPED_TRACE(testing::Message() << trigger << ' ' << offset);
    Dimensions table = Values({});
    EXPECT_EQ(store.position(10, trigger, cell, offset, table), places.is_set.any());
    EXPECT_EQ(table.is_set, places.is_set);
    EXPECT_EQ(table.value, places.value);
    Intervals intervals;
    store.field(10, trigger, intervals);
    Dimensions axes;
    EXPECT_TRUE(CTriggerStore::position(intervals, cell, offset, axes));
    EXPECT_TRUE(axes.is_set.all());
    for (unsigned dim = 0; dim < 4; ++dim) {
      if (!places.is_set[dim]) axes.value[dim] = 777.0F;
    }
    EXPECT_EQ(axes.value, places.value);
  }
}

TEST_F(Triggers, TellTheirDimensions) {
  const std::tuple<int, int, int, unsigned> cases[] = {
      {10, 1, 0, 1},       {10, 2, 0, 1},  {virtual_10, 4, 1, 15},   {10, 5, 1, 2},
      {10, 6, -1, 3},      {10, 7, -1, 1}, {10, 8, -1, 0},           {10, INT_MAX, 3, 8},
      {11, INT_MIN, 0, 1}, {-1, 1, -1, 0}, {INT_MAX, INT_MAX, -1, 0}};
  for (const auto& [mode, trigger, running, expected] : cases) {
    SCOPED_TRACE(testing::Message() << mode << ' ' << trigger);
    unsigned mask = before;
    EXPECT_EQ(store.dimension(mode, trigger), running);
    EXPECT_EQ(store.dimensions(mode, trigger, mask), expected != 0);
    EXPECT_EQ(mask, expected);
    Intervals intervals;
    intervals.is_set.set();
    EXPECT_EQ(store.field(mode, trigger, intervals), expected != 0);
    EXPECT_EQ(intervals.is_set.to_ulong(), expected);
  }
}

// The middle of every cell lies in it, on rising and on falling axes.
TEST(TriggerCells, HoldTheirMiddle) {
  std::mt19937 random(8);
  std::uniform_int_distribution bound(-99, 99);
  std::uniform_int_distribution<Cell> index(0, 32767);
  for (int round = 0; round < 2000; ++round) {
    Intervals axes;
    axes.is_set.set();
    Cell cell = 0;
    for (Interval& axis : axes.interval) {
      axis = Axis(static_cast<float>(bound(random)), 0.25F, static_cast<float>(bound(random)));
      cell = cell << 16 | index(random);
    }
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
  const std::size_t blocks = AllocationCount();
  const bool all =
      store.field(10, 4, intervals) && store.field(10, 4, 1, axis) &&
      store.dimensions(10, 4, mask) && store.dimension(10, 4) == 1 &&
      store.cell(10, 4, dimensions, cell, false) && store.cell(10, 4, 1, 150, cell, false) &&
      CTriggerStore::cell(intervals, dimensions, cell, false) &&
      CTriggerStore::cell(axis, 1, 150, cell, false) && store.position(10, 4, cell, 1, value) &&
      store.position(10, 4, cell, 0, dimensions) && CTriggerStore::position(axis, cell, 1, value) &&
      CTriggerStore::position(intervals, cell, 0, dimensions);
  EXPECT_EQ(AllocationCount(), blocks);
  EXPECT_TRUE(all);
}

}  // namespace
