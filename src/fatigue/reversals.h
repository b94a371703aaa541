// Reduction of a history to its reversals: peaks and valleys whose swing reaches a threshold.
//
// Single precision; no service is called and nothing is allocated. Values that are not finite give reversals
// of no meaning, but never more than there are points.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "fatigue/extremes.h"

namespace zentor {

// Why a history cannot be counted.
enum class HistoryCondition : int {
  kNone,
  kConstant,    // no value differs from the first (message 9060)
  kFirstEqual,  // the first two counted values are equal (message 9071)
};

// Percentages at or below this switch the filter off.
inline constexpr float kSmallestFilterPercent = 1e-20F;

// filter_percent * largest |value| / 100, or 0 when the filter is off. Same unit as the values.
float FilterThreshold(std::span<const float> values, float filter_percent);
float FilterThreshold(const Extremes& extremes, float filter_percent);  // of the values

struct ReversalCount {
  std::size_t count =
      0;  // reversals written; at least 2 unless the history is constant, at most values.size()
  HistoryCondition condition = HistoryCondition::kNone;
};

// The same, point by point: its reference in tests and bench.
float FilterThresholdByPoint(std::span<const float> values, float filter_percent);

// Writes the reversals of `values` (first value, every turn of at least `threshold`, last extreme) to `out`,
// point by point: what ReversalReader means, its reference in tests and bench.
// REQUIRES: out.size() >= values.size(). out may be the array of the values itself: reversal k is written
// only after point k was read. A constant (or empty) history writes nothing and returns kConstant.
ReversalCount ExtractReversalsByPoint(std::span<const float> values, float threshold, std::span<float> out);

// The same, and for every point of the history the number (from 1) of the reversal at or
// before it. REQUIRES: map.size() == values.size().
ReversalCount ExtractReversalsWithMap(std::span<const float> values, float threshold, std::span<float> out,
                                      std::span<std::int32_t> map);

}  // namespace zentor
