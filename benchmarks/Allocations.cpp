// Counts the blocks that the program and the library take. The count is not synchronised: nothing
// here starts threads.

#include <cstdlib>
#include <new>

#include "Benchmarks.h"

namespace {
std::size_t allocations = 0;
}

void* operator new(std::size_t size) {
  ++allocations;
  if (void* const block = std::malloc(size != 0 ? size : 1)) return block;
  throw std::bad_alloc();
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }

std::size_t benchmarks::AllocationCount() { return allocations; }
