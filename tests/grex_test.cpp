// Whoever loses this loses the limits drawn over run-ups: which polygon a measured quantity gets,
// the points of the polygons, and the promise that a large data base loads fast. The expansion is
// held against the plain walk over all pairs of rows.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tables/RowCollector.h"
#include "test_store.h"

namespace {

using testing_support::Log;
using testing_support::TestStore;
using Tracks = CGrexInfo::TrackPolygons;
using Points = CGrexInfo::PolygonValues;
using Rows = tables::TableOf<L"<TGrex10001>">;
using Listed = tables::TableOf<L"<TIpParamAndStore>">;

constexpr const wchar_t* ambiguous =
    L"CGrexInfo::Init(): ambiguous keys while trying to expand wildcards\n";

// A line for each key, with its two tracks and its polygon, then all points: polygon.number=x,y.
std::string Show(const Tracks& tracks, const Points& points) {
  std::ostringstream out;
  for (const auto& [key, record] : tracks) {
    for (const int id : key.id) out << id << ' ';
    out << "-> " << record.track_a << ' ' << record.track_c << ' ' << record.polygon_id << '\n';
  }
  for (const auto& [place, point] : points) {
    out << ' ' << place.first << '.' << place.second << '=' << point.x << ',' << point.y;
  }
  return out.str();
}

TEST(TrackPolygons, AreWhatTheRowsSay) {
  struct {
    const char* what;
    const char* listed;  // lines of <TIpParamAndStore>
    const char* rows;    // lines of <TGrex10001>
    const char* stored;  // lines of <TIpPolygonValue>
    const char* wanted;
    std::size_t ambiguous_lines;
  } const cases[] = {
      {"all -1 matches every key, and two points make a polygon for each",
       "1 2 3 4 5 6\n1 2 3 4 5 7\n1 -1 3 4 5 6\n",
       "-1 -1 -1 -1 -1 -1 21 22 23 24 0.5 1 100 200 1 2\n", "4 2 20\n4 1 10\n9 5 50\n9 -5 -50\n",
       "1 -1 3 4 5 6 -> 21 23 10\n1 2 3 4 5 6 -> 21 23 11\n1 2 3 4 5 7 -> 21 23 12\n"
       " 4.0=1,10 4.1=2,20 9.0=-5,-50 9.1=5,50 10.0=100,1.5 10.1=200,2.5"
       " 11.0=100,1.5 11.1=200,2.5 12.0=100,1.5 12.1=200,2.5",
       0},
      {"other modes pass the stored id on and make no points", "1 2 3 4 5 6\n1 2 3 4 5 7\n",
       "-1 -1 -1 -1 -1 6 1 2 3 7 9 0 1 2 3 4\n-1 -1 -1 -1 -1 7 1 2 3 7 9 2 1 2 3 4\n", "7 3 1\n",
       "1 2 3 4 5 6 -> 1 3 7\n1 2 3 4 5 7 -> 1 3 7\n 7.0=3,1", 0},
      {"no polygon is -1, with no points", "1 2 3 4 5 6\n", "1 -1 -1 -1 -1 -1 5\n", "",
       "1 2 3 4 5 6 -> 5 -1 -1\n", 0},
      {"the loser's polygon uses an id up, and the start stays in front of the end",
       "1 2 3 4 5 6\n1 2 3 4 5 7\n",
       "-1 -1 -1 -1 -1 6 0 0 0 3 0 0 0 0 0 0\n-1 -1 -1 -1 5 -1 0 0 0 0 0 1 9 1 5 6\n", "",
       "1 2 3 4 5 6 -> 0 0 3\n1 2 3 4 5 7 -> 0 0 1\n 0.0=9,5 0.1=1,6 1.0=9,5 1.1=1,6", 1},
      {"nothing listed", "", "-1 -1 -1 -1 -1 -1 0 0 0 0 0 1\n", "-7 1 1\n", " -7.0=1,1", 0},
      {"behind the highest id there are those that are free from 0 up",
       "1 2 3 4 5 6\n1 2 3 4 5 7\n1 -1 3 4 5 6\n", "-1 -1 -1 -1 -1 -1 0 0 0 0 0 1 1 2 3 4\n",
       "1 8 8\n2147483646 9 9\n",
       "1 -1 3 4 5 6 -> 0 0 2147483647\n1 2 3 4 5 6 -> 0 0 0\n1 2 3 4 5 7 -> 0 0 2\n"
       " 0.0=1,3 0.1=2,4 1.0=8,8 2.0=1,3 2.1=2,4 2147483646.0=9,9"
       " 2147483647.0=1,3 2147483647.1=2,4",
       0},
  };
  TestStore data;
  const Tracks& tracks = data.params.IpTrackPolygon();  // good over loads
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    data.log.lines.clear();
    ASSERT_TRUE(data.Load("<TIpParamAndStore>: {\n" + std::string(c.listed) +
                          "}\n<TGrex10001>: {\n" + c.rows + "}\n<TIpPolygonValue>: {\n" + c.stored +
                          "}\n"));
    EXPECT_EQ(Show(tracks, data.params.IpPolygonValues()), c.wanted);
    EXPECT_EQ(data.log.lines, std::vector<Log::Line>(c.ambiguous_lines, {ambiguous, 8, 1}));
  }
  data.params.PurgeTables();
  EXPECT_EQ(tracks.size(), 3U) << "a purge leaves what the load made";
}

