// From a spectrum interval to numbers: a range on the spectrum's axis, and the spectral lines in
// it.
//
// A definition speaks of harmonics of a base order, of turns of the assembly's shaft and of orders
// of the speed source, so one interval lies elsewhere in each test step and for each assembly. Two
// numbers hold all that is needed of these, and are loaded once for many intervals:
//
//   position  =  ((H x base order + M) x ratio + O) x scale  +  F  +  L x resolution
//
// `ratio` is the assembly's speed over that of the speed source. `scale` is 1 unless the interval
// is mixed. The unit is orders for an interval of orders, else that of F. All arithmetic is in
// 32-bit floats and in this order, so that every host sees the same lines.
//
// Constant operations may run on any number of threads, but not beside LoadTransformParams.
#pragma once

#include <vector>

#include "interfaces/Export.h"
#include "spec/OrderInterpreter.h"

class CQtParamInstance;

class KESTRIN_API CQtSpecInterval {
 public:
  enum index_range_result_t {
    index_range_ok = 0,
    index_range_beyond_spectrum = 1,  // the interval begins behind the last line
    index_range_no_base_order = 2,    // it counts harmonics, and the base order is 0
    index_range_no_ratio = 3,         // it counts harmonics or modulation, and the ratio is 0
    index_range_invalid = 4,          // no range: see below
  };

  // Spectral lines from start to stop, both inclusive. The bounds on the axis are the exact ones:
  // they don't lie on lines.
  struct IndexInterval {
    float start_frequency = 0.0F;
    float stop_frequency = 0.0F;
    unsigned start_index = 0;
    unsigned stop_index = 0;
  };

  // The handle must outlive this. Until a load both numbers are 0.
  explicit CQtSpecInterval(const CQtParamInstance& params) : instance_(params) {}
  explicit CQtSpecInterval(const CQtParamInstance&& temporary) = delete;

  // Takes base order and ratio for a test step, virtual or not, the rotor of a speed source and
  // that of an assembly; 0 where the tables have no answer. The same three again, or another
  // virtual mode of the same base, change nothing, even after another data base was loaded.
  void LoadTransformParams(int mode, int speed_source, int assembly);

  // Never negative.
  float RatioAssembly2SpeedSrc() const { return ratio_assembly2speed_src_; }

  // The bounds of an interval. `resolution` is the distance of two lines on the axis, order_scale
  // the value of one order in the unit of F, used for mixed intervals only.
  // index_range_invalid: a bound is negative or no number, or the lower one is above the upper one;
  // low and high then have been written all the same, after any other miss they have not.
  index_range_result_t FrequencyRange(const QVSpecIntervalEntry& entry, float resolution,
                                      float order_scale, float& low, float& high) const;

  // The lines next to the bounds, a half going upwards, in a spectrum of line_count lines. An upper
  // bound behind the last line is cut to it; a spectrum without lines has nothing but misses.
  // index_range_invalid also if the resolution is no finite number above 0. After a miss `interval`
  // is what it was.
  index_range_result_t IndexRange(const QVSpecIntervalEntry& entry, IndexInterval& interval,
                                  unsigned line_count, float resolution, float order_scale) const;

  // What remains of the first interval when all others are cut out of it, in place and in ascending
  // order; returns the number of pieces. The cuts stand in ascending order of their starts. They
  // may touch, overlap and reach beyond the first interval, whose pieces go where a cut covers them
  // whole, so that nothing may remain. A piece begins one line behind a cut, but at the cut's own
  // bound on the axis. An empty collection stays so.
  static unsigned InvertIndexIntervalCollection(std::vector<IndexInterval>& collection);

 private:
  float Value(const QVSpecIntervalEntry::Definition& position, float resolution, float scale) const;

  const CQtParamInstance& instance_;
  float base_order_ = 0.0F;
  float ratio_assembly2speed_src_ = 0.0F;
  int base_mode_ = -1;
  int speed_source_ = -1;
  int assembly_ = -1;
};
