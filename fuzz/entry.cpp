// Where libFuzzer enters: compiled once for each target, which KESTRIN_FUZZ_TARGET names.
#include "Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::KESTRIN_FUZZ_TARGET({data, size});
  return 0;
}

// A run is short: of what it frees, the last megabytes are kept from being used again, not
// hundreds. With the default each run would work in memory that no run has touched, at a page fault
// a page.
extern "C" const char* __asan_default_options() {
  return "quarantine_size_mb=8:malloc_context_size=8";
}
