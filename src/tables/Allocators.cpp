#include "tables/Allocators.h"

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
      return block;
    }
  }
  return ::operator new(size_);
}

void NodePool::Give(void* block) noexcept {
  const std::lock_guard lock(mutex_);
  free_ = ::new (block) Link{free_};
}

}  // namespace stdext::allocators
