// Files that mean harm: eight times the bytes may cost eight times the work, not sixty-four times.
//
// Measured is the processor time of the calling thread, which other programs on the machine don't
// add to, the best of three, or of as many as the large file needs to keep to the bound; between
// linear and quadratic lies a factor of eight, of which the bound leaves three to chance.
#include "support.h"

namespace {

constexpr std::size_t small_count = 400;
constexpr std::size_t times = 8;
constexpr double bound = 24;

struct Hostile {
  const char* name;
  // What stands in brackets is there many times. There # is the number of the time, from 0, ^ the
  // next one, & the next one in a circle, @ the number from the end, % the lowest bit.
  std::string pattern;

  std::string Text(std::size_t count) const {
    std::string text;
    for (std::string_view rest = pattern; !rest.empty();) {
      const std::size_t end = std::min(rest.find_first_of("[]"), rest.size());
      const std::size_t last = end < rest.size() && rest[end] == ']' ? count : 1;
      for (std::size_t i = 0; i < last; ++i) {
        const std::map<char, std::size_t> numbers = {
            {'#', i}, {'^', i + 1}, {'&', (i + 1) % count}, {'@', count - i}, {'%', i % 2}};
        for (const char c : rest.substr(0, end)) {
          const auto number = numbers.find(c);
          text += number == numbers.end() ? std::string(1, c) : std::to_string(number->second);
        }
      }
      rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return text;
  }
};

std::string Hundred(char c) { return '[' + std::string(100, c) + ']'; }

// Each inherits from another one in the one test step.
std::string Channels(const std::string& other) {
  return "<TMode>: {\n1 a\n}\n<TChannel>: {\n[# a\n]}\n<TChannelInheritance>: {\n[# -1 " + other +
         "\n]}\n";
}

const Hostile files[] = {
    {"DeepNesting", "[{\n]"},
    {"DeepNestingOfOneKey", "[<TMode>: {\n]"},
    {"ClosingBrackets", "[}\n]"},
    {"HugeLine", Hundred('a') + "\n"},
    {"HugeRow", "<TMode>: {\n1 " + Hundred('1') + "\n}\n"},
    {"HugeNumber", "<TLimSValue>: {\n" + Hundred('1') + "\n}\n"},
    {"HugeBlank", "<TMode>: {\n" + Hundred(' ') + "1\n}\n"},
    {"Quotes", Hundred('"') + ":\n"},
    {"Colons", Hundred(':') + "\n"},
    {"EqualKeys", "[<QType><FBaseName>: a\n]"},
    {"Sections", "[<T#>: {\n1\n}\n]"},
    {"SectionsOfOneKey", "[<TMode>: {\n1 a\n}\n]"},
    {"DuplicatesInAVector", "<TModeProperty>: {\n[1 1\n]}\n"},
    {"DuplicatesInATree", "<TAutoModeParam>: {\n[1 3\n]}\n"},
    {"DuplicatesInAMultiMap", "<TSensorGroupList>: {\n[1 1\n]}\n"},
    {"TwoKeysInTurn", "<TModeProperty>: {\n[% 1\n]}\n"},
    {"EqualNames", "<TMode>: {\n[# a\n]}\n"},
    {"FallingIdsInAVector", "<TInstrumentParam>: {\n[@ 1 a#\n]}\n"},
    {"FallingIdsInATree", "<TMode>: {\n[@ a#\n]}\n"},
    {"BadLines", "<TModeProperty>: {\n[# x\n]}\n"},
    {"BlankLines", "<TModeProperty>: {\n[\n]}\n"},
    {"BlankLinesOutOfOrder", "<TErrorGroup>: {\n1\n0\n[\n]}\n"},
    {"LongChainOfChannels", Channels("^")},
    {"ClosedChainOfChannels", Channels("&")},
    {"PolygonsThatNoKeyHas",
     "<TIpParamAndStore>: {\n[1 2 3 4 # 6\n]}\n<TGrex10001>: {\n[-1 9# -1 -1 -1 -1\n]}\n"},
    {"OrderDefinitions",
     "<TIpCalcParameter>: {\n[# 2 1\n# 3 Hx-M1;Hx+M1\n# 4 1\n]}\n"
     "<TInstrumentParam>: {\n[# 1 a\n]}\n"}};

// Reads, checks and loads it into a store that is thrown away; the processor seconds that it took.
double SecondsOf(const std::string& bytes) {
  const auto now = [] {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
  };
  const double start = now();
  CLake lake;
  kestrin::LakeReader::read(lake, Medium{bytes.size(), Medium::End::of_file, bytes});
  ParameterCheck::Check(lake);
  CLake& candidate = CParameterLake::Lake();
  candidate.clear();
  candidate[L"<DbDesign.CacheVersion>"] = L"215";
  candidate[L"<DbDesign.CacheMinorVersion>"] = L"1";
  candidate.merge(lake);
  CQtParamDistillery().ReadTablesFromCandidateLake();
  candidate.clear();
  return now() - start;
}

class HostileFile : public testing::TestWithParam<Hostile> {};

TEST_P(HostileFile, CostsWorkInProportionToItsLength) {
  PrWin::Sink before = PrWin::SetSink([](std::wstring_view, auto, auto) {});
  const std::string small = GetParam().Text(small_count);
  const std::string large = GetParam().Text(times * small_count);
  SecondsOf(small);  // what is made once is made now
  const double small_time = std::min({SecondsOf(small), SecondsOf(small), SecondsOf(small)});
  double large_time = SecondsOf(large);
  for (int again = 0; again < 2 && large_time >= bound * small_time; ++again) {
    large_time = std::min(large_time, SecondsOf(large));
  }
  PrWin::SetSink(std::move(before));
  EXPECT_LT(large_time, bound * small_time)
      << "milliseconds: " << 1000 * small_time << " and " << 1000 * large_time;
}

INSTANTIATE_TEST_SUITE_P(Files, HostileFile, testing::ValuesIn(files),
                         [](const auto& file) { return std::string(file.param.name); });

}  // namespace
