// The arithmetic between running values and cells. It takes the bounds and the step of an axis by
// themselves, so that rows and intervals share it.

#include "trigger/TriggerStore.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "frame/QtParamInstance.h"
#include "tables/FieldOr.h"

namespace {

constexpr unsigned index_bits = 16;

unsigned Dimension(const QIdx3& key) { return static_cast<unsigned>(key[2]) - 1; }

// The comparisons come in front of the conversion: a float beyond the integer has none.
std::optional<std::uint16_t> Index(float value, float start, float step, bool clamp) {
  constexpr float behind_last = 65536.0F;
  const float quotient = (value - start) / step;
  if (quotient > -1.0F && quotient < behind_last) {
    return static_cast<std::uint16_t>(static_cast<int>(quotient));
  }
  if (!clamp) return std::nullopt;
  return quotient >= behind_last ? std::numeric_limits<std::uint16_t>::max() : std::uint16_t{0};
}

void Pack(std::int64_t& cell, unsigned dim, std::uint16_t index) {
  cell |= static_cast<std::int64_t>(static_cast<std::uint64_t>(index) << (index_bits * dim));
}

bool PackIndex(std::int64_t& cell, unsigned dim, std::optional<std::uint16_t> index) {
  if (index) Pack(cell, dim, *index);
  return index.has_value();
}

std::int16_t Unpack(std::int64_t cell, unsigned dim) {
  return static_cast<std::int16_t>(static_cast<std::uint64_t>(cell) >> (index_bits * dim));
}

float EdgeOf(std::int64_t cell, unsigned dim, float start, float stop, float step, bool raising) {
  const float index = Unpack(cell, dim);
  return (index + (raising ? 1.0F : 0.0F)) * step + std::min(start, stop);
}

float PlaceOf(std::int64_t cell, std::int64_t offset, unsigned dim, float start, float stop,
              float step) {
  const int distance = Unpack(offset, dim);
  const auto sum = static_cast<std::int16_t>(Unpack(cell, dim) + distance);
  return (static_cast<float>(sum) + (distance == 0 ? 0.5F : 0.0F)) * step + std::min(start, stop);
}

unsigned WholeSteps(float start, float step, float stop) {
  constexpr float behind_last = 4294967296.0F;
  const float quotient = (stop - start) / step;
  if (!(step > 0.0F) || !(quotient >= 1.0F)) return 0;
  return quotient < behind_last ? static_cast<unsigned>(quotient)
                                : std::numeric_limits<unsigned>::max();
}

}  // namespace

CTriggerStore::CInterval::CInterval(float start, float step, unsigned len, bool raising)
    : start_(start),
      len_(len),
      step_(step),
      stop_(start + static_cast<float>(len) * step),
      raising_(raising) {}

CTriggerStore::CInterval::CInterval(const QVTriggerParams& row) { *this = row; }

CTriggerStore::CInterval& CTriggerStore::CInterval::operator=(const QVTriggerParams& row) {
  set(row.start, row.step, row.stop);
  return *this;
}

void CTriggerStore::CInterval::set(float start, float step, float stop) {
  raising_ = !(stop < start);
  if (!raising_) std::swap(start, stop);
  start_ = start;
  len_ = WholeSteps(start, step, stop);
  step_ = step;
  stop_ = stop;
}

void CTriggerStore::CInterval::clear() {
  const bool raising = raising_;
  *this = CInterval();
  raising_ = raising;
}

// ---- on the tables ------------------------------------------------------------------------

std::span<const CTriggerStore::Rows::value_type> CTriggerStore::param_range(int mode,
                                                                            int trigger) const {
  const Rows& rows = params_.TriggerParam();
  const int base = CQtParamInstance::VirtMode2BaseMode(mode);
  const auto first = rows.lower_bound({base, trigger, 1});
  const auto last = std::find_if(first, rows.end(), [base, trigger](const auto& row) {
    return row.first[0] != base || row.first[1] != trigger || Dimension(row.first) >= dimensions_d;
  });
  return {first, last};
}

const QVTriggerParams* CTriggerStore::param(int mode, int trigger, unsigned dim) const {
  if (dim >= dimensions_d) return nullptr;
  return kestrin::RowOf(params_.TriggerParam(), {CQtParamInstance::VirtMode2BaseMode(mode), trigger,
                                                 static_cast<int>(dim) + 1});
}

