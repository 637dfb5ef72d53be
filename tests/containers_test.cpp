// The containers of rows: the first row of a key stays, order holds, limits are told.
#include <atomic>
#include <limits>

#include "support.h"
#include "tables/MapContainers.h"
#include "tables/RowCollector.h"

namespace {

using VectorMap = CUniqueVectorMap<int, int>;
using TreeMap = CUniqueTreeMap<int, int>;
using Pairs = std::vector<std::pair<int, int>>;

template <class Map>
auto Rows(const Map& map) {
  return std::vector<std::pair<typename Map::key_type, typename Map::mapped_type>>(map.begin(),
                                                                                   map.end());
}

TEST(Containers, TheFirstRowOfAKeyStays) {
  VectorMap vector;
  EXPECT_TRUE(vector.insert(vector.end(), {2, 3}).second);
  const auto in_front = vector.insert({1, 1});
  EXPECT_EQ(in_front, std::pair(vector.begin(), true));
  const auto refused = vector.insert({2, 4});
  EXPECT_EQ(refused, std::pair(vector.end() - 1, false));
  refused.first->second = 2;
  EXPECT_EQ(Rows(vector), (Pairs{{1, 1}, {2, 2}}));
  EXPECT_EQ(vector.find(4), vector.end());
  EXPECT_EQ(std::as_const(vector).find(2)->second, 2);

  TreeMap tree;
  CDbMultiMap<int, int> multi;
  for (const auto& row : Pairs{{2, 1}, {1, 2}, {2, 3}, {1, 4}}) {
    EXPECT_EQ(tree.insert({row.first, row.second}).second, row.second < 3);
    multi.insert({row.first, row.second});
  }
  EXPECT_EQ(Rows(multi), (Pairs{{1, 2}, {1, 4}, {2, 1}, {2, 3}}));
  EXPECT_EQ(Rows(tree), (Pairs{{1, 2}, {2, 1}}));
  EXPECT_EQ(tree.Assign(2, 5)->second, 5);
  EXPECT_EQ(tree.Assign(3, 3)->first, 3);
  EXPECT_EQ(Rows(tree), (Pairs{{1, 2}, {2, 5}, {3, 3}}));
}

// Hints, right or wrong, and the collector give what plain insertion gives, wherever ids lie.
TEST(Containers, HintsAndTheCollectorChangeNothing) {
  using Map = CUniqueVectorMap<QIdx3, int>;
  std::mt19937 random(1);
  for (unsigned round = 0; round < 500; ++round) {
    Map plain;
    Map hinted;
    Map collected;
    RowCollector collector(collected);
    const int step = std::array{1, 1 << 14, 100000003}[round % 3];
    const auto id = [&](unsigned count) { return (static_cast<int>(random() % count) - 1) * step; };
    for (int line = 0; line < static_cast<int>(round % 60); ++line) {
      const Map::value_type row({id(1 + round % 20), id(2), id(2)}, line);
      plain.insert(row);
      const auto place = static_cast<std::ptrdiff_t>(random() % (hinted.size() + 1));
      hinted.insert(hinted.begin() + place, row);
      collector.Add(row.first, row.second);
    }
    collector.Finish();
    ASSERT_TRUE(Rows(hinted) == Rows(plain));
    ASSERT_TRUE(Rows(collected) == Rows(plain));
  }
}

TEST(Containers, ALimitIsTold) {
  VectorMap map;
  EXPECT_THROW(map.reserve(map.max_size() + 1), std::length_error);
}

TEST(Containers, PoolsServeAllThreadsWithBlocksOfTheirOwn) {
  using Block = std::array<int, 10>;
  using Allocator = stdext::allocators::allocator_unbounded<Block>;
  std::atomic<int> touched = 0;
  const auto take_and_give = [&touched](int mark) {
    Allocator blocks;
    std::vector<Block*> taken;
    for (int i = 0; i < 20000; ++i) {
      taken.push_back(blocks.allocate(1));
      taken.back()->fill(mark);
      if (i % 3 != 0) continue;
      blocks.deallocate(std::exchange(taken.front(), taken.back()), 1);
      taken.pop_back();
    }
    for (Block* block : taken) {
      if (std::ranges::count(*block, mark) != 10) ++touched;
      blocks.deallocate(block, 1);
    }
  };
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i) threads.emplace_back(take_and_give, i);
  }
  EXPECT_EQ(touched, 0);
  EXPECT_THROW((void)Allocator().allocate(std::numeric_limits<std::size_t>::max()), std::bad_alloc);
}

}  // namespace
