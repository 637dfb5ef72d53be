// Whoever loses this looks at the wrong spectral lines: which parameters have intervals, where an
// interval lies in a test step, and what remains of one when others are cut out of it.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <iterator>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "spec/QtSpecInterval.h"
#include "spec/QtSpecIntervalStore.h"
#include "test_store.h"

namespace {

using testing_support::Section;
using testing_support::TestStore;
using Entry = QVSpecIntervalEntry;
using Spec = CQtSpecInterval;

constexpr float kTiny = std::numeric_limits<float>::denorm_min();

// The calculation parameters 2, 3 and 4 of one parameter; 0 in place of one leaves it out.
std::string CalcRows(int id, const std::string& definition, int interpretation = 6,
                     int reference = 11) {
  const auto row = [id](int number, const std::string& value) {
    return std::to_string(id) + " " + std::to_string(number) + " \"" + value + "\"\n";
  };
  return (interpretation == 0 ? "" : row(2, std::to_string(interpretation))) +
         (definition.empty() ? "" : row(3, definition)) +
         (reference == 0 ? "" : row(4, std::to_string(reference)));
}

std::string ParameterRow(int id) { return std::to_string(id) + " 1700 \"P\" 1 0 0\n"; }

TEST(SpecIntervals, AreReadFromTheDefinitionOfAParameter) {
  using Intervals = std::vector<std::tuple<QIdx2, float, float>>;  // by their harmonics
  Intervals repeated;
  for (int i = 0; i < 32; i += 2) repeated.emplace_back(QIdx2(7, i), i + 1, i + 2);
  const std::pair<std::string, Intervals> cases[] = {
      {"H1", {{QIdx2(7, 0), 1, 1}}},
      {"H1;H2;H3;H4", {{QIdx2(7, 0), 1, 2}, {QIdx2(7, 2), 3, 4}}},
      {"Hx", repeated},
      {"", {}},  // the one without a record
      {" ", {}},
      {"F1-M2", {}},
      {"H1;H2;H3", {}},
  };
  TestStore base;
  for (const auto& [definition, intervals] : cases) {
    SCOPED_TRACE(definition);
    base.Load(Section("TInstrumentParam", ParameterRow(6) + ParameterRow(7) + ParameterRow(8)) +
              Section("TIpCalcParameter",
                      CalcRows(6, "H8;H9") + CalcRows(8, "H8;H9") + CalcRows(7, definition)));
    EXPECT_EQ(base.params.IpSvOfSpec().count(7), definition.empty() ? 0U : 1U);
    EXPECT_EQ(base.params.SpecIntervalDefinition(7) == nullptr, definition.empty());
    Intervals found;
    const auto [first, end] = base.params.SpecIntervalRange(7);
    for (auto row = first; row != end; ++row) {
      found.emplace_back(row->first, row->second.lower().harmonic(),
                         row->second.upper().harmonic());
    }
    EXPECT_EQ(found, intervals);
  }
  EXPECT_EQ(base.log.Text(),
            L"OrderInterpreter::GetSpecPositions(): Syntax error in order definition 'F1-M2', "
            L"treating it as empty.\n"
            L"CQtSpecIntervalStore::ProcessTables():\nIpSvOfSpec contains entry with 3 terms. "
            L"Number of terms has to be one ore even. Entrys id is 7. Definition ignored\n");
  for (const auto& line : base.log.lines) EXPECT_EQ(line.category * 10 + line.style, 83);
}

TEST(SpecIntervals, AreJoinedFromThreeCalculationParameters) {
  std::mt19937 random(17);
  std::bernoulli_distribution present(0.7);
  TestStore base;
  for (int round = 0; round < 20; ++round) {
    using Record = std::tuple<int, int, int, std::wstring, int>;
    std::vector<Record> expected;
    std::string parameters;
    std::string rows;
    for (int i = -3; i < 40; ++i) {
      const int id = i == 39 ? INT_MAX : i;
      const bool has[] = {present(random), present(random), present(random)};
      parameters += ParameterRow(id);
      rows += CalcRows(id, has[0] ? "H1+L" + std::to_string(i) : "", has[1] ? i + 100 : 0,
                       has[2] ? i + 200 : 0);
      if (!has[0] || !has[1] || !has[2]) continue;
      expected.emplace_back(id, i + 100, i + 200, L"H1+L" + std::to_wstring(i), i);
    }
    base.Load(Section("TInstrumentParam", parameters) + Section("TIpCalcParameter", rows));
    std::vector<Record> found;
    for (const auto& [key, record] : base.params.IpSvOfSpec()) {
      const auto [row, end] = base.params.SpecIntervalRange(static_cast<unsigned>(key[0]));
      ASSERT_EQ(std::distance(row, end), 1) << key[0];
      found.emplace_back(key[0], record.interpretation, record.reference, record.definition,
                         row->second.lower().lines());
    }
    EXPECT_EQ(found, expected);
  }
}

TEST(SpecIntervals, AreDumpedBehindTheBaseChannels) {
  TestStore base(Section("TInstrumentParam", ParameterRow(7)) +
                 Section("TIpCalcParameter", CalcRows(7, "H1-O2-M3-L4;H5+O6+M7+L8")));
  base.store.Derived().Dump(0);
  const std::wstring text = base.log.Text();
  EXPECT_LT(text.find(L"->\t<PiBaseChannelId>"), text.find(L"<-\t<PiSpecIntervalStore>"));
  EXPECT_NE(text.find(L"7 0 | 0 -2 1 -3 -4 0 6 5 7 8\n"), std::wstring::npos) << text;

  base.log.lines.clear();
  CQtSpecIntervalStore store(base.store);
  store.Load(33);
  EXPECT_EQ(base.log.Text(), L"QtSpecIntervalStore: nr_orders 33 > max_orders 32.\n");
  EXPECT_TRUE(store.IpSvOfSpec().empty());
  store.Load(32);
  EXPECT_EQ(store.IpSvOfSpec().size(), 1U);
}

TEST(SpecIntervals, AreReadForAHostWithoutTheStore) {
  std::wstring long_definition;
  for (int i = 0; i < 10'000; ++i) long_definition += L"H1;";
  const std::tuple<std::wstring, unsigned, unsigned> cases[] = {
      {L"H1;H2;H3", 32, 1}, {L"H1;H2;H3;H4", 3, 1}, {L"Hx", 100, 16},
      {L"Hx", 0, 0},        {L"F1-M2;H1", 32, 0},   {long_definition, 32, 16}};
  const testing_support::Log quiet;
  for (const auto& [definition, max_orders, count] : cases) {
    std::vector<Entry> ranges(17);
    ranges[count].lower().order() = -77;
    EXPECT_EQ(CQtSpecIntervalStore::Range(definition.c_str(), ranges.data(), max_orders), count);
    EXPECT_EQ(ranges[count].lower().order(), -77);
    EXPECT_TRUE(count == 0 || ranges[count - 1].upper().domain() == Entry::domain_order);
  }
}

// Mode 7: base order 20 and half the speed of speed source 1 for assembly 2. Mode 8: the assembly
// turns backwards at full speed.
std::string Machine(const std::string& base_order = "20.0") {
  return Section("TModeProperty", "7 1 0 -1 0\n8 2 0 -1 0\n") +
         Section("TRotorSpeed", "1 1 2.0\n1 2 1.0\n2 1 2.0\n2 2 -2.0\n") +
         Section("TBaseOrder", "2 " + base_order + "\n");
}

Entry Read(const wchar_t* definition) {
  Entry::Definition positions[2];
  const unsigned count = OrderInterpreter::GetSpecPositions(definition, positions, 2);
  return {positions[0], positions[count - 1]};
}

struct Spectrum {
  float resolution = 1;
  unsigned lines = 400;
  float order_scale = 1;
};

using Bounds = std::tuple<float, float, unsigned, unsigned>;

Bounds BoundsOf(const Spec::IndexInterval& interval) {
  return {interval.start_frequency, interval.stop_frequency, interval.start_index,
          interval.stop_index};
}

using Outcome = std::pair<Spec::index_range_result_t, Bounds>;
constexpr Bounds untouched = {-7, -7, 7, 7};

Outcome Evaluate(const Spec& evaluation, const Entry& entry, const Spectrum& spectrum) {
  Spec::IndexInterval interval = {-7, -7, 7, 7};
  const auto result = evaluation.IndexRange(entry, interval, spectrum.lines, spectrum.resolution,
                                            spectrum.order_scale);
  return {result, BoundsOf(interval)};
}

TEST(SpecIntervals, LieAtTheirSpectralLines) {
  constexpr auto ok = Spec::index_range_ok;
  const Outcome beyond = {Spec::index_range_beyond_spectrum, untouched};
  const Outcome invalid = {Spec::index_range_invalid, untouched};
  const Outcome no_base_order = {Spec::index_range_no_base_order, untouched};
  const Outcome no_ratio = {Spec::index_range_no_ratio, untouched};
  struct Case {
    const wchar_t* definition;
    Spectrum spectrum;
    Outcome loaded;                    // with the parameters of mode 7
    std::optional<Outcome> bare = {};  // without any, if that differs
  };
  const Case cases[] = {
      {L"H1-O2;H1+O2", {.resolution = 0.25F}, {ok, {8, 12, 32, 48}}, no_base_order},
      {L"F100;H1", {.order_scale = 25}, {ok, {100, 250, 100, 250}}, no_base_order},
      {L"H1;O10", {.resolution = 0.25F}, {ok, {10, 10, 40, 40}}, no_base_order},
      {L"M3", {.resolution = 0.5F}, {ok, {1.5, 1.5, 3, 3}}, no_ratio},
      {L"O1;M4", {}, {ok, {1, 2, 1, 2}}, no_ratio},
      {L"H1", {.resolution = 0}, invalid},
      {L"F5-L1;F6+L1", {.resolution = 0.5F, .order_scale = 9}, {ok, {4.5, 6.5, 9, 13}}},
      {L"F1+O2;F1+O2+L4", {.resolution = 2, .order_scale = 10}, {ok, {21, 29, 11, 15}}},
      {L"O1,125", {.resolution = 0.25F}, {ok, {1.125, 1.125, 5, 5}}},
      {L"L-1;O5", {}, invalid},
      {L"O5;O4", {}, invalid},
      // The end of the spectrum.
      {L"O399.25;O500", {}, {ok, {399.25, 399, 399, 399}}},
      {L"O399.5;O500", {}, beyond},
      {L"O0;O5", {.lines = 0}, beyond},
      {L"O0;O5", {.lines = 1}, {ok, {0, 0, 0, 0}}},
      {L"O4294967040;O1e30",
       {.lines = UINT_MAX},
       {ok, {4294967040.0F, 4294967296.0F, 4294967040U, UINT_MAX - 1}}},
      {L"O4294967296", {.lines = UINT_MAX}, beyond},
      // Numbers that no spectrum has.
      {L"O1;O1e400", {}, {ok, {1, 399, 1, 399}}},
      {L"O1e400", {}, beyond},
      {L"F1e400-O1e400", {}, invalid},
      {L"O0;O1", {.resolution = -1}, invalid},
      {L"O0;O1", {.resolution = NAN}, invalid},
      {L"L1;L2", {.resolution = INFINITY}, invalid},
      {L"O0;O1", {.resolution = kTiny}, {ok, {0, 399 * kTiny, 0, 399}}},
  };
  TestStore base(Machine());
  Spec loaded(base.params);
  const Spec bare(base.params);
  loaded.LoadTransformParams(7, 1, 2);
  for (const Case& c : cases) {
    SCOPED_TRACE(Text::ToUtf8(c.definition));
    EXPECT_EQ(Evaluate(loaded, Read(c.definition), c.spectrum), c.loaded);
    EXPECT_EQ(Evaluate(bare, Read(c.definition), c.spectrum), c.bare.value_or(c.loaded));
  }
  Entry no_number = Read(L"O1;O2");
  no_number.upper().order() = NAN;
  EXPECT_EQ(Evaluate(loaded, no_number, {}), invalid);

  float low = 0;
  float high = 0;
  EXPECT_EQ(bare.FrequencyRange(Read(L"L1;O5"), -2, 1, low, high), Spec::index_range_invalid);
  EXPECT_EQ(std::pair(low, high), std::pair(-2.0F, 5.0F));
}

TEST(SpecIntervals, FollowTheTestStepAndTheAssembly) {
  TestStore base(Machine());
  Spec evaluation(base.params);
  const auto harmonic = [&](int mode, int assembly) {
    evaluation.LoadTransformParams(mode, 1, assembly);
    float low = -1;
    float high = -1;
    evaluation.FrequencyRange(Read(L"H1"), 1, 1, low, high);
    return low;
  };
  EXPECT_EQ(harmonic(7, 2), 10);
  EXPECT_EQ(harmonic(8, 2), 20);
  EXPECT_EQ(evaluation.RatioAssembly2SpeedSrc(), 1);
  EXPECT_EQ(harmonic(CQtParamInstance::VirtModeGenerateId(7, 5), 2), 10);
  EXPECT_EQ(harmonic(7, 9), -1);
  EXPECT_EQ(harmonic(INT_MAX, INT_MAX), -1);
  EXPECT_EQ(harmonic(INT_MIN, -1), -1);

  // Nothing is looked up anew while base mode and order sources stay.
  EXPECT_EQ(harmonic(7, 2), 10);
  base.Load(Machine("90.0"));
  EXPECT_EQ(harmonic(CQtParamInstance::VirtModeGenerateId(7, 1), 2), 10);
  EXPECT_EQ(harmonic(8, 2), 90);
}

// An interval whose bounds tell on the axis too where it came from.
Spec::IndexInterval Lines(unsigned start, unsigned stop) {
  return {static_cast<float>(start) - 0.25F, static_cast<float>(stop) + 0.25F, start, stop};
}

TEST(SpecIntervals, CanBeCutOutOfOneAnother) {
  using Intervals = std::vector<Spec::IndexInterval>;
  struct {
    Intervals collection;
    std::vector<Bounds> pieces;
  } const cases[] = {
      {{Lines(0, 100), Lines(10, 20), Lines(30, 40), Lines(90, 100)},
       {{-0.25F, 9.75F, 0, 9}, {20.25F, 29.75F, 21, 29}, {40.25F, 89.75F, 41, 89}}},
      {{Lines(0, UINT_MAX), Lines(0, 0), Lines(UINT_MAX, UINT_MAX)},
       {{0.25F, 4294967296.0F, 1, UINT_MAX - 1}}},
      {{}, {}},
      // Two cuts whose ends fall on one line: the piece behind them begins at the later end.
      {{{0.0F, 100.0F, 0, 100}, {10.1F, 20.1F, 10, 20}, {15.0F, 20.3F, 15, 20}},
       {{0.0F, 10.1F, 0, 9}, {20.3F, 100.0F, 21, 100}}},
  };
  for (const auto& c : cases) {
    Intervals collection = c.collection;
    EXPECT_EQ(Spec::InvertIndexIntervalCollection(collection), c.pieces.size());
    std::vector<Bounds> pieces;
    for (const auto& piece : collection) pieces.push_back(BoundsOf(piece));
    EXPECT_EQ(pieces, c.pieces);
  }
}

TEST(SpecIntervals, KeepExactlyTheLinesThatNoCutCovers) {
  std::mt19937 random(4711);
  constexpr unsigned line_count = 64;
  std::uniform_int_distribution<unsigned> line(1, line_count - 2);
  std::uniform_int_distribution<unsigned> width(0, 9);
  for (int round = 0; round < 5000; ++round) {
    const auto [first, last] = std::minmax({line(random), line(random)});
    std::vector<Spec::IndexInterval> collection = {Lines(first, last)};
    std::vector<bool> kept(line_count + 10);
    std::fill(kept.begin() + first, kept.begin() + last + 1, true);
    for (unsigned cuts = width(random); cuts > 0; --cuts) {
      const unsigned start = line(random);
      collection.push_back(Lines(start, start + width(random)));
      std::fill(kept.begin() + start, kept.begin() + collection.back().stop_index + 1, false);
    }
    std::sort(collection.begin() + 1, collection.end(),
              [](const auto& a, const auto& b) { return a.start_index < b.start_index; });

    const unsigned count = Spec::InvertIndexIntervalCollection(collection);
    ASSERT_EQ(count, collection.size());
    std::vector<bool> left(line_count + 10);
    unsigned next = 0;
    for (const auto& piece : collection) {
      ASSERT_LE(next, piece.start_index);
      ASSERT_LE(piece.start_index, piece.stop_index);
      next = piece.stop_index + 1;
      std::fill(left.begin() + piece.start_index, left.begin() + next, true);
      // On the axis a piece begins and ends where its neighbours do.
      const auto own = Lines(piece.start_index, piece.stop_index);
      EXPECT_EQ(piece.start_frequency,
                own.start_frequency - (piece.start_index == first ? 0.0F : 0.5F));
      EXPECT_EQ(piece.stop_frequency,
                own.stop_frequency + (piece.stop_index == last ? 0.0F : 0.5F));
    }
    ASSERT_EQ(left, kept);
  }
}

}  // namespace
