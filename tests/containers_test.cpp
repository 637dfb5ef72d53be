// The containers of rows: the first row of a key stays, order holds, limits are told.

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "tables/MapContainers.h"
#include "tables/RowCollector.h"

namespace {

using VectorMap = CUniqueVectorMap<int, int>;
using TreeMap = CUniqueTreeMap<int, int>;
using Pairs = std::vector<std::pair<int, int>>;

template <class Map>
Pairs Rows(const Map& map) {
  return Pairs(map.begin(), map.end());
}

TEST(Containers, TheFirstRowOfAKeyStays) {
  VectorMap vector;
  EXPECT_TRUE(vector.insert(vector.end(), {2, 3}).second);
  const auto in_front = vector.insert({1, 1});
  EXPECT_EQ(in_front, std::pair(vector.begin(), true));
  const auto refused = vector.insert({2, 4});
  EXPECT_EQ(refused, std::pair(vector.end() - 1, false));
  refused.first->second = 2;
  EXPECT_TRUE(vector.insert({3, 3}).second);
  EXPECT_EQ(Rows(vector), (Pairs{{1, 1}, {2, 2}, {3, 3}}));
  EXPECT_EQ(vector.find(4), vector.end());
  EXPECT_EQ(std::as_const(vector).find(2)->second, 2);
  const auto capacity = vector.capacity();
  vector.clear();
  EXPECT_EQ(vector.capacity(), capacity);

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

// Hints, right or wrong, and the collector give what plain insertion gives.
TEST(Containers, HintsAndTheCollectorChangeNothing) {
  std::mt19937 random(1);
  for (int round = 0; round < 500; ++round) {
    const int keys = 1 + round % 20;
    VectorMap plain;
    VectorMap hinted;
    VectorMap collected;
    RowCollector collector(collected);
    for (int line = 0; line < round % 60; ++line) {
      const VectorMap::value_type row(static_cast<int>(random() % static_cast<unsigned>(keys)),
                                      line);
      plain.insert(row);
      const auto place = static_cast<std::ptrdiff_t>(random() % (hinted.size() + 1));
      hinted.insert(hinted.begin() + place, row);
      collector.Add(row.first, row.second);
    }
    collector.Finish();
    ASSERT_EQ(Rows(hinted), Rows(plain));
    ASSERT_EQ(Rows(collected), Rows(plain));
  }
}

TEST(Containers, AnUnfinishedCollectorLeavesNoDisorder) {
  VectorMap map;
  {
    RowCollector collector(map);
    for (const int key : {2, 1}) collector.Add(key, 1);
  }
  EXPECT_TRUE(map.empty());
}

// An allocator of a limited container.
template <class T>
struct Limited : std::allocator<T> {
  template <class U>
  struct rebind {
    using other = Limited<U>;
  };
  Limited() = default;
  template <class U>
  Limited(const Limited<U>&) {}
  static std::size_t max_size() { return 2; }
};

void ExpectTooLong(const std::function<void()>& action, const std::string& text) {
  try {
    action();
    FAIL() << "not told: " << text;
  } catch (const std::length_error& error) {
    EXPECT_EQ(error.what(), text);
  }
}

TEST(Containers, LimitsAreTold) {
  CUniqueVectorMap<int, int, std::less<int>, Limited<std::pair<int, int>>> vector;
  CUniqueTreeMap<int, int, std::less<int>, Limited<std::pair<int, int>>> tree;
  for (const int key : {1, 2, 2}) {
    vector.insert({key, 0});
    tree.insert({key, 0});
  }
  ExpectTooLong([&] { vector.insert({3, 0}); }, "vector<T> too long");
  ExpectTooLong([&] { vector.reserve(3); }, "vector<T> too long");
  ExpectTooLong([&] { tree.insert({3, 0}); }, "map/set<T> too long");
  ExpectTooLong([&] { tree.Assign(3, 0); }, "map/set<T> too long");
}

TEST(Containers, PoolsServeAllThreadsWithBlocksOfTheirOwn) {
  struct Node {
    std::array<unsigned char, 40> bytes;
  };
  using Allocator = stdext::allocators::allocator_unbounded<Node>;
  std::atomic<int> touched = 0;
  const auto take_and_give = [&touched](unsigned char mark) {
    Allocator nodes;
    Node marked;
    marked.bytes.fill(mark);
    std::vector<Node*> taken;
    for (int i = 0; i < 20000; ++i) {
      taken.push_back(nodes.allocate(1));
      *taken.back() = marked;
      if (i % 3 == 0) {
        nodes.deallocate(taken.front(), 1);
        taken.front() = taken.back();
        taken.pop_back();
      }
    }
    for (Node* node : taken) {
      if (node->bytes != marked.bytes) ++touched;
      nodes.deallocate(node, 1);
    }
  };
  {
    std::vector<std::jthread> threads;
    for (unsigned char i = 0; i < 4; ++i) threads.emplace_back(take_and_give, i);
  }
  EXPECT_EQ(touched, 0);

  Allocator nodes;
  Node* const block = nodes.allocate(1);
  nodes.deallocate(block, 1);
  EXPECT_EQ(nodes.allocate(1), block);  // the free list gives the last one back first
  nodes.deallocate(block, 1);
  EXPECT_THROW((void)nodes.allocate(std::numeric_limits<std::size_t>::max()), std::bad_alloc);
}

}  // namespace
