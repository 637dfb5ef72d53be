// The containers of rows, with what they inherit, and their allocators.
#include "use.h"

using Pair = std::pair<int, int>;
const std::vector<Pair> more = {{5, 5}, {4, 4}};

template <class Map>
void use_vector() {
  Map map;
  assert(map.insert(map.end(), {2, 3}).second && map.insert(Pair(1, 1)).second);
  map.insert({2, 4}).first->second = 2;
  map.insert(map.end(), more.rbegin(), more.rend());
  map.insert(map.end(), {{6, 6}, {8, 8}});
  const Map& reader = map;
  assert(reader.find(2)->second == 2 && reader.lower_bound(9) == reader.end() && map.size() == 6);
  assert(map.find(9) == map.end() && map.lower_bound(1)->second == map[0].second);
  map.reserve(100);
  map.push_back({7, 7});
  map.erase(map.begin());
  Map other(map);
  other.assign(more.begin(), more.end());
  map.clear();
  assert(map.empty() && map != other && other.back() == more.back());
}

template <class Map>
void use_tree(Map map) {
  map.insert({2, 3});
  map.insert(map.end(), {3, 3});
  map.insert(more.begin(), more.end());
  map.insert({{6, 6}, {7, 7}});
  Map other;
  other.insert(map.extract(2));
  other.merge(map);
  assert(other.find(2) == other.begin() && other.count(4) > 0 && map != other);
  assert(other.erase(5) > 0 && other.equal_range(5).first == other.lower_bound(6));
}

template <template <class> class Allocator>
void use_allocator() {
  Allocator<int> allocator;
  allocator.deallocate(allocator.allocate(1), 1);
  allocator.deallocate(allocator.allocate(2), 2);
  assert(allocator == Allocator<long>(allocator) && !(allocator != Allocator<int>()));
}

int main() {
  use_vector<CUniqueVectorMap<int, int, std::less<int>, std::allocator<Pair>>>();
  use_vector<CDbUniqueMap<int, int, std::less<int>>>();
  CUniqueTreeMap<int, int, std::less<int>, stdext::allocators::allocator_unbounded<Pair>> tree;
  assert(tree.insert({2, 3}).second && tree.Assign(2, 2)->second == 2 && tree[2] == 2);
  use_tree(tree);
  use_tree(CDbMultiMap<int, int, std::less<int>>());
  use_allocator<tl_allocator>();
  use_allocator<stdext::allocators::allocator_unbounded>();
  tl_free(tl_malloc(16));
}
