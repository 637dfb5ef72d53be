// The arithmetic of spectrum intervals. Comparisons are written so that NaN fails them, and numbers
// are held against the number of lines before they become indices.
#include "spec/QtSpecInterval.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "frame/QtParamInstance.h"

void CQtSpecInterval::LoadTransformParams(int mode, int new_speed_source, int new_assembly) {
  const int new_base_mode = CQtParamInstance::VirtMode2BaseMode(mode);
  if (new_base_mode == base_mode_ && new_speed_source == speed_source_ &&
      new_assembly == assembly_) {
    return;
  }
  base_mode_ = new_base_mode;
  speed_source_ = new_speed_source;
  assembly_ = new_assembly;
  ratio_assembly2speed_src_ =
      std::abs(instance_.FrequencyRatioToGeneratingRotor(base_mode_, speed_source_, assembly_));
  base_order_ = instance_.BaseOrder(base_mode_, assembly_);
}

float CQtSpecInterval::Value(const QVSpecIntervalEntry::Definition& position, float resolution,
                             float scale) const {
  const float assembly_orders = position.harmonic() * base_order_ + position.modulation();
  const float orders = assembly_orders * ratio_assembly2speed_src_ + position.order();
  return orders * scale + position.frequency() + static_cast<float>(position.lines()) * resolution;
}

CQtSpecInterval::index_range_result_t CQtSpecInterval::FrequencyRange(
    const QVSpecIntervalEntry& entry, float resolution, float order_scale, float& low,
    float& high) const {
  const auto& lower = entry.lower();
  const auto& upper = entry.upper();
  const bool harmonics = lower.harmonic() != 0.0F || upper.harmonic() != 0.0F;
  const bool modulation = lower.modulation() != 0.0F || upper.modulation() != 0.0F;
  if (harmonics && base_order_ == 0.0F) return index_range_no_base_order;
  if ((harmonics || modulation) && ratio_assembly2speed_src_ == 0.0F) return index_range_no_ratio;

  const float scale = entry.domain() == QVSpecIntervalEntry::domain_mixed ? order_scale : 1.0F;
  low = Value(lower, resolution, scale);
  high = Value(upper, resolution, scale);
  return low >= 0.0F && low <= high ? index_range_ok : index_range_invalid;
}

CQtSpecInterval::index_range_result_t CQtSpecInterval::IndexRange(const QVSpecIntervalEntry& entry,
                                                                  IndexInterval& interval,
                                                                  unsigned line_count,
                                                                  float resolution,
                                                                  float order_scale) const {
  if (!(resolution > 0.0F) || std::isinf(resolution)) return index_range_invalid;
  float low = 0.0F;
  float high = 0.0F;
  const auto result = FrequencyRange(entry, resolution, order_scale, low, high);
  if (result != index_range_ok) return result;

  // A double holds every count of lines and every float, a float doesn't hold every count.
  const float start = low / resolution + 0.5F;
  if (static_cast<double>(start) >= line_count) return index_range_beyond_spectrum;
  const float stop = high / resolution + 0.5F;
  unsigned stop_index = line_count - 1;
  if (static_cast<double>(stop) < line_count) {
    stop_index = static_cast<unsigned>(stop);
  } else {
    high = static_cast<float>(stop_index) * resolution;
  }
  interval = {low, high, static_cast<unsigned>(start), stop_index};
  return index_range_ok;
}

unsigned CQtSpecInterval::InvertIndexIntervalCollection(std::vector<IndexInterval>& collection) {
  if (collection.empty()) return 0;
  // The pieces stand at the front, and only the last one can be met by a further cut. A cut turns
  // it into two pieces at most, so the pieces never overtake the cuts.
  std::size_t pieces = 1;
  for (std::size_t i = 1; i < collection.size() && pieces != 0; ++i) {
    const IndexInterval cut = collection[i];
    const IndexInterval piece = collection[pieces - 1];
    if (cut.start_index > piece.stop_index) continue;
    if (cut.stop_index < piece.start_index) {
      // It may share its last line with the cut before and reach further on the axis.
      if (piece.start_index - cut.stop_index == 1) {
        collection[pieces - 1].start_frequency =
            std::max(piece.start_frequency, cut.stop_frequency);
      }
      continue;
    }
    --pieces;
    if (cut.start_index > piece.start_index) {
      collection[pieces++] = {piece.start_frequency, cut.start_frequency, piece.start_index,
                              cut.start_index - 1};
    }
    if (cut.stop_index < piece.stop_index) {
      collection[pieces++] = {cut.stop_frequency, piece.stop_frequency, cut.stop_index + 1,
                              piece.stop_index};
    }
  }
  collection.resize(pieces);
  return static_cast<unsigned>(pieces);
}
