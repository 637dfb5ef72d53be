// Whoever loses this loses the limits drawn over run-ups: which polygon a measured quantity gets,
// the points of the polygons, and the promise that a large data base loads fast. The expansion is
// held against the plain walk over all pairs of rows.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <random>
#include <string>
#include <vector>

#include "tables/RowCollector.h"
#include "test_store.h"

namespace {

using testing_support::Log;
using testing_support::TestStore;
using Record = CVIpSvTrackPolygon;
using Point = CVPoint;
using Rows = tables::TableOf<L"<TGrex10001>">;
using Listed = tables::TableOf<L"<TIpParamAndStore>">;

constexpr const wchar_t* ambiguous =
    L"CGrexInfo::Init(): ambiguous keys while trying to expand wildcards\n";

struct Outcome {
  CGrexInfo::TrackPolygons track_polygons;
  CGrexInfo::PolygonValues points;
  std::size_t ambiguous_lines = 0;
};

std::string Show(const QClavis& key) {
  std::string text;
  for (const int id : key.id) text += std::to_string(id) + " ";
  return text;
}

// The maps of the handle are compared with what the rows are to give.
void ExpectMaps(const CGrexInfo::TrackPolygons& tracks, const CGrexInfo::PolygonValues& points,
                const Outcome& wanted) {
  EXPECT_EQ(tracks.size(), wanted.track_polygons.size());
  for (const auto& [key, record] : wanted.track_polygons) {
    const auto found = tracks.find(key);
    ASSERT_NE(found, tracks.end()) << Show(key);
    EXPECT_EQ(found->second, record) << Show(key) << found->second.polygon_id;
  }
  EXPECT_EQ(points, wanted.points);
}

TEST(TrackPolygons, AreWhatTheRowsSay) {
  const QClavis a(1, 2, 3, 4, 5, 6);
  const QClavis b(1, 2, 3, 4, 5, 7);
  const QClavis open(1, -1, 3, 4, 5, 6);
  struct {
    const char* what;
    const char* listed;  // lines of <TIpParamAndStore>
    const char* rows;    // lines of <TGrex10001>
    const char* stored;  // lines of <TIpPolygonValue>
    Outcome wanted;
  } const cases[] = {
      {"all -1 matches every key, and two points make a polygon for each",
       "1 2 3 4 5 6\n1 2 3 4 5 7\n1 -1 3 4 5 6\n",
       "-1 -1 -1 -1 -1 -1 21 22 23 24 0.5 1 100 200 1 2\n",
       "4 2 20\n4 1 10\n9 5 50\n9 -5 -50\n",
       {{{open, {21, 23, 10}}, {a, {21, 23, 11}}, {b, {21, 23, 12}}},
        {{{4, 0}, {1, 10}},
         {{4, 1}, {2, 20}},
         {{9, 0}, {-5, -50}},
         {{9, 1}, {5, 50}},
         {{10, 0}, {100, 1.5F}},
         {{10, 1}, {200, 2.5F}},
         {{11, 0}, {100, 1.5F}},
         {{11, 1}, {200, 2.5F}},
         {{12, 0}, {100, 1.5F}},
         {{12, 1}, {200, 2.5F}}}}},
      {"exact elements match themselves and -1",
       "1 2 3 4 5 6\n1 2 3 4 5 7\n1 -1 3 4 5 6\n",
       "1 2 3 4 5 6 0 0 0 7\n1 9 -1 -1 -1 -1 0 0 0 8\n",
       "",
       {{{a, {0, 0, 7}}, {open, {0, 0, 7}}}, {}, 1}},
      {"other modes pass the stored id on and make no points",
       "1 2 3 4 5 6\n1 2 3 4 5 7\n",
       "-1 -1 -1 -1 -1 6 1 2 3 7 9 0 1 2 3 4\n-1 -1 -1 -1 -1 7 1 2 3 7 9 2 1 2 3 4\n",
       "7 3 1\n",
       {{{a, {1, 3, 7}}, {b, {1, 3, 7}}}, {{{7, 0}, {3, 1}}}}},
      {"no polygon is -1, with no points",
       "1 2 3 4 5 6\n",
       "1 -1 -1 -1 -1 -1 5\n",
       "",
       {{{a, {5, -1, -1}}}, {}}},
      {"the loser's polygon uses an id up, and the start stays in front of the end",
       "1 2 3 4 5 6\n1 2 3 4 5 7\n",
       "-1 -1 -1 -1 -1 6 0 0 0 3 0 0 0 0 0 0\n-1 -1 -1 -1 5 -1 0 0 0 0 0 1 9 1 5 6\n",
       "",
       {{{a, {0, 0, 3}}, {b, {0, 0, 1}}},
        {{{0, 0}, {9, 5}}, {{0, 1}, {1, 6}}, {{1, 0}, {9, 5}}, {{1, 1}, {1, 6}}},
        1}},
      {"nothing listed",
       "",
       "-1 -1 -1 -1 -1 -1 0 0 0 0 0 1\n",
       "-7 1 1\n",
       {{}, {{{-7, 0}, {1, 1}}}}},
      {"behind the highest id there are those that are free from 0 up",
       "1 2 3 4 5 6\n1 2 3 4 5 7\n1 -1 3 4 5 6\n",
       "-1 -1 -1 -1 -1 -1 0 0 0 0 0 1 1 2 3 4\n",
       "1 8 8\n2147483646 9 9\n",
       {{{open, {0, 0, INT_MAX}}, {a, {0, 0, 0}}, {b, {0, 0, 2}}},
        {{{0, 0}, {1, 3}},
         {{0, 1}, {2, 4}},
         {{1, 0}, {8, 8}},
         {{2, 0}, {1, 3}},
         {{2, 1}, {2, 4}},
         {{INT_MAX - 1, 0}, {9, 9}},
         {{INT_MAX, 0}, {1, 3}},
         {{INT_MAX, 1}, {2, 4}}}}},
  };
  TestStore data;
  const auto& tracks = data.params.IpTrackPolygon();  // good over loads
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    data.log.lines.clear();
    ASSERT_TRUE(data.Load("<TIpParamAndStore>: {\n" + std::string(c.listed) +
                          "}\n<TGrex10001>: {\n" + c.rows + "}\n<TIpPolygonValue>: {\n" + c.stored +
                          "}\n"));
    ExpectMaps(tracks, data.params.IpPolygonValues(), c.wanted);
    EXPECT_EQ(data.log.lines, std::vector<Log::Line>(c.wanted.ambiguous_lines, {ambiguous, 8, 1}));
  }
  data.params.PurgeTables();
  EXPECT_EQ(tracks.size(), 3U) << "a purge leaves what the load made";
}

