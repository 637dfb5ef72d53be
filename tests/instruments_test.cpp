// Which kind of result an instrument gives: what decides how the suite shows it.

#include <gtest/gtest.h>

#include <climits>
#include <map>
#include <numeric>
#include <tuple>
#include <vector>

#include "test_store.h"

namespace {

using Params = CQtParamInstance;

int Find(const std::map<int, int>& map, int instrument, int otherwise) {
  const auto found = map.find(instrument);
  return found == map.end() ? otherwise : found->second;
}

TEST(Instruments, AreClassifiedAndLeadToTheirTracksByTheirIds) {
  const std::map<int, std::vector<int>> instruments_by_type = {
      {-1, {8000, 8999}},
      {1, {1001, 1002, 1003, 1004,  1005,  1006,  1007,  1050,  1051,  1060,  1061,
           1070, 1100, 1110, 1150,  1151,  1152,  1700,  3000,  5002,  9000,  9500,
           9600, 9650, 9651, 10000, 10001, 10100, 10101, 10201, 16000, 16001, 20000}},
      {2, {2001, 2002, 2003, 2004, 2005, 2006, 2007, 2012, 2070, 5000, 11000, 11201, 21000}},
      {3, {2100, 2500, 2700, 2800, 2900}},
      {4, {2600, 5001}},
      {5, {3500}},
      {6, {3600, 3700}}};
  std::map<int, int> types;
  for (const auto& [type, ids] : instruments_by_type) {
    for (const int instrument : ids) types[instrument] = type;
  }
  std::map<int, int> to_track = {{1001, 2001}, {1002, 2002}, {1003, 2003}, {1004, 2004},
                                 {1005, 2005}, {1700, 2070}, {2500, 3500}, {20000, 21000}};
  std::map<int, int> to_scalar;
  for (const auto& [scalar, track] : to_track) to_scalar[track] = scalar;
  to_track[1070] = 2070;  // one way only

  // Every id of the suite and all numbers around them.
  std::vector<int> instruments(22002);
  std::iota(instruments.begin(), instruments.end(), -2);
  for (const int extreme : {INT_MAX, INT_MIN}) instruments.push_back(extreme);
  for (const int id : instruments) {
    const int type = Find(types, id, 0);
    EXPECT_EQ(
        std::tuple(Params::ResultType(id), Params::IsSingleValueInstrument(id),
                   Params::IsTrackInstrument(id), Params::IsSpectrumInstrument(id),
                   Params::Is2dDataInstrument(id), Params::ScalarInstrumentToTrackInstrument(id),
                   Params::TrackInstrumentToScalarInstrument(id)),
        std::tuple(type, type == 1, type == 2 || type == 5, type == 3, type == 6,
                   Find(to_track, id, -1), Find(to_scalar, id, -1)))
        << id;
  }
}

TEST(Instruments, OwnTheirParameters) {
  testing_support::TestStore data(
      "<TInstrumentParam>: {\n17 1001 RMS\n18 -7 Odd\n0 2001 Zero\n}\n");
  const std::pair<int, int> cases[] = {{17, 1001}, {18, -7}, {0, 2001}, {-1, -1}, {1, -1}};
  for (const auto& [parameter, instrument] : cases) {
    EXPECT_EQ(data.params.InstrumentParameterToInstrument(parameter), instrument) << parameter;
  }
  data.params.PurgeTables();
  EXPECT_EQ(data.params.InstrumentParameterToInstrument(17), -1);
}

}  // namespace
