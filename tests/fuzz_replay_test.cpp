// What fuzzing starts from and what it has found: every kept input is put through its target again,
// without a fuzzer, so that a mended fault stays mended under every compiler.
#include "Fuzz.h"
#include "support.h"

namespace {

namespace fs = std::filesystem;

class FuzzReplay : public testing::TestWithParam<fuzz::Target> {};

TEST_P(FuzzReplay, KeptInputsHoldTheProperties) {
  std::vector<std::string> inputs;
  std::size_t size = 0;
  for (const char* const folder : {KESTRIN_FUZZ "/corpus/", KESTRIN_FUZZ "/regressions/"}) {
    const fs::path path = std::string(folder) + GetParam().name;
    if (!fs::exists(path)) continue;  // nothing has been found yet
    for (const auto& input : fs::directory_iterator(path)) {
      size += inputs.emplace_back(BytesOf(input.path())).size();
      EXPECT_LE(inputs.back().size(), GetParam().most_bytes) << input.path() << " would be cut";
    }
  }
  EXPECT_GT(inputs.size(), 2U);
  // And what comes out when their bytes change places, one after the other: the shorter they are,
  // the more.
  std::sort(inputs.begin(), inputs.end());
  std::mt19937 random(7);  // NOLINT(*-msc51-cpp): the same bytes in every run
  for (std::size_t round = 0; round <= 200'000 / size; ++round) {
    for (std::string& bytes : inputs) {
      const auto* const data = reinterpret_cast<const std::uint8_t*>(bytes.data());
      ASSERT_NO_THROW(GetParam().run({data, bytes.size()})) << testing::PrintToString(bytes);
      if (!bytes.empty()) bytes[random() % bytes.size()] = bytes[random() % bytes.size()];
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Targets, FuzzReplay, testing::ValuesIn(fuzz::targets),
                         [](const auto& target) { return std::string(target.param.name); });

}  // namespace
