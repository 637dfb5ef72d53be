// Where libFuzzer enters: compiled once for each target, which KESTRIN_FUZZ_TARGET names.
#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "Fuzz.h"

namespace {

constexpr const fuzz::Target& target = *std::find_if(
    std::begin(fuzz::targets), std::end(fuzz::targets),
    [](const auto& candidate) { return std::string_view(candidate.name) == KESTRIN_FUZZ_TARGET; });

}  // namespace

// The target's limit goes in front of the user's options, where one of theirs overrules it.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
  static std::string limit = "-max_len=" + std::to_string(target.most_bytes);
  static std::vector<char*> arguments(*argv, *argv + *argc + 1);  // with the null behind them
  arguments.insert(arguments.begin() + 1, limit.data());
  ++*argc;
  *argv = arguments.data();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  target.run({data, size});
  return 0;
}

// A run is short: of what it frees, the last megabytes are kept from being used again, not
// hundreds. With the default each run would work in memory that no run has touched, at a page fault
// a page.
extern "C" const char* __asan_default_options() {
  return "quarantine_size_mb=8:malloc_context_size=8";
}
