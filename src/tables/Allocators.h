// The two allocators of the row containers.
//
// The sorted vectors take their one block per table from tl_malloc. The trees take their nodes from
// pools: one pool per node size, shared by all containers of the process, a free list through the
// blocks themselves. A block that is given back stays in its pool and serves the next node of its
// size, so emptying and filling a table again costs no call of the general allocator.
//
// Pools are made on first use and never destroyed: a table that is emptied while the process ends
// still finds its pool. Each pool has a mutex of its own, held for the taking or giving back of one
// block and across no other call, so allocators may be used from any thread.
#pragma once

#include <cstddef>
#include <limits>
#include <mutex>
#include <new>

#include "interfaces/Export.h"
#include "interfaces/Support.h"

template <class T>
class tl_allocator {
 public:
  using value_type = T;

  tl_allocator() = default;
  template <class U>
  constexpr tl_allocator(const tl_allocator<U>& /*other*/) noexcept {}

  T* allocate(std::size_t n) {
    if (n > std::numeric_limits<std::size_t>::max() / sizeof(T)) throw std::bad_alloc();
    return static_cast<T*>(tl_malloc(n * sizeof(T)));
  }
  void deallocate(T* p, std::size_t /*n*/) noexcept { tl_free(p); }
};

template <class T, class U>
constexpr bool operator==(const tl_allocator<T>&, const tl_allocator<U>&) {
  return true;
}

namespace stdext::allocators {

class NodePool {
 public:
  // The process's pool for blocks of this many bytes.
  KESTRIN_API static NodePool& OfSize(std::size_t size);

  KESTRIN_API void* Take();
  KESTRIN_API void Give(void* block) noexcept;

 private:
  struct Link {
    Link* next;
  };

  explicit NodePool(std::size_t size);

  std::size_t size_;
  std::mutex mutex_;
  Link* free_ = nullptr;
};

template <class T>
class allocator_unbounded {
  static_assert(alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__,
                "the pool has no blocks for types that are aligned beyond what new gives");

 public:
  using value_type = T;

  allocator_unbounded() = default;
  template <class U>
  constexpr allocator_unbounded(const allocator_unbounded<U>& /*other*/) noexcept {}

  // A single block comes from the pool, anything else from operator new.
  T* allocate(std::size_t n) {
    if (n > std::numeric_limits<std::size_t>::max() / sizeof(T)) throw std::bad_alloc();
    return static_cast<T*>(n == 1 ? Pool().Take() : ::operator new(n * sizeof(T)));
  }
  void deallocate(T* p, std::size_t n) noexcept {
    if (n == 1) {
      Pool().Give(p);
    } else {
      ::operator delete(p);
    }
  }

 private:
  static NodePool& Pool() {
    static NodePool& pool = NodePool::OfSize(sizeof(T));
    return pool;
  }
};

template <class T, class U>
constexpr bool operator==(const allocator_unbounded<T>&, const allocator_unbounded<U>&) {
  return true;
}

}  // namespace stdext::allocators
