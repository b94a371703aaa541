#include "fatigue/reversals.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>

#include "fatigue/extremes.h"
#include "fatigue/lane_masks.h"

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

// The turns of a history without a filter, where the candidate is always the point before: a point is a
// reversal when the direction changes behind it. Equal neighbours keep the direction.
class TurnFinder {
 public:
  TurnFinder(bool rising, float* out, std::size_t count) : rising_(rising), out_(out), count_(count) {}

  // Points first .. first + 63 of v. REQUIRES: first >= 2.
  void TakeMask(const float* v, std::size_t first) {
    const float* const p = v + first;
    if (lanes_.equal(p, p - 1) != 0) return TakePoints(v, first, first + kMaskBits);
    const std::uint64_t up = lanes_.greater(p, p - 1);
    const std::uint64_t turns = up ^ (up << 1U | static_cast<std::uint64_t>(rising_));
    rising_ = up >> (kMaskBits - 1) != 0;
    count_ += lanes_.compress(p - 1, turns, out_ + count_);
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
  const LaneMasks& lanes_ = BestLaneMasks();
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

// Filters turns in place. Most thresholds drop long runs of them, so after a few in a row 64 are looked at
// together.
class TurnFilter {
 public:
  TurnFilter(float* turns, std::size_t n, float threshold) : z_(turns), n_(n), threshold_(threshold) {}

  // REQUIRES: turns of a history that is not constant (at least two, the first two differ), threshold > 0.
  std::size_t Run() {
    rising_ = z_[1] > z_[0];
    candidate_ = z_[1];
    std::size_t ignored = 0;
    for (std::size_t i = 2; i < n_; ++i) {
      const float v = z_[i];
      if (rising_ ? v > candidate_ : v < candidate_) {
        candidate_ = v;
        ignored = 0;
      } else if (!(std::fabs(v - candidate_) < threshold_)) {
        z_[count_++] = candidate_;
        candidate_ = v;
        rising_ = !rising_;
        ignored = 0;
      } else if (++ignored % kTryAfter == 0) {
        while (i + kMaskBits < n_ && IgnoresAll(z_ + i + 1)) i += kMaskBits;
      }
    }
    z_[count_++] = candidate_;
    return count_;
  }

 private:
  static constexpr std::size_t kTryAfter = 32;

  // Whether none of the next 64 turns passes the candidate or turns back by the threshold.
  bool IgnoresAll(const float* next) const {
    const float candidate = candidate_;
    const float threshold = threshold_;
    const float direction = rising_ ? 1.0F : -1.0F;
    int taken = 0;
#pragma omp simd reduction(| : taken)
    for (std::size_t k = 0; k < kMaskBits; ++k) {
      const float beyond = (next[k] - candidate) * direction;
      taken |= static_cast<int>(beyond > 0.0F) | static_cast<int>(-beyond >= threshold);
    }
    return taken == 0;
  }

  float* z_;
  std::size_t n_;
  float threshold_;
  bool rising_ = true;
  float candidate_ = 0.0F;
  std::size_t count_ = 1;
};

}  // namespace

float FilterThreshold(std::span<const float> values, float filter_percent) {
  if (!(filter_percent > kSmallestFilterPercent)) return 0.0F;
  const Extremes extremes = ExtremesOf(values);
  const float largest = std::max(std::fabs(extremes.largest), std::fabs(extremes.smallest));
  return filter_percent * largest / 100.0F;
}

// Between two turns the history runs one way, so it passes a candidate, or turns back by the threshold,
// furthest at the turn: filtering the turns gives what filtering all points gives.
ReversalCount ExtractReversals(std::span<const float> values, float threshold, std::span<float> out) {
  const ReversalCount turns = TurningPoints(values, out);
  if (turns.condition != HistoryCondition::kNone || threshold <= 0.0F) return turns;
  return {TurnFilter(out.data(), turns.count, threshold).Run(), HistoryCondition::kNone};
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
