// The memory that the calling thread takes from operator new: counted, for tests of operations that
// must not allocate or not often, and refused, for tests of what becomes of the rest when memory
// runs out. The test program replaces operator new in allocation_count.cpp.
#pragma once

#include <cstddef>

// Blocks taken since the thread began; the difference over a call is what it took.
std::size_t AllocationCount();

// The size of all of them together.
std::size_t AllocatedBytes();

// Blocks taken less those given back: the same before and after something that leaks nothing.
std::ptrdiff_t LiveBlocks();

// While it lives, one block is refused, or all from one on: std::bad_alloc, or null for those who
// asked for null. The blocks are counted from 0.
class MemoryFailure {
 public:
  enum class Kind { one, all_from };
  MemoryFailure(Kind kind, std::size_t block);
  MemoryFailure(const MemoryFailure&) = delete;
  MemoryFailure& operator=(const MemoryFailure&) = delete;
  ~MemoryFailure();

  // Whether a block was refused.
  bool happened() const;
};
