// Where libFuzzer enters: compiled once for each target, which KESTRIN_FUZZ_TARGET names.
#include "Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::KESTRIN_FUZZ_TARGET({data, size});
  return 0;
}