TEST(TrackPolygons, OfTheSample) {
  TestStore data;
  ASSERT_TRUE(data.LoadSample());
  EXPECT_EQ(data.params.IpTrackPolygon().size(), 12U);
  struct {
    QClavis key;
    Record record;
    std::vector<Point> points;
  } const cases[] = {
      {{160, 2070, 6, 22, 20702, 12}, {13, 0, 10}, {{600, 78}, {3000, 98}}},
      {{170, 2070, 6, 21, 20701, 11}, {11, 0, 11}, {{3000, 90}, {600, 72.5F}}},
      {{170, 2070, 6, 22, 20702, 12}, {13, 0, 12}, {{600, 78}, {3000, 98}}},
      {{260, 2070, 6, 22, 20702, 12}, {13, 0, 13}, {{600, 78}, {3000, 98}}},
      {{160, 2001, 1, 10, 20011, 12}, {11, -1, 2}, {{600, 6}, {1800, 17.5F}, {3000, 30}}},
  };
  const auto& all = data.params.IpPolygonValues();
  for (const auto& c : cases) {
    const auto found = data.params.IpTrackPolygon().find(c.key);
    ASSERT_NE(found, data.params.IpTrackPolygon().end()) << Show(c.key);
    EXPECT_EQ(found->second, c.record) << Show(c.key) << found->second.polygon_id;
    const int id = found->second.polygon_id;
    std::vector<Point> points;
    for (auto p = all.lower_bound({id, 0}); p != all.end() && p->first.first == id; ++p) {
      points.push_back(p->second);
    }
    EXPECT_EQ(points, c.points) << Show(c.key);
  }
}

