// Files that mean harm: eight times the bytes may cost eight times the work, not sixty-four times.
//
// Measured is the processor time of the calling thread, which other programs on the machine don't
// add to, the best of three, or of as many as the large file needs to keep to the bound; between
// linear and quadratic lies a factor of eight, of which the bound leaves three to chance. Where
// memory is meant, blocks are counted, and nothing is left to chance.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "allocation_count.h"
#include "inspect/ParameterCheck.h"
#include "lake/LakeReader.h"
#include "tables/SecretHash.h"
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

// A piece of a file: what stands in the middle is there so many times. There # is the number of the
// time, from 0, ^ the next one, & the next one in a circle, @ the number from the end, % the lowest
// bit. All but the last are multiplied by the step.
struct Piece {
  std::string front;
  std::string repeated;
  std::string back = "";

  std::string Text(std::size_t count, std::size_t step = 1) const {
    std::string text = front;
    for (std::size_t i = 0; i < count; ++i) {
      const std::map<char, std::size_t> numbers = {{'#', i * step},
                                                   {'^', (i + 1) * step},
                                                   {'&', (i + 1) % count * step},
                                                   {'@', (count - i) * step},
                                                   {'%', i % 2}};
      for (const char c : repeated) {
        const auto number = numbers.find(c);
        text += number == numbers.end() ? std::string(1, c) : std::to_string(number->second);
      }
    }
    return text + back;
  }
};

Piece Section(const std::string& name, const std::string& rows) {
  return {name + ": {\n", rows, "}\n"};
}

// Each inherits from another one in the one test step.
std::vector<Piece> Channels(const std::string& other) {
  return {{"<TMode>: {\n1 a\n}\n<TChannel>: {\n", "# a\n", "}\n"},
          Section("<TChannelInheritance>", "# -1 " + other + "\n")};
}

struct Hostile {
  const char* name;
  std::vector<Piece> pieces;

  std::string Text(std::size_t count, std::size_t step = 1) const {
    std::string text;
    for (const Piece& piece : pieces) text += piece.Text(count, step);
    return text;
  }
};

std::string Hundred(char c) { return std::string(100, c); }

