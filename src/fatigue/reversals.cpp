#include "fatigue/reversals.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>

#include "fatigue/bit_masks.h"

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

// The turns of a history without a filter, where the candidate is always the point before: a point is a
// reversal when the direction changes behind it. Equal neighbours keep the direction.
class TurnFinder {
 public:
  TurnFinder(bool rising, float* out, std::size_t count) : rising_(rising), out_(out), count_(count) {}

  // Points first .. first + 63, of which none but the first may be the first of the history.
  void TakeMask(const float* v, std::size_t first) {
    std::array<std::uint8_t, kMaskBits + 1> up;
    std::uint8_t equal = 0;
    up[0] = static_cast<std::uint8_t>(rising_);
    const float* const p = v + first;
    for (std::size_t k = 0; k < kMaskBits; ++k) {
      up[k + 1] = static_cast<std::uint8_t>(p[k] > p[static_cast<std::ptrdiff_t>(k) - 1]);
      equal |= static_cast<std::uint8_t>(p[k] == p[static_cast<std::ptrdiff_t>(k) - 1]);
    }
    if (equal != 0) return TakePoints(v, first, first + kMaskBits);
    rising_ = up[kMaskBits] != 0;
    std::array<std::uint8_t, kMaskBits> turn;
    for (std::size_t k = 0; k < kMaskBits; ++k) turn[k] = up[k] ^ up[k + 1];
    ForEachBit(MaskOfFlags(turn.data()), [&](std::size_t k) { out_[count_++] = v[first + k - 1]; });
  }

  void TakePoints(const float* v, std::size_t first, std::size_t last) {
    for (std::size_t i = first; i < last; ++i) {
      const bool up = v[i] > v[i - 1];
      const bool moved = v[i] != v[i - 1];
      out_[count_] = v[i - 1];
      count_ += static_cast<std::size_t>(moved & (up != rising_));
      rising_ = moved ? up : rising_;
    }
  }

  std::size_t count() const { return count_; }

 private:
  bool rising_;
  float* out_;
  std::size_t count_;
};

ReversalCount TurningPoints(std::span<const float> values, std::span<float> out) {
  assert(out.size() >= values.size());
  const std::size_t n = values.size();
  std::size_t i = 1;
  while (i < n && values[i] == values[0]) ++i;
  if (i >= n) return {0, HistoryCondition::kConstant};
  const float last = values[n - 1];
  TurnFinder finder(values[i] > values[0], out.data(), 1);
  out[0] = values[0];
  ++i;
  for (; i + kMaskBits <= n; i += kMaskBits) finder.TakeMask(values.data(), i);
  finder.TakePoints(values.data(), i, n);
  out[finder.count()] = last;
  return {finder.count() + 1, HistoryCondition::kNone};
}

}  // namespace

float FilterThreshold(std::span<const float> values, float filter_percent) {
  if (!(filter_percent > kSmallestFilterPercent)) return 0.0F;
  return filter_percent * LargestMagnitude(values) / 100.0F;
}

// Between two turns the history runs one way, so it passes a candidate, or turns back by the threshold,
// furthest at the turn: filtering the turns gives what filtering all points gives.
ReversalCount ExtractReversals(std::span<const float> values, float threshold, std::span<float> out) {
  const ReversalCount turns = TurningPoints(values, out);
  if (turns.condition != HistoryCondition::kNone || threshold <= 0.0F) return turns;
  return ExtractReversalsByPoint(out.first(turns.count), threshold, out);
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
