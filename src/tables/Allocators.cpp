#include "tables/Allocators.h"

#include <sanitizer/asan_interface.h>

#include <algorithm>
#include <map>
#include <memory>

namespace stdext::allocators {

NodePool::NodePool(std::size_t size) : size_(std::max(size, sizeof(Link))) {}

NodePool& NodePool::OfSize(std::size_t size) {
  // Never destroyed: containers with static storage give their nodes back while the process ends.
  static auto& mutex = *new std::mutex;
  static auto& pools = *new std::map<std::size_t, std::unique_ptr<NodePool>>;
  const std::lock_guard lock(mutex);
  std::unique_ptr<NodePool>& pool = pools[size];
  if (!pool) pool.reset(new NodePool(size));
  return *pool;
}

void* NodePool::Take() {
  {
    const std::lock_guard lock(mutex_);
    if (free_ != nullptr) {
      Link* block = free_;
      free_ = block->next;
      ASAN_UNPOISON_MEMORY_REGION(block, size_);
      return block;
    }
  }
  return ::operator new(size_);
}

// The address sanitizer is told that nobody has a block in the pool: it would not see the use of a
// node that is gone.
void NodePool::Give(void* block) noexcept {
  const std::lock_guard lock(mutex_);
  free_ = ::new (block) Link{free_};
  ASAN_POISON_MEMORY_REGION(free_ + 1, size_ - sizeof(Link));
}

}  // namespace stdext::allocators