// ---- against the plain walk ---------------------------------------------------------------

Outcome PlainWalk(const Listed& listed, const Rows& rows) {
  Outcome out;
  int next = 0;
  for (const auto& [key, unused] : listed) {
    for (const auto& [pattern, row] : rows) {
      if (!(CClavis(key.id) & CClavis(pattern.id))) continue;
      Record record{row.track_a, row.track_c, row.polygon_id};
      if (row.polygon_mode == 1) {
        record.polygon_id = next++;
        out.points[{record.polygon_id, 0}] = {row.x_start, row.y_start + row.offset};
        out.points[{record.polygon_id, 1}] = {row.x_end, row.y_end + row.offset};
      }
      if (!out.track_polygons.emplace(key, record).second) ++out.ambiguous_lines;
    }
  }
  return out;
}

using Random = std::mt19937;

// Elements from 0 to `ids` - 1, each -1 in one of `odds` cases; never with odds 0.
QClavis RandomKey(Random& random, int ids, int odds) {
  QClavis key;
  for (int& id : key.id) {
    const bool wildcard = odds != 0 && std::uniform_int_distribution(1, odds)(random) == 1;
    id = wildcard ? -1 : std::uniform_int_distribution(0, ids - 1)(random);
  }
  return key;
}

void FillRandomly(CQtParamStore& store, Random& random, int listed, int rows, int ids, int odds) {
  RowCollector<Listed> keys(store.Table<L"<TIpParamAndStore>">());
  while (listed-- > 0) keys.Add(RandomKey(random, ids, odds), {});
  keys.Finish();
  RowCollector<Rows> patterns(store.Table<L"<TGrex10001>">());
  for (int i = 0; i < rows; ++i) {
    QVIpSvTrackPolygon row;
    row.track_a = i;
    row.polygon_mode = i % 3;
    patterns.Add(RandomKey(random, ids, 2), row);
  }
  patterns.Finish();
}

TEST(TrackPolygons, AreThoseOfThePlainWalkOnRandomTables) {
  Random random(5);
  std::size_t matches = 0;
  for (int round = 0; round < 120; ++round) {
    CQtParamStore store;
    const int ids = 1 + round % 5;
    FillRandomly(store, random, round, 1 + round % 40, ids, round % 6);
    CGrexInfo info(store);
    Log log;
    info.Init();
    const Outcome wanted =
        PlainWalk(store.Table<L"<TIpParamAndStore>">(), store.Table<L"<TGrex10001>">());
    ExpectMaps(info.IpTrackPolygon, info.IpPolygonValues, wanted);
    EXPECT_EQ(log.lines.size(), wanted.ambiguous_lines) << round;
    matches += wanted.track_polygons.size();
  }
  EXPECT_GT(matches, 1000U);
}

TEST(TrackPolygons, CostNoComparisonOfAllPairs) {
  Random random(6);
  CQtParamStore store;
  FillRandomly(store, random, 6000, 400, 60, 0);
  CGrexInfo info(store);
  Log log;
  const auto seconds = [](auto&& run) {
    const auto start = std::chrono::steady_clock::now();
    run();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  };
  Outcome wanted;
  const double plain = seconds([&] {
    wanted = PlainWalk(store.Table<L"<TIpParamAndStore>">(), store.Table<L"<TGrex10001>">());
  });
  double expanded = plain;  // the best of several runs, since other programs share the machine
  for (int run = 0; run < 3; ++run) {
    expanded = std::min(expanded, seconds([&] { info.Init(); }));
  }
  ExpectMaps(info.IpTrackPolygon, info.IpPolygonValues, wanted);
  EXPECT_LT(expanded * 2, plain);
}

}  // namespace
