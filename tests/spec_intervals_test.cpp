// Whoever loses this looks at the wrong spectral lines: which parameters have intervals, where an
// interval lies in a test step, and what remains of one when others are cut out of it.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "spec/QtSpecInterval.h"
#include "spec/QtSpecIntervalStore.h"
#include "test_store.h"

namespace {

using testing_support::TestStore;
using Entry = QVSpecIntervalEntry;
using Spec = CQtSpecInterval;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kTiny = std::numeric_limits<float>::denorm_min();
constexpr int kMaxInt = std::numeric_limits<int>::max();
constexpr unsigned kMaxUnsigned = std::numeric_limits<unsigned>::max();

std::string Section(const std::string& name, const std::string& rows) {
  return "<" + name + ">: {\n" + rows + "}\n";
}

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
  struct Interval {
    int index;
    float low, high;  // harmonics
  };
  struct Case {
    std::string rows;
    bool has_record;
    std::vector<Interval> intervals;
    std::wstring log;
  };
  std::vector<Interval> repeated;
  for (int i = 0; i < 32; i += 2) {
    repeated.push_back({i, static_cast<float>(i + 1), static_cast<float>(i + 2)});
  }
  const Case cases[] = {
      {CalcRows(7, "H1"), true, {{0, 1, 1}}, L""},
      {CalcRows(7, "H1;H2;H3;H4"), true, {{0, 1, 2}, {2, 3, 4}}, L""},
      {CalcRows(7, "Hx"), true, repeated, L""},
      {CalcRows(7, "H1;H2", 6, 0), false, {}, L""},
      {CalcRows(7, "H1;H2", 0, 11), false, {}, L""},
      {CalcRows(7, ""), false, {}, L""},
      {CalcRows(7, " "), true, {}, L""},
      {CalcRows(7, "F1-M2"),
       true,
       {},
       L"OrderInterpreter::GetSpecPositions(): Syntax error in order definition 'F1-M2', treating "
       L"it as empty.\n"},
      {CalcRows(7, "H1;H2;H3"),
       true,
       {},
       L"CQtSpecIntervalStore::ProcessTables():\nIpSvOfSpec contains entry with 3 terms. Number of "
       L"terms has to be one ore even. Entrys id is 7. Definition ignored\n"},
  };
  TestStore base;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.rows);
    base.log.lines.clear();
    const std::string neighbours = CalcRows(6, "H8;H9") + CalcRows(8, "H8;H9");
    base.Load(Section("TInstrumentParam", ParameterRow(6) + ParameterRow(7) + ParameterRow(8)) +
              Section("TIpCalcParameter", neighbours + c.rows));
    EXPECT_EQ(base.log.Text(), c.log);
    for (const auto& line : base.log.lines) EXPECT_EQ(line.category * 10 + line.style, 83);
    EXPECT_EQ(base.params.IpSvOfSpec().count(7), c.has_record ? 1U : 0U);
    EXPECT_EQ(base.params.SpecIntervalDefinition(7) != nullptr, c.has_record);
    auto [row, end] = base.params.SpecIntervalRange(7);
    ASSERT_EQ(static_cast<std::size_t>(std::distance(row, end)), c.intervals.size());
    for (const Interval& interval : c.intervals) {
      EXPECT_EQ(row->first, QIdx2(7, interval.index));
      EXPECT_EQ(row->second.lower().harmonic(), interval.low);
      EXPECT_EQ(row->second.upper().harmonic(), interval.high);
      ++row;
    }
  }
}