TEST(TrackPolygons, OfTheSample) {
  TestStore data;
  ASSERT_TRUE(data.LoadSample());
  const Tracks& tracks = data.params.IpTrackPolygon();
  const Points& points = data.params.IpPolygonValues();
  EXPECT_EQ(tracks.size(), 12U);
  const std::pair<QClavis, const char*> cases[] = {
      {{160, 2070, 6, 22, 20702, 12}, "13 0 10\n 10.0=600,78 10.1=3000,98"},
      {{170, 2070, 6, 21, 20701, 11}, "11 0 11\n 11.0=3000,90 11.1=600,72.5"},
      {{260, 2070, 6, 22, 20702, 12}, "13 0 13\n 13.0=600,78 13.1=3000,98"},
      {{160, 2001, 1, 10, 20011, 12}, "11 -1 2\n 2.0=600,6 2.1=1800,17.5 2.2=3000,30"},
  };
  for (const auto& [key, wanted] : cases) {
    const int id = tracks.at(key).polygon_id;
    const Points of_key(points.lower_bound({id, 0}), points.lower_bound({id + 1, 0}));
    const std::string shown = Show({{key, tracks.at(key)}}, of_key);
    EXPECT_EQ(shown.substr(shown.find('>') + 2), wanted);
  }
}

// ---- against the plain walk ---------------------------------------------------------------

struct Outcome {
  Tracks tracks;
  Points points;
  std::size_t ambiguous_lines = 0;
};

Outcome PlainWalk(const CQtParamStore& store) {
  Outcome out;
  int next = 0;
  for (const auto& [key, unused] : store.Table<L"<TIpParamAndStore>">()) {
    for (const auto& [pattern, row] : store.Table<L"<TGrex10001>">()) {
      if (!(CClavis(key.id) & CClavis(pattern.id))) continue;
      CVIpSvTrackPolygon record{row.track_a, row.track_c, row.polygon_id};
      if (row.polygon_mode == 1) {
        record.polygon_id = next++;
        out.points[{record.polygon_id, 0}] = {row.x_start, row.y_start + row.offset};
        out.points[{record.polygon_id, 1}] = {row.x_end, row.y_end + row.offset};
      }
      if (!out.tracks.emplace(key, record).second) ++out.ambiguous_lines;
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
    FillRandomly(store, random, round, 1 + round % 40, 1 + round % 5, round % 6);
    CGrexInfo info(store);
    const Log log;
    info.Init();
    const Outcome wanted = PlainWalk(store);
    EXPECT_EQ(Show(info.IpTrackPolygon, info.IpPolygonValues), Show(wanted.tracks, wanted.points));
    EXPECT_EQ(log.lines.size(), wanted.ambiguous_lines) << round;
    matches += wanted.tracks.size();
  }
  EXPECT_GT(matches, 1000U);
}

TEST(TrackPolygons, CostNoComparisonOfAllPairs) {
  Random random(6);
  CQtParamStore store;
  FillRandomly(store, random, 6000, 400, 60, 0);
  CGrexInfo info(store);
  const Log log;
  const auto seconds = [](auto&& run) {
    const auto start = std::chrono::steady_clock::now();
    run();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  };
  Outcome wanted;
  const double plain = seconds([&] { wanted = PlainWalk(store); });
  double expanded = plain;  // the best of several runs, since other programs share the machine
  for (int run = 0; run < 3; ++run) {
    expanded = std::min(expanded, seconds([&] { info.Init(); }));
  }
  EXPECT_EQ(Show(info.IpTrackPolygon, info.IpPolygonValues), Show(wanted.tracks, wanted.points));
  EXPECT_LT(expanded * 2, plain);
}

}  // namespace
