// How many blocks the calling thread has taken from operator new, for tests of operations that must
// not allocate: the difference over a call is what it took. The test program replaces operator new
// in one file, order_definitions_test.cpp.
#pragma once

#include <cstddef>

std::size_t AllocationCount();