int CTriggerStore::dimension(int mode, int trigger) const {
  int running = -1;
  for (const auto& [key, axis] : param_range(mode, trigger)) {
    if (axis.direction == QVTriggerParams::no_direction) continue;
    if (running != -1) return -1;
    running = static_cast<int>(Dimension(key));
  }
  return running;
}

bool CTriggerStore::dimensions(int mode, int trigger, unsigned& mask) const {
  mask = 0;
  for (const auto& [key, axis] : param_range(mode, trigger)) mask |= 1U << Dimension(key);
  return mask != 0;
}

bool CTriggerStore::field(int mode, int trigger, CIntervals& intervals) const {
  intervals.clear();
  const auto rows = param_range(mode, trigger);
  for (const auto& [key, axis] : rows) {
    intervals.interval[Dimension(key)] = axis;
    intervals.is_set.set(Dimension(key));
  }
  return !rows.empty();
}

bool CTriggerStore::field(int mode, int trigger, unsigned dim, CInterval& interval) const {
  const QVTriggerParams* const row = param(mode, trigger, dim);
  if (row != nullptr) interval = *row;
  return row != nullptr;
}

bool CTriggerStore::cell(int mode, int trigger, const CDimensions& dimensions, std::int64_t& cell,
                         bool clamp) const {
  std::int64_t packed = 0;
  const auto rows = param_range(mode, trigger);
  for (const auto& [key, axis] : rows) {
    const unsigned dim = Dimension(key);
    if (!dimensions.is_set[dim]) continue;
    if (!PackIndex(packed, dim, Index(dimensions.value[dim], axis.start, axis.step, clamp))) {
      return false;
    }
  }
  if (!rows.empty()) cell = packed;
  return !rows.empty();
}

bool CTriggerStore::cell(int mode, int trigger, unsigned dim, float value, std::int64_t& cell,
                         bool clamp) const {
  const QVTriggerParams* const row = param(mode, trigger, dim);
  return row != nullptr && PackIndex(cell, dim, Index(value, row->start, row->step, clamp));
}

bool CTriggerStore::position(int mode, int trigger, std::int64_t cell, unsigned dim,
                             float& value) const {
  const QVTriggerParams* const row = param(mode, trigger, dim);
  if (row == nullptr) return false;
  const bool raising = row->direction == QVTriggerParams::raising_direction;
  if (!raising && row->direction != QVTriggerParams::falling_direction) return false;
  value = EdgeOf(cell, dim, row->start, row->stop, row->step, raising);
  return true;
}

bool CTriggerStore::position(int mode, int trigger, std::int64_t cell, std::int64_t offset,
                             CDimensions& dimensions) const {
  dimensions.clear();
  const auto rows = param_range(mode, trigger);
  for (const auto& [key, axis] : rows) {
    const unsigned dim = Dimension(key);
    dimensions.value[dim] = PlaceOf(cell, offset, dim, axis.start, axis.stop, axis.step);
    dimensions.is_set.set(dim);
  }
  return !rows.empty();
}

// ---- on axes that the caller has kept -----------------------------------------------------

bool CTriggerStore::cell(const CIntervals& intervals, const CDimensions& dimensions,
                         std::int64_t& cell, bool clamp) {
  std::int64_t packed = 0;
  for (unsigned dim = 0; dim < dimensions_d; ++dim) {
    if (!intervals.is_set[dim] || !dimensions.is_set[dim]) continue;
    if (!CTriggerStore::cell(intervals.interval[dim], dim, dimensions.value[dim], packed, clamp)) {
      return false;
    }
  }
  cell = packed;
  return true;
}

bool CTriggerStore::cell(const CInterval& interval, unsigned dim, float value, std::int64_t& cell,
                         bool clamp) {
  return dim < dimensions_d &&
         PackIndex(cell, dim, Index(value, interval.start(), interval.step(), clamp));
}

bool CTriggerStore::position(const CInterval& interval, std::int64_t cell, unsigned dim,
                             float& value) {
  if (dim >= dimensions_d) return false;
  value = EdgeOf(cell, dim, interval.start(), interval.stop(), interval.step(), interval.raising());
  return true;
}

bool CTriggerStore::position(const CIntervals& intervals, std::int64_t cell, std::int64_t offset,
                             CDimensions& dimensions) {
  for (unsigned dim = 0; dim < dimensions_d; ++dim) {
    const CInterval& axis = intervals.interval[dim];
    dimensions.value[dim] = PlaceOf(cell, offset, dim, axis.start(), axis.stop(), axis.step());
  }
  dimensions.is_set.set();
  return true;
}
