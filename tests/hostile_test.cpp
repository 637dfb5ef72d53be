// Files that mean harm: eight times the bytes may cost eight times the work, not sixty-four times.
//
// Measured is the processor time of the calling thread, which other programs on the machine don't
// add to, the best of three; between linear and quadratic lies a factor of eight, of which the
// bound leaves three to chance. Where memory is meant, blocks are counted, and nothing is left to
// chance.

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <functional>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "allocation_count.h"
#include "frame/ParameterCheck.h"
#include "lake/LakeReader.h"
#include "test_store.h"

namespace {

constexpr std::size_t small_count = 400;
constexpr std::size_t times = 8;
constexpr double bound = 24;

// Of all blocks together, those that are given back on the way too.
constexpr std::size_t bytes_per_line = 8000;
constexpr std::size_t bytes_per_byte = 100;

double ProcessorSeconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

double BestOfThree(const std::function<void()>& work) {
  double best = std::numeric_limits<double>::max();
  for (int i = 0; i < 3; ++i) {
    const double start = ProcessorSeconds();
    work();
    best = std::min(best, ProcessorSeconds() - start);
  }
  return best;
}

std::string Repeated(std::size_t count, const std::function<std::string(std::size_t)>& line) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += line(i);
  return text;
}

std::string Number(std::size_t i) { return std::to_string(i); }

std::string Section(const std::string& name, std::size_t count,
                    const std::function<std::string(std::size_t)>& row) {
  return name + ": {\n" + Repeated(count, row) + "}\n";
}

struct Hostile {
  const char* name;
  std::function<std::string(std::size_t count)> text;
};

const Hostile files[] = {
    {"DeepNesting", [](std::size_t n) { return Repeated(n, [](auto) { return "{\n"; }); }},
    {"DeepNestingOfOneKey",
     [](std::size_t n) { return Repeated(n, [](auto) { return "<TMode>: {\n"; }); }},
    {"ClosingBrackets", [](std::size_t n) { return Repeated(n, [](auto) { return "}\n"; }); }},
    {"HugeLine", [](std::size_t n) { return std::string(100 * n, 'a') + "\n"; }},
    {"HugeRow",
     [](std::size_t n) {
       return Section("<TMode>", 1, [n](auto) { return "1 " + std::string(100 * n, '1') + "\n"; });
     }},
    {"HugeNumber",
     [](std::size_t n) {
       return Section("<TLimSValue>", 1, [n](auto) { return std::string(100 * n, '1') + "\n"; });
     }},
    {"HugeBlank",
     [](std::size_t n) {
       return Section("<TMode>", 1, [n](auto) { return std::string(100 * n, ' ') + "1\n"; });
     }},
    {"Quotes", [](std::size_t n) { return std::string(50 * n, '"') + ":\n"; }},
    {"Colons", [](std::size_t n) { return std::string(50 * n, ':') + "\n"; }},
    {"EqualKeys",
     [](std::size_t n) { return Repeated(n, [](auto) { return "<QType><FBaseName>: a\n"; }); }},
    {"Sections",
     [](std::size_t n) {
       return Repeated(n, [](auto i) { return "<T" + Number(i) + ">: {\n1\n}\n"; });
     }},
    {"SectionsOfOneKey",
     [](std::size_t n) { return Repeated(n, [](auto) { return "<TMode>: {\n1 a\n}\n"; }); }},
    {"DuplicatesInAVector",
     [](std::size_t n) { return Section("<TModeProperty>", n, [](auto) { return "1 1\n"; }); }},
    {"DuplicatesInATree",
     [](std::size_t n) {
       return Section("<TIpCalcParameter>", n, [](auto) { return "1 3 H1\n"; });
     }},
    {"DuplicatesInAMultiMap",
     [](std::size_t n) { return Section("<TSensorGroupList>", n, [](auto) { return "1 1\n"; }); }},
    {"TwoKeysInTurn",
     [](std::size_t n) {
       return Section("<TModeProperty>", n, [](auto i) { return Number(i % 2) + " 1\n"; });
     }},
    {"EqualNames",
     [](std::size_t n) {
       return Section("<TMode>", n, [](auto i) { return Number(i) + " a\n"; });
     }},
    {"FallingIds",
     [n0 = small_count * times](std::size_t n) {
       return Section("<TMode>", n,
                      [n0](auto i) { return Number(n0 - i) + " a" + Number(i) + "\n"; });
     }},
    {"BadLines",
     [](std::size_t n) {
       return Section("<TModeProperty>", n, [](auto i) { return Number(i) + " x\n"; });
     }},
    {"BlankLinesOutOfOrder",
     [](std::size_t n) {
       return Section("<TErrorGroup>", n, [](auto i) { return i == 0 ? "1\n0\n" : "\n"; });
     }},
    {"BlankLines",
     [](std::size_t n) { return Section("<TModeProperty>", n, [](auto) { return "\n"; }); }},
    {"LongChainOfChannels",
     [](std::size_t n) {
       return "<TMode>: {\n1 a\n}\n" +
              Section("<TChannel>", n, [](auto i) { return Number(i) + " a\n"; }) +
              Section("<TChannelInheritance>", n,
                      [](auto i) { return Number(i) + " -1 " + Number(i + 1) + "\n"; });
     }},
    {"ClosedChainOfChannels",
     [](std::size_t n) {
       return "<TMode>: {\n1 a\n}\n" +
              Section("<TChannel>", n, [](auto i) { return Number(i) + " a\n"; }) +
              Section("<TChannelInheritance>", n,
                      [n](auto i) { return Number(i) + " -1 " + Number((i + 1) % n) + "\n"; });
     }},
    {"PolygonsThatNoKeyHas",
     [](std::size_t n) {
       n /= 4;
       return Section("<TIpParamAndStore>", n,
                      [](auto i) { return "1 2 3 4 " + Number(i) + " 6\n"; }) +
              Section("<TGrex10001>", n,
                      [](auto i) { return "-1 " + Number(i + 3) + " -1 -1 -1 -1\n"; });
     }},
    {"OrderDefinitions",
     [](std::size_t n) {
       n /= 4;
       return Section("<TIpCalcParameter>", 3 * n,
                      [](auto i) {
                        return Number(i / 3) + (i % 3 == 0   ? " 2 1\n"
                                                : i % 3 == 1 ? " 3 Hx-M1;Hx+M1\n"
                                                             : " 4 1\n");
                      }) +
              Section("<TInstrumentParam>", n, [](auto i) { return Number(i) + " 1 a\n"; });
     }},
};