const Hostile files[] = {
    {"DeepNesting", {{"", "{\n"}}},
    {"DeepNestingOfOneKey", {{"", "<TMode>: {\n"}}},
    {"ClosingBrackets", {{"", "}\n"}}},
    {"HugeLine", {{"", Hundred('a'), "\n"}}},
    {"HugeRow", {{"<TMode>: {\n1 ", Hundred('1'), "\n}\n"}}},
    {"HugeNumber", {{"<TLimSValue>: {\n", Hundred('1'), "\n}\n"}}},
    {"HugeBlank", {{"<TMode>: {\n", Hundred(' '), "1\n}\n"}}},
    {"Quotes", {{"", Hundred('"'), ":\n"}}},
    {"Colons", {{"", Hundred(':'), "\n"}}},
    {"EqualKeys", {{"", "<QType><FBaseName>: a\n"}}},
    {"Sections", {{"", "<T#>: {\n1\n}\n"}}},
    {"SectionsOfOneKey", {{"", "<TMode>: {\n1 a\n}\n"}}},
    {"DuplicatesInAVector", {Section("<TModeProperty>", "1 1\n")}},
    {"DuplicatesInATree", {Section("<TAutoModeParam>", "1 3\n")}},
    {"DuplicatesInAMultiMap", {Section("<TSensorGroupList>", "1 1\n")}},
    {"TwoKeysInTurn", {Section("<TModeProperty>", "% 1\n")}},
    {"EqualNames", {Section("<TMode>", "# a\n")}},
    {"FallingIds", {Section("<TMode>", "@ a#\n")}},
    {"BadLines", {Section("<TModeProperty>", "# x\n")}},
    {"BlankLines", {Section("<TModeProperty>", "\n")}},
    {"BlankLinesOutOfOrder", {{"<TErrorGroup>: {\n1\n0\n", "\n", "}\n"}}},
    {"LongChainOfChannels", Channels("^")},
    {"ClosedChainOfChannels", Channels("&")},
    {"PolygonsThatNoKeyHas",
     {Section("<TIpParamAndStore>", "1 2 3 4 # 6\n"),
      Section("<TGrex10001>", "-1 9# -1 -1 -1 -1\n")}},
    {"OrderDefinitions",
     {Section("<TIpCalcParameter>", "# 2 1\n# 3 Hx-M1;Hx+M1\n# 4 1\n"),
      Section("<TInstrumentParam>", "# 1 a\n")}},
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

double SecondsOf(const std::string& bytes) {
  const double start = ProcessorSeconds();
  Swallow(bytes);
  return ProcessorSeconds() - start;
}

TEST_P(HostileFile, CostsWorkAndMemoryInProportionToItsLength) {
  PrWin::Sink before = PrWin::SetSink([](std::wstring_view, auto, auto) {});
  const std::string small = GetParam().Text(small_count);
  const std::string large = GetParam().Text(times * small_count);
  Swallow(small);  // what is made once is made now
  const std::size_t bytes = AllocatedBytes();
  double large_time = SecondsOf(large);
  const std::size_t taken = AllocatedBytes() - bytes;
  const double small_time = std::min({SecondsOf(small), SecondsOf(small), SecondsOf(small)});
  for (int again = 0; again < 2 && large_time >= bound * small_time; ++again) {
    large_time = std::min(large_time, SecondsOf(large));
  }
  PrWin::SetSink(std::move(before));

  EXPECT_LT(large_time, bound * small_time)
      << "milliseconds: " << 1000 * small_time << " and " << 1000 * large_time;
  const auto lines = static_cast<std::size_t>(std::count(large.begin(), large.end(), '\n'));
  EXPECT_LT(taken, bytes_per_line * lines + bytes_per_byte * large.size());
}

INSTANTIATE_TEST_SUITE_P(Files, HostileFile, testing::ValuesIn(files),
                         [](const auto& file) { return std::string(file.param.name); });

// Ids in the same place of a hash table with that many places, if the id alone chooses the place:
// as many places as the standard library's tables have for the keys, and a power of two.
TEST(HostileIds, CostWhatOthersCost) {
  const Hostile shapes[] = {
      {"channels", Channels("^")},
      {"polygons",
       {Section("<TIpParamAndStore>", "# # # # # #\n"),
        Section("<TGrex10001>", "# # -1 -1 # #\n")}},
  };
  constexpr std::size_t count = 20000;
  const auto seconds_of_load = [](const std::string& bytes) {
    testing_support::FillCandidateLake(testing_support::version + bytes);
    double least = std::numeric_limits<double>::max();
    for (int run = 0; run < 2; ++run) {
      CQtParamDistillery store;
      const double start = ProcessorSeconds();
      EXPECT_TRUE(store.ReadTablesFromCandidateLake());
      least = std::min(least, ProcessorSeconds() - start);
    }
    CParameterLake::Lake().clear();
    return least;
  };
  for (const Hostile& shape : shapes) {
    const double usual = seconds_of_load(shape.Text(count, 10007));
    for (const std::size_t places : {20753U, 65536U}) {
      EXPECT_LT(seconds_of_load(shape.Text(count, places)), 4 * usual)
          << shape.name << ' ' << places;
    }
  }
}

// The most of these hashes that stand in one of 4096 places, by their lower and by their upper
// bits.
std::size_t FullestPlace(const std::vector<std::uint64_t>& hashes) {
  std::map<std::uint64_t, std::size_t> counts;
  for (const std::uint64_t hash : hashes) {
    ++counts[hash % 4096];
    ++counts[4096 + (hash >> 52U)];
  }
  std::size_t most = 0;
  for (const auto& [place, count] : counts) most = std::max(most, count);
  return most;
}

// 4096 keys in 4096 places: by chance six or seven of them meet, and hardly ever more than twelve.
TEST(HostileIds, AreSpreadByTheSecretHash) {
  const SecretHash hash;
  constexpr std::size_t bound_of_chance = 32;
  for (const std::uint64_t step : {1ULL, 4096ULL, 65536ULL, 1ULL << 32U, 1ULL << 52U, 20753ULL}) {
    std::vector<std::uint64_t> of_numbers, of_sums, of_texts;
    for (std::uint64_t i = 0; i < 4096; ++i) {
      const std::uint64_t high = i / 64;
      of_numbers.push_back(hash(i * step));
      of_sums.push_back(hash(i % 64 * step) + hash(high * step + 7));
      of_texts.push_back(hash(std::to_wstring(i * step)));
    }
    EXPECT_LT(FullestPlace(of_numbers), bound_of_chance) << step;
    EXPECT_LT(FullestPlace(of_sums), bound_of_chance) << step;
    EXPECT_LT(FullestPlace(of_texts), bound_of_chance) << step;
  }
}

TEST(HostileIds, AreOnesForASingleSecret) {
  const SecretHash known(0x9E3779B97F4A7C15U);
  const SecretHash other(0xBF58476D1CE4E5B9U);
  constexpr std::uint64_t places = 64;
  std::size_t chosen = 0, together_again = 0;
  for (int id = 0; chosen < 4096; ++id) {
    const std::wstring text = std::to_wstring(id);
    if (known(text) % places != 0) continue;
    ++chosen;
    if (other(text) % places == 0) ++together_again;
  }
  EXPECT_LT(together_again, 2 * chosen / places);
}

TEST(HostileIds, CountWithEachCharacterOfATextInTheSecretHash) {
  const SecretHash hash;
  for (std::size_t size = 0; size < 20; ++size) {
    const std::wstring text(size, L'a');
    std::set<std::uint64_t> hashes{hash(text)};
    for (std::size_t place = 0; place < size; ++place) {
      std::wstring other = text;
      other[place] = L'b';
      hashes.insert(hash(other));
    }
    EXPECT_EQ(hashes.size(), size + 1);
  }
  // The halves of a text, exchanged, with its length in the other one.
  EXPECT_NE(hash(L"abcdef"), hash(L"de`abe"));
}

// With nobody listening a line that can't be read costs its two messages, a block of memory each,
// and not the wording of them piece by piece.
TEST(HostileLog, IsNotWhatABadLineCosts) {
  PrWin::Sink before = PrWin::SetSink([](std::wstring_view, auto, auto) {});
  constexpr std::size_t count = 2000;
  const auto blocks_of_load = [](const std::string& row) {
    testing_support::FillCandidateLake(testing_support::version +
                                       Section("<TModeProperty>", row).Text(count));
    CQtParamDistillery store;
    const std::size_t start = AllocationCount();
    store.ReadTablesFromCandidateLake();
    CParameterLake::Lake().clear();
    return AllocationCount() - start;
  };
  const std::size_t good = blocks_of_load("# 1 0 0 0\n");
  const std::size_t bad = blocks_of_load("# x 0 0 0\n");
  PrWin::SetSink(std::move(before));
  EXPECT_LT(bad, good + 5 * count);
}

}  // namespace
