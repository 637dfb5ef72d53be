// Triggers: between running values and the cells of a grid.
//
// A trigger says at which running values of a test step something is recorded or evaluated, such as
// every 50 rpm from 1000 to 3000. It has up to four axes, and with them spans a grid. A cell of the
// grid is one 64-bit integer with 16 bits for each axis:
//
//   bit 63        48 47        32 31        16 15         0
//      dimension 3 | dimension 2 | dimension 1 | dimension 0
//
// The axes stand in <TTriggerParam> by test step, trigger and axis number, 1 to 4. Here dimensions
// count from 0 to 3; rows with any other axis number are passed over, and any other dimension in an
// argument gives false. A virtual test step has the triggers of its base.
//
// Each operation comes in two forms. One finds the axes in the tables. The static one takes axes
// that the caller has got from field() and kept: it needs no look-up, and doesn't follow the
// tables. The two differ for a row whose start is above its stop, that is for a falling axis: cells
// on the table count from the row's start, cells on an interval from its lower end.
//
// Arithmetic is in 32-bit floats, truncation towards zero. A value in front of the axis by less
// than a step has the index 0. An index outside 0 to 65535, one beyond any integer and that of an
// axis with step 0 included, makes a cell operation false, or with `clamp` becomes the nearer
// bound; a quotient that is no number then becomes 0. position() reads indexes as signed, so that
// it gives places up to index 32767 only.
//
// Nothing here allocates, logs or throws. Any thread may call any operation; changing or loading
// tables must not run beside those on the tables.
#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <span>
#include <utility>

#include "frame/TableList.h"
#include "interfaces/Export.h"

class CQtParamInstance;

class KESTRIN_API CTriggerStore {
 public:
  static constexpr unsigned dimensions_d = 4;

  // The axis of one dimension.
  class KESTRIN_API CInterval {
   public:
    CInterval() = default;
    // As they are; the stop follows.
    CInterval(float start, float step, unsigned len, bool raising);
    // Of a row, the bounds in ascending order. Its direction plays no part.
    CInterval(const QVTriggerParams& row);
    CInterval& operator=(const QVTriggerParams& row);

    // An axis from start to stop. One that falls has its bounds exchanged.
    void set(float start, float step, float stop);

    // The axis that is made by default, but for `raising`.
    void clear();

    float start() const { return start_; }
    // The whole steps from start to stop; 0 where steps don't lead there, at most 2^32 - 1.
    unsigned len() const { return len_; }
    float step() const { return step_; }  // the width of a cell
    float stop() const { return stop_; }
    bool raising() const { return raising_; }  // running values rise along the axis

   private:
    float start_ = 0.0F;
    unsigned len_ = 0;
    float step_ = 1.0F;
    float stop_ = 0.0F;
    bool raising_ = true;
  };

  // The axes of a trigger. An axis counts only if its bit is set.
  struct CIntervals {
    std::array<CInterval, dimensions_d> interval;
    std::bitset<dimensions_d> is_set;

    void clear() { is_set.reset(); }
  };

  // A value for each dimension. A value counts only if its bit is set.
  struct CDimensions {
    std::array<float, dimensions_d> value{};
    std::bitset<dimensions_d> is_set;

    void clear() { is_set.reset(); }
  };

  // The handle must outlive this.
  explicit CTriggerStore(const CQtParamInstance& params) : params_(params) {}

  static unsigned max_dims() { return dimensions_d; }

  // The one dimension with a direction, raising or falling; -1 if there is none or more than one.
  int dimension(int mode, int trigger) const;

  // Bit d of `mask`: the trigger has dimension d. False, with mask 0, if it has none.
  bool dimensions(int mode, int trigger, unsigned& mask) const;

  // The axes. False if there are none: then `intervals` is cleared, and `interval` unchanged.
  bool field(int mode, int trigger, CIntervals& intervals) const;
  bool field(int mode, int trigger, unsigned dim, CInterval& interval) const;

  // The cell of the values, over the dimensions that both the trigger and the caller have. `cell`
  // becomes that cell, 0 if there is no common dimension. False, with `cell` unchanged, if the
  // trigger has no axes or an index is out of range.
  bool cell(int mode, int trigger, const CDimensions& dimensions, std::int64_t& cell,
            bool clamp) const;
  static bool cell(const CIntervals& intervals, const CDimensions& dimensions, std::int64_t& cell,
                   bool clamp);

  // Puts the index of one value into the bits of `dim`, which must be 0: they are ORed. False, with
  // `cell` unchanged, without that axis or if the index is out of range.
  bool cell(int mode, int trigger, unsigned dim, float value, std::int64_t& cell, bool clamp) const;
  static bool cell(const CInterval& interval, unsigned dim, float value, std::int64_t& cell,
                   bool clamp);

  // The edge of the cell in the running direction: the upper one on a raising axis, the lower one
  // on a falling axis. False, with `value` unchanged, without that axis and for a row without
  // direction; the static form is true.
  bool position(int mode, int trigger, std::int64_t cell, unsigned dim, float& value) const;
  static bool position(const CInterval& interval, std::int64_t cell, unsigned dim, float& value);

  // Where `offset`, packed like a cell, is 0 in a dimension: the middle of the cell. Elsewhere the
  // lower edge of the cell that is so many cells away. The sum of both wraps within 16 bits. The
  // axes in the table are set in `dimensions`, and it is false if there are none; the static form
  // sets all four and is true.
  bool position(int mode, int trigger, std::int64_t cell, std::int64_t offset,
                CDimensions& dimensions) const;
  static bool position(const CIntervals& intervals, std::int64_t cell, std::int64_t offset,
                       CDimensions& dimensions);

 private:
  using Rows = kestrin::tables::TableOf<L"<TTriggerParam>">;

  // All rows of the trigger that are axes, in the order of their dimensions.
  std::span<const Rows::value_type> param_range(int mode, int trigger) const;
  // The row of one axis; null without one.
  const QVTriggerParams* param(int mode, int trigger, unsigned dim) const;

  const CQtParamInstance& params_;
};
