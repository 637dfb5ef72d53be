#include "allocation_count.h"

#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr std::size_t never = std::numeric_limits<std::size_t>::max();

// Plain numbers: they are ready before the first allocation of a thread.
thread_local std::size_t taken = 0;
thread_local std::size_t bytes = 0;
thread_local std::ptrdiff_t live = 0;
thread_local std::size_t first_refused = never;
thread_local std::size_t end_refused = never;
thread_local bool refused = false;

void* Take(std::size_t size) noexcept {
  const std::size_t number = taken++;
  if (number >= first_refused && number < end_refused) {
    refused = true;
    return nullptr;
  }
  void* const block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) return nullptr;
  ++live;
  bytes += size;
  return block;
}

void GiveBack(void* block) noexcept {
  if (block != nullptr) --live;
  std::free(block);
}

}  // namespace

std::size_t AllocationCount() { return taken; }

std::size_t AllocatedBytes() { return bytes; }

std::ptrdiff_t LiveBlocks() { return live; }

MemoryFailure::MemoryFailure(Kind kind, std::size_t block) {
  refused = false;
  first_refused = taken + block;
  end_refused = kind == Kind::one ? first_refused + 1 : never;
}

MemoryFailure::~MemoryFailure() { first_refused = end_refused = never; }

bool MemoryFailure::happened() const { return refused; }

void* operator new(std::size_t size) {
  if (void* block = Take(size)) return block;
  throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept { return Take(size); }
void operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept { GiveBack(block); }
void operator delete(void* block) noexcept { GiveBack(block); }
void operator delete(void* block, std::size_t) noexcept { GiveBack(block); }
