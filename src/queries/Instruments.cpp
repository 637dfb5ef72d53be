// What kind of result an instrument gives. The ids of the instruments are numbers that the whole
// suite agrees on, and so is their classification: it is built in, and no parameter file changes
// it. Files only give the instruments their names.

#include <algorithm>
#include <span>

#include "frame/QtParamDistillery.h"
#include "frame/QtParamInstance.h"

namespace {

// The result types that a query asks for.
enum ResultKind : int {
  unknown = 0,
  single_value = 1,
  track = 2,
  spectrum = 3,
  other_track = 5,
  two_dimensional = 6,
};

constexpr int without_result[] = {8000, 8999};
constexpr int single_values[] = {1001,  1002,  1003,  1004,  1005,  1006, 1007, 1050,  1051,
                                 1060,  1061,  1070,  1100,  1110,  1150, 1151, 1152,  1700,
                                 3000,  5002,  9000,  9500,  9600,  9650, 9651, 10000, 10001,
                                 10100, 10101, 10201, 16000, 16001, 20000};
constexpr int tracks[] = {2001, 2002, 2003, 2004,  2005,  2006, 2007,
                          2012, 2070, 5000, 11000, 11201, 21000};
constexpr int spectra[] = {2100, 2500, 2700, 2800, 2900};
constexpr int type_4[] = {2600, 5001};
constexpr int other_tracks[] = {3500};
constexpr int two_dimensional_data[] = {3600, 3700};

struct ResultGroup {
  int result_type;
  std::span<const int> instruments;  // ascending
};
constexpr ResultGroup groups[] = {
    {single_value, single_values}, {track, tracks},
    {spectrum, spectra},           {two_dimensional, two_dimensional_data},
    {other_track, other_tracks},   {4, type_4},
    {-1, without_result},
};
static_assert(std::all_of(std::begin(groups), std::end(groups), [](const ResultGroup& group) {
  return std::is_sorted(group.instruments.begin(), group.instruments.end());
}));

// An instrument, and the one that gives the same value over time. Of several with one track the
// first is the one that the track leads back to.
struct Pair {
  int scalar;
  int track;
};
constexpr Pair pairs[] = {{1001, 2001}, {1002, 2002}, {1003, 2003}, {1004, 2004},  {1005, 2005},
                          {1700, 2070}, {1070, 2070}, {2500, 3500}, {20000, 21000}};

// The other side of the first pair that has `instrument` on the side given, or -1.
int OtherSide(int instrument, int Pair::*side, int Pair::*other) {
  const auto* const found = std::find_if(std::begin(pairs), std::end(pairs), [&](const Pair& pair) {
    return pair.*side == instrument;
  });
  return found == std::end(pairs) ? -1 : found->*other;
}

}  // namespace

int CQtParamInstance::ResultType(int instrument) {
  const auto* const group =
      std::find_if(std::begin(groups), std::end(groups), [&](const ResultGroup& candidate) {
        return std::binary_search(candidate.instruments.begin(), candidate.instruments.end(),
                                  instrument);
      });
  return group == std::end(groups) ? unknown : group->result_type;
}

bool CQtParamInstance::IsSingleValueInstrument(int instrument) {
  return ResultType(instrument) == single_value;
}

bool CQtParamInstance::IsTrackInstrument(int instrument) {
  const int type = ResultType(instrument);
  return type == track || type == other_track;
}

bool CQtParamInstance::IsSpectrumInstrument(int instrument) {
  return ResultType(instrument) == spectrum;
}

bool CQtParamInstance::Is2dDataInstrument(int instrument) {
  return ResultType(instrument) == two_dimensional;
}

int CQtParamInstance::ScalarInstrumentToTrackInstrument(int instrument) {
  return OtherSide(instrument, &Pair::scalar, &Pair::track);
}

int CQtParamInstance::TrackInstrumentToScalarInstrument(int instrument) {
  return OtherSide(instrument, &Pair::track, &Pair::scalar);
}

int CQtParamInstance::InstrumentParameterToInstrument(int parameter) const {
  const auto row = InstrumentParam().find(parameter);
  return row == InstrumentParam().end() ? -1 : row->second.instrument;
}
