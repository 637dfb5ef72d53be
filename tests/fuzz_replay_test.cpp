// What fuzzing starts from and what it has found: every kept input is put through its target again,
// without a fuzzer, so that a mended fault stays mended under every compiler.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "Fuzz.h"
#include "lake_bytes.h"

namespace {

namespace fs = std::filesystem;

class FuzzReplay : public testing::TestWithParam<fuzz::Target> {};

TEST_P(FuzzReplay, KeptInputsHoldTheProperties) {
  int replayed = 0;
  for (const char* const folder : {KESTRIN_FUZZ "/corpus/", KESTRIN_FUZZ "/regressions/"}) {
    const fs::path inputs = std::string(folder) + GetParam().name;
    if (!fs::exists(inputs)) continue;  // nothing has been found yet
    for (const auto& input : fs::directory_iterator(inputs)) {
      const std::string bytes = BytesOf(input.path());
      const auto* const data = reinterpret_cast<const std::uint8_t*>(bytes.data());
      EXPECT_LE(bytes.size(), GetParam().most_bytes) << input.path() << " would be cut";
      EXPECT_NO_THROW(GetParam().run({data, bytes.size()})) << input.path();
      ++replayed;
    }
  }
  EXPECT_GT(replayed, 2);
}

INSTANTIATE_TEST_SUITE_P(Targets, FuzzReplay, testing::ValuesIn(fuzz::targets),
                         [](const auto& target) { return std::string(target.param.name); });

}  // namespace