class HostileFile : public testing::TestWithParam<Hostile> {};

// Reads, checks and loads it into a store that is thrown away.
void Swallow(const std::string& bytes) {
  CLake lake;
  std::string_view rest = bytes;
  LakeReader::read(lake, [&](std::span<char> block) -> std::optional<std::size_t> {
    const std::size_t count = rest.copy(block.data(), block.size());
    rest.remove_prefix(count);
    return count;
  });
  ParameterCheck::Check(lake);
  CLake& candidate = CParameterLake::Lake();
  candidate.clear();
  candidate[L"<DbDesign.CacheVersion>"] = L"215";
  candidate[L"<DbDesign.CacheMinorVersion>"] = L"1";
  candidate.merge(lake);
  CQtParamDistillery store;
  store.ReadTablesFromCandidateLake();
  candidate.clear();
}

TEST_P(HostileFile, CostsWorkAndMemoryInProportionToItsLength) {
  PrWin::Sink before = PrWin::SetSink([](std::wstring_view, auto, auto) {});
  const std::string small = GetParam().text(small_count);
  const std::string large = GetParam().text(times * small_count);
  const double small_time = BestOfThree([&] { Swallow(small); });
  const double large_time = BestOfThree([&] { Swallow(large); });
  const std::size_t bytes = AllocatedBytes();
  Swallow(large);
  const std::size_t taken = AllocatedBytes() - bytes;
  PrWin::SetSink(std::move(before));

  EXPECT_LT(large_time, bound * small_time)
      << "milliseconds: " << 1000 * small_time << " and " << 1000 * large_time;
  const auto lines = static_cast<std::size_t>(std::count(large.begin(), large.end(), '\n'));
  EXPECT_LT(taken, bytes_per_line * lines + bytes_per_byte * large.size());
}

INSTANTIATE_TEST_SUITE_P(Files, HostileFile, testing::ValuesIn(files),
                         [](const auto& file) { return std::string(file.param.name); });

// With nobody listening a line that can't be read costs its two messages, a block of memory each,
// and not the wording of them piece by piece.
TEST(HostileLog, IsNotWhatABadLineCosts) {
  PrWin::Sink before = PrWin::SetSink([](std::wstring_view, auto, auto) {});
  constexpr std::size_t count = 2000;
  const auto blocks_of_load = [](const std::string& row_end) {
    testing_support::FillCandidateLake(
        testing_support::version +
        Section("<TModeProperty>", count, [&](auto i) { return Number(i) + row_end; }));
    CQtParamDistillery store;
    const std::size_t start = AllocationCount();
    store.ReadTablesFromCandidateLake();
    CParameterLake::Lake().clear();
    return AllocationCount() - start;
  };
  const std::size_t good = blocks_of_load(" 1 0 0 0\n");
  const std::size_t bad = blocks_of_load(" x 0 0 0\n");
  PrWin::SetSink(std::move(before));
  EXPECT_LT(bad, good + 5 * count);
}

}  // namespace