TEST(SpecIntervals, AreJoinedFromThreeCalculationParameters) {
  std::mt19937 random(17);
  std::bernoulli_distribution present(0.7);
  TestStore base;
  for (int round = 0; round < 20; ++round) {
    std::string parameters;
    std::string rows;
    std::set<int> complete;
    for (int i = -3; i < 40; ++i) {
      const int id = i == 39 ? kMaxInt : i;
      const bool has[] = {present(random), present(random), present(random)};
      parameters += ParameterRow(id);
      rows += CalcRows(id, has[0] ? "H1+L" + std::to_string(i) : "", has[1] ? i + 100 : 0,
                       has[2] ? i + 200 : 0);
      if (has[0] && has[1] && has[2]) complete.insert(i);
    }
    base.Load(Section("TInstrumentParam", parameters) + Section("TIpCalcParameter", rows));
    EXPECT_EQ(base.params.IpSvOfSpec().size(), complete.size());
    for (int i = -3; i < 40; ++i) {
      const int id = i == 39 ? kMaxInt : i;
      const auto record = base.params.IpSvOfSpec().find(id);
      const auto [row, end] = base.params.SpecIntervalRange(static_cast<unsigned>(id));
      ASSERT_EQ(record != base.params.IpSvOfSpec().end(), complete.count(i) == 1) << id;
      ASSERT_EQ(std::distance(row, end), complete.count(i) == 1 ? 1 : 0) << id;
      if (row == end) continue;
      EXPECT_EQ(record->second.interpretation, i + 100);
      EXPECT_EQ(record->second.reference, i + 200);
      EXPECT_EQ(record->second.definition, L"H1+L" + std::to_wstring(i));
      EXPECT_EQ(row->second.lower().lines(), i);
    }
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
  struct Case {
    std::wstring definition;
    unsigned max_orders;
    unsigned count;
  };
  std::wstring long_definition;
  for (int i = 0; i < 10'000; ++i) long_definition += L"H1;";
  const Case cases[] = {
      {L"H1", 32, 0},
      {L"H1;H2;H3", 32, 1},
      {L"H1;H2;H3;H4", 3, 1},
      {L"Hx", 100, 16},
      {L"Hx", 0, 0},
      {L"", 32, 0},
      {L"F1-M2;H1", 32, 0},
      {long_definition, 32, 16},
      {L"H1;H2;H3;H4", kMaxUnsigned, 2},
  };
  const testing_support::Log quiet;
  for (const Case& c : cases) {
    std::vector<Entry> ranges(17);
    ranges[c.count].lower().order() = -77;
    EXPECT_EQ(CQtSpecIntervalStore::Range(c.definition.c_str(), ranges.data(), c.max_orders),
              c.count);
    EXPECT_EQ(ranges[c.count].lower().order(), -77);
    EXPECT_TRUE(c.count == 0 || ranges[c.count - 1].upper().domain() == Entry::domain_order);
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

struct Outcome {
  Spec::index_range_result_t result;
  Spec::IndexInterval interval = {-7, -7, 7, 7};  // as a miss leaves it
};

void ExpectOutcome(const Spec& evaluation, const Entry& entry, const Spectrum& spectrum,
                   const Outcome& expected) {
  Spec::IndexInterval interval = {-7, -7, 7, 7};
  EXPECT_EQ(evaluation.IndexRange(entry, interval, spectrum.lines, spectrum.resolution,
                                  spectrum.order_scale),
            expected.result);
  EXPECT_EQ(interval.start_frequency, expected.interval.start_frequency);
  EXPECT_EQ(interval.stop_frequency, expected.interval.stop_frequency);
  EXPECT_EQ(interval.start_index, expected.interval.start_index);
  EXPECT_EQ(interval.stop_index, expected.interval.stop_index);
}

TEST(SpecIntervals, LieAtTheirSpectralLines) {
  constexpr auto ok = Spec::index_range_ok;
  constexpr auto beyond = Spec::index_range_beyond_spectrum;
  constexpr auto invalid = Spec::index_range_invalid;
  struct Case {
    const wchar_t* definition;
    Spectrum spectrum;
    Outcome loaded;  // with the parameters of mode 7
    Outcome bare;    // without any
  };
  const Outcome no_base_order{Spec::index_range_no_base_order};
  const Outcome no_ratio{Spec::index_range_no_ratio};
  const auto both = [](const wchar_t* definition, const Spectrum& spectrum,
                       const Outcome& outcome) {
    return Case{definition, spectrum, outcome, outcome};
  };
  const Case cases[] = {
      {L"H1-O2;H1+O2", {.resolution = 0.25F}, {ok, {8, 12, 32, 48}}, no_base_order},
      {L"F100;H1", {.order_scale = 25}, {ok, {100, 250, 100, 250}}, no_base_order},
      {L"H1", {.resolution = 0.25F}, {ok, {10, 10, 40, 40}}, no_base_order},
      {L"O1;H1", {}, {ok, {1, 10, 1, 10}}, no_base_order},
      {L"M3", {.resolution = 0.5F}, {ok, {1.5, 1.5, 3, 3}}, no_ratio},
      {L"O1;M4", {}, {ok, {1, 2, 1, 2}}, no_ratio},
      {L"H1", {.resolution = 0}, {invalid}, {invalid}},
      both(L"F5-L1;F6+L1", {.resolution = 0.5F, .order_scale = 9}, {ok, {4.5, 6.5, 9, 13}}),
      both(L"F1+O2;F1+O2+L4", {.resolution = 2, .order_scale = 10}, {ok, {21, 29, 11, 15}}),
      both(L"O0;L4", {.resolution = 0.25F}, {ok, {0, 1, 0, 4}}),
      both(L"O1,125", {.resolution = 0.25F}, {ok, {1.125, 1.125, 5, 5}}),
      both(L"L-1;O5", {}, {invalid}),
      both(L"O5;O4", {}, {invalid}),
      // The end of the spectrum.
      both(L"O399.25;O500", {}, {ok, {399.25, 399, 399, 399}}),
      both(L"O399.5;O500", {}, {beyond}),
      both(L"O10;O500", {.lines = 0}, {beyond}),
      both(L"O0;O5", {.lines = 0}, {beyond}),
      both(L"O0;O5", {.lines = 1}, {ok, {0, 0, 0, 0}}),
      both(L"O0.5;O5", {.lines = 1}, {beyond}),
      both(L"O4294967040;O1e30", {.lines = kMaxUnsigned},
           {ok, {4294967040.0F, 4294967296.0F, 4294967040U, kMaxUnsigned - 1}}),
      both(L"O4294967296", {.lines = kMaxUnsigned}, {beyond}),
      // Numbers that no spectrum has.
      both(L"O1;O1e400", {}, {ok, {1, 399, 1, 399}}),
      both(L"O1e400", {}, {beyond}),
      both(L"F1e400-O1e400", {}, {invalid}),
      both(L"O0;L2147483647", {.resolution = 2}, {ok, {0, 798, 0, 399}}),
      both(L"F1;O1", {.order_scale = kNaN}, {invalid}),
      both(L"F1;O1", {.order_scale = kInfinity}, {invalid}),
      both(L"F1;O1", {.order_scale = -1}, {invalid}),
      both(L"O0;O1", {.resolution = -1}, {invalid}),
      both(L"O0;O1", {.resolution = -0.0F}, {invalid}),
      both(L"O0;O1", {.resolution = kNaN}, {invalid}),
      both(L"O0;O1", {.resolution = kInfinity}, {invalid}),
      both(L"L1;L2", {.resolution = kInfinity}, {invalid}),
      both(L"O0;O1", {.resolution = kTiny}, {ok, {0, 399 * kTiny, 0, 399}}),
      both(L"O1", {.resolution = kTiny}, {beyond}),
  };
  TestStore base(Machine());
  Spec loaded(base.params);
  const Spec bare(base.params);
  loaded.LoadTransformParams(7, 1, 2);
  for (const Case& c : cases) {
    SCOPED_TRACE(Text::ToUtf8(c.definition));
    ExpectOutcome(loaded, Read(c.definition), c.spectrum, c.loaded);
    ExpectOutcome(bare, Read(c.definition), c.spectrum, c.bare);
  }
  Entry no_number = Read(L"O1;O2");
  no_number.upper().order() = kNaN;
  ExpectOutcome(loaded, no_number, {}, {invalid});

  float low = 0;
  float high = 0;
  EXPECT_EQ(bare.FrequencyRange(Read(L"L1;O5"), -2, 1, low, high), invalid);
  EXPECT_EQ(low, -2);
  EXPECT_EQ(high, 5);
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
  EXPECT_EQ(harmonic(kMaxInt, kMaxInt), -1);
  EXPECT_EQ(harmonic(std::numeric_limits<int>::min(), -1), -1);

  // Nothing is looked up anew while base mode and order sources stay.
  EXPECT_EQ(harmonic(7, 2), 10);
  base.Load(Machine("90.0"));
  EXPECT_EQ(harmonic(CQtParamInstance::VirtModeGenerateId(7, 1), 2), 10);
  EXPECT_EQ(harmonic(8, 2), 90);
}

TEST(SpecIntervals, OfTheSampleLieWhereTheGearsMesh) {
  struct Case {
    unsigned parameter;
    float low, high;
    unsigned first, last;
  };
  const Case cases[] = {
      {17001, 31.5F, 32.5F, 252, 260},  // first mesh, 32 teeth on the input shaft
      {17003, 95.5F, 96.5F, 764, 772},  // its third harmonic
      {17004, 15.5F, 16.5F, 124, 132},  // second mesh, 48 teeth at a third of the speed
      {17015, 32 - 1 / 3.0F, 32 + 1 / 3.0F, 253, 259},
  };
  TestStore base;
  ASSERT_TRUE(base.LoadSample());
  Spec evaluation(base.params);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.parameter);
    const int assembly = base.params.IpSvOfSpec().at(static_cast<int>(c.parameter)).reference;
    evaluation.LoadTransformParams(130, 1, assembly);
    const auto [row, end] = base.params.SpecIntervalRange(c.parameter);
    ASSERT_EQ(std::distance(row, end), 1);
    Spec::IndexInterval interval;
    ASSERT_EQ(evaluation.IndexRange(row->second, interval, 1600, 0.125F, 1), Spec::index_range_ok);
    EXPECT_FLOAT_EQ(interval.start_frequency, c.low);
    EXPECT_FLOAT_EQ(interval.stop_frequency, c.high);
    EXPECT_EQ(interval.start_index, c.first);
    EXPECT_EQ(interval.stop_index, c.last);
  }
}

// An interval whose bounds tell on the axis too where it came from.
Spec::IndexInterval Lines(unsigned start, unsigned stop) {
  return {static_cast<float>(start) - 0.25F, static_cast<float>(stop) + 0.25F, start, stop};
}

TEST(SpecIntervals, CanBeCutOutOfOneAnother) {
  using Pairs = std::vector<std::pair<unsigned, unsigned>>;
  struct Case {
    Pairs collection;
    Pairs pieces;
  };
  const Case cases[] = {
      {{{0, 100}, {10, 20}, {30, 40}, {90, 100}}, {{0, 9}, {21, 29}, {41, 89}}},
      {{{5, 9}}, {{5, 9}}},
      {{{0, 9}, {0, 4}}, {{5, 9}}},
      {{{0, 9}, {5, 9}}, {{0, 4}}},
      {{{0, 9}, {0, 9}}, {}},
      {{{2, 9}, {0, 20}, {3, 4}}, {}},
      {{{0, 9}, {3, 4}, {5, 9}}, {{0, 2}}},
      {{{0, 100}, {90, 100}, {95, 100}}, {{0, 89}}},
      {{{0, kMaxUnsigned}, {0, 0}, {kMaxUnsigned, kMaxUnsigned}}, {{1, kMaxUnsigned - 1}}},
      {{}, {}},
  };
  for (const Case& c : cases) {
    std::vector<Spec::IndexInterval> collection;
    for (const auto& [start, stop] : c.collection) collection.push_back(Lines(start, stop));
    EXPECT_EQ(Spec::InvertIndexIntervalCollection(collection), c.pieces.size());
    Pairs pieces;
    for (const auto& piece : collection) pieces.emplace_back(piece.start_index, piece.stop_index);
    EXPECT_EQ(pieces, c.pieces);
  }
}

// Two cuts whose ends fall on one line: the piece behind them begins at the later end.
TEST(SpecIntervals, PiecesBeginBehindTheFurthestCutOnTheAxis) {
  std::vector<Spec::IndexInterval> collection = {
      {0.0F, 100.0F, 0, 100}, {10.1F, 20.1F, 10, 20}, {15.0F, 20.3F, 15, 20}};
  ASSERT_EQ(Spec::InvertIndexIntervalCollection(collection), 2U);
  EXPECT_EQ(collection[0].stop_frequency, 10.1F);
  EXPECT_EQ(collection[1].start_frequency, 20.3F);
  EXPECT_EQ(collection[1].start_index, 21U);
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
