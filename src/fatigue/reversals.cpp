#include "fatigue/reversals.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>

namespace zentor {
namespace {

// Largest magnitude, in lanes so that it vectorises without reassociating anything: the maximum is exact in
// any order.
float LargestMagnitude(std::span<const float> values) {
  constexpr std::size_t kLanes = 16;
  std::array<float, kLanes> lane{};
  std::size_t i = 0;
  for (; i + kLanes <= values.size(); i += kLanes) {
    for (std::size_t k = 0; k < kLanes; ++k) {
      const float magnitude = std::fabs(values[i + k]);
      lane[k] = lane[k] < magnitude ? magnitude : lane[k];
    }
  }
  for (; i < values.size(); ++i) lane[0] = std::max(lane[0], std::fabs(values[i]));
  return *std::max_element(lane.begin(), lane.end());
}

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

}  // namespace

float FilterThreshold(std::span<const float> values, float filter_percent) {
  if (!(filter_percent > kSmallestFilterPercent)) return 0.0F;
  return filter_percent * LargestMagnitude(values) / 100.0F;
}

ReversalCount ExtractReversals(std::span<const float> values, float threshold, std::span<float> out) {
  return Extract(values, threshold, out, [](std::size_t, std::size_t) {});
}

ReversalCount ExtractReversalsWithMap(std::span<const float> values, float threshold, std::span<float> out,
                                      std::span<std::int32_t> map) {
  assert(map.size() == values.size());
  return Extract(values, threshold, out,
                 [&](std::size_t i, std::size_t n) { map[i] = static_cast<std::int32_t>(n); });
}

}  // namespace zentor
