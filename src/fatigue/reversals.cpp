#include "fatigue/reversals.h"

#include <algorithm>
#include <cassert>
#include <cmath>

namespace zentor {
namespace {

// `mapped(i, n)`: point i (from 0) was read while n reversals were complete.
template <typename Mapped>
ReversalCount Extract(std::span<const float> values, float threshold, std::span<float> out, Mapped mapped) {
  assert(out.size() >= values.size());
  const std::size_t n = values.size();
  if (n == 0) return {0, HistoryCondition::kConstant};
  mapped(0, 1);
  std::size_t i = 1;
  while (i < n && values[i] == values[0]) mapped(i++, 1);
  if (i == n) return {0, HistoryCondition::kConstant};

  std::size_t count = 0;
  float candidate = values[i];
  bool rising = candidate > values[0];
  out[count++] = values[0];
  mapped(i++, 1);
  for (; i < n; ++i) {
    const float v = values[i];
    if (v != candidate) {
      const bool onwards = rising ? v > candidate : v < candidate;
      if (onwards) {
        candidate = v;
      } else if (!(std::fabs(v - candidate) < threshold)) {
        out[count++] = candidate;
        candidate = v;
        rising = !rising;
      }
    }
    mapped(i, count);
  }
  out[count++] = candidate;
  mapped(n - 1, count);
  return {count, HistoryCondition::kNone};
}

float ThresholdFor(const Extremes& extremes, float filter_percent) {
  const float largest = std::max(std::fabs(extremes.largest), std::fabs(extremes.smallest));
  return filter_percent * largest / 100.0F;
}

bool Filters(float filter_percent) { return filter_percent > kSmallestFilterPercent; }

}  // namespace

float FilterThreshold(const Extremes& extremes, float filter_percent) {
  return Filters(filter_percent) ? ThresholdFor(extremes, filter_percent) : 0.0F;
}

float FilterThreshold(std::span<const float> values, float filter_percent) {
  return Filters(filter_percent) ? ThresholdFor(ExtremesOf(values), filter_percent) : 0.0F;
}

float FilterThresholdByPoint(std::span<const float> values, float filter_percent) {
  return Filters(filter_percent) ? ThresholdFor(ExtremesByPoint(values), filter_percent) : 0.0F;
}

ReversalCount ExtractReversalsByPoint(std::span<const float> values, float threshold, std::span<float> out) {
  return Extract(values, threshold, out, [](std::size_t, std::size_t) {});
}

ReversalCount ExtractReversalsWithMap(std::span<const float> values, float threshold, std::span<float> out,
                                      std::span<std::int32_t> map) {
  assert(map.size() == values.size());
  return Extract(values, threshold, out,
                 [&](std::size_t i, std::size_t n) { map[i] = static_cast<std::int32_t>(n); });
}

}  // namespace zentor
