#include "fatigue/reversals.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>

#include "fatigue/extremes.h"
#include "fatigue/inner_cycles.h"
#include "fatigue/turn_filter.h"
#include "fatigue/turn_finder.h"

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

// Index of the first point that differs from the first one; the number of points when none does.
std::size_t FirstMove(std::span<const float> values) {
  const auto moved = std::find_if(values.begin(), values.end(), [&](float v) { return v != values[0]; });
  return static_cast<std::size_t>(moved - values.begin());
}

// Without a filter every turn is a reversal. `first`: index of the first move.
std::size_t AllTurns(std::span<const float> values, std::size_t first, float* out) {
  const float* const v = values.data();
  const std::size_t n = values.size();
  const float last = values.back();
  TurnFinder finder(v[first] > v[0], out, 1);
  std::size_t i = first + 1;
  for (; i + kMaskBits <= n; i += kMaskBits) finder.TakeMask(v, i);
  finder.TakePoints(v, i, n);
  out[finder.count()] = last;
  return finder.count() + 1;
}

// The turns are filtered a buffer at a time, while they are in the first-level cache. Stretches of 64
// points are passed over as a whole where that succeeds for most of them, with a try now and then elsewhere.
class FilteredTurns {
 public:
  FilteredTurns(std::span<const float> values, std::size_t first, float threshold, float* out)
      : values_(values),
        threshold_(threshold),
        next_(first + 1),
        finder_(values[first] > values[0], turns_.data(), 0),
        filter_(values[first], values[first] > values[0], threshold, out) {}

  std::size_t Run() {
    const float* const v = values_.data();
    for (; next_ + kMaskBits <= values_.size(); next_ += kMaskBits) {
      if (wait_ == 0) {
        FilterTurns();
        if (filter_.TakesWhole(v + next_ - 1)) {
          trust_ = std::min(trust_ + 1, kMostTrust);
          passed_over_ = true;
          continue;
        }
        LoseTrust();
      } else {
        --wait_;
      }
      if (passed_over_) FindDirection();
      finder_.TakeMask(v, next_);
      if (finder_.count() > kBuffer) FilterTurns();
    }
    FilterTurns();
    filter_.TakePoints(values_.subspan(next_ - 1));
    return filter_.Finish();
  }

 private:
  static constexpr std::size_t kBuffer = 1024;
  static constexpr int kMostTrust = 16, kLossOfTrust = 4;
  static constexpr int kPause = 32;

  void LoseTrust() {
    trust_ -= kLossOfTrust;
    if (trust_ >= 0) return;
    trust_ = 0;
    wait_ = kPause;
  }

  // Where many turns are ignored most of them are found side by side before the next ones are filtered.
  void FilterTurns() {
    const std::size_t count = finder_.count();
    if (count == 0) return;
    const std::size_t before = filter_.count();
    if (many_ignored_) {
      DropSmallSwings(std::span(turns_).first(count), threshold_, inner_);
      filter_.TakeTurns(inner_.points.data(), inner_.count);
    } else {
      filter_.TakeTurns(turns_.data(), count);
    }
    many_ignored_ = (filter_.count() - before) * 4 < count * 3;
    finder_.Clear();
  }

  // Behind points passed over: the last of them is taken as if it were a turn, and the direction begins anew.
  void FindDirection() {
    const float last = values_[next_ - 1];
    filter_.TakePoints(std::span(&last, 1));
    std::size_t i = next_;
    while (i < values_.size() && values_[i] == last) ++i;
    if (i < values_.size()) finder_.Restart(values_[i] > last);
    passed_over_ = false;
  }

  std::span<const float> values_;
  float threshold_;
  std::size_t next_;
  int trust_ = 0;  // that the next stretch will be passed over
  int wait_ = 0;   // stretches before the next try
  bool passed_over_ = false;
  bool many_ignored_ = false;
  std::array<float, kBuffer + 3 * kMaskBits> turns_;
  InnerCycles inner_;
  TurnFinder finder_;
  TurnFilter filter_;
};

float ThresholdFor(const Extremes& extremes, float filter_percent) {
  const float largest = std::max(std::fabs(extremes.largest), std::fabs(extremes.smallest));
  return filter_percent * largest / 100.0F;
}

bool Filters(float filter_percent) { return filter_percent > kSmallestFilterPercent; }

}  // namespace

float FilterThreshold(std::span<const float> values, float filter_percent) {
  return Filters(filter_percent) ? ThresholdFor(ExtremesOf(values), filter_percent) : 0.0F;
}

float FilterThresholdByPoint(std::span<const float> values, float filter_percent) {
  return Filters(filter_percent) ? ThresholdFor(ExtremesByPoint(values), filter_percent) : 0.0F;
}

ReversalCount ExtractReversals(std::span<const float> values, float threshold, std::span<float> out) {
  assert(out.size() >= values.size());
  const std::size_t first = FirstMove(values);
  if (first == values.size()) return {0, HistoryCondition::kConstant};
  out[0] = values[0];
  const std::size_t count = threshold <= 0.0F ? AllTurns(values, first, out.data())
                                              : FilteredTurns(values, first, threshold, out.data()).Run();
  return {count, HistoryCondition::kNone};
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
