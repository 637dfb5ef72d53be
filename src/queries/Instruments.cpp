// What kind of result an instrument gives. The ids of the instruments are numbers that the whole
// suite agrees on, and so is their classification: it is built in, and no parameter file changes
// it. Files only give the instruments their names.

#include <algorithm>
#include <iterator>

#include "frame/QtParamDistillery.h"
#include "frame/QtParamInstance.h"
#include "tables/FieldOr.h"

namespace {

enum ResultKind : int {
  no_result = -1,
  unknown = 0,
  single_value = 1,
  track = 2,
  spectrum = 3,
  type_4 = 4,  // no query asks for it
  other_track = 5,
  two_dimensional = 6,
};

struct Instrument {
  int id;
  ResultKind result;
};
constexpr Instrument instruments[] = {
    {1001, single_value},    {1002, single_value},  {1003, single_value},  {1004, single_value},
    {1005, single_value},    {1006, single_value},  {1007, single_value},  {1050, single_value},
    {1051, single_value},    {1060, single_value},  {1061, single_value},  {1070, single_value},
    {1100, single_value},    {1110, single_value},  {1150, single_value},  {1151, single_value},
    {1152, single_value},    {1700, single_value},  {2001, track},         {2002, track},
    {2003, track},           {2004, track},         {2005, track},         {2006, track},
    {2007, track},           {2012, track},         {2070, track},         {2100, spectrum},
    {2500, spectrum},        {2600, type_4},        {2700, spectrum},      {2800, spectrum},
    {2900, spectrum},        {3000, single_value},  {3500, other_track},   {3600, two_dimensional},
    {3700, two_dimensional}, {5000, track},         {5001, type_4},        {5002, single_value},
    {8000, no_result},       {8999, no_result},     {9000, single_value},  {9500, single_value},
    {9600, single_value},    {9650, single_value},  {9651, single_value},  {10000, single_value},
    {10001, single_value},   {10100, single_value}, {10101, single_value}, {10201, single_value},
    {11000, track},          {11201, track},        {16000, single_value}, {16001, single_value},
    {20000, single_value},   {21000, track}};
static_assert(std::ranges::is_sorted(instruments, {}, &Instrument::id));

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
  const auto* const found = std::ranges::lower_bound(instruments, instrument, {}, &Instrument::id);
  return found != std::end(instruments) && found->id == instrument ? found->result : unknown;
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
  return kestrin::FieldOr(InstrumentParam(), parameter, &QVInstrumentParam::instrument, -1);
}
