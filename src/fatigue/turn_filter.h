// The filter of small swings, for points that are known to turn and for whole stretches that hold none to
// keep.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

#include "fatigue/lane_masks.h"

namespace zentor {

// Between two turns the history runs one way, so it passes a candidate, or turns back by the threshold,
// furthest at the turn: filtering the turns gives what filtering all points gives, and so does any selection
// of points that holds the turns.
class TurnFilter {
 public:
  // `candidate`: the first point that differs from the first one. `out` gets the reversals behind the `count`
  // values that it holds already, at most one per point taken. REQUIRES: threshold > 0.
  TurnFilter(float candidate, bool rising, float threshold, float* out, std::size_t count)
      : candidate_(candidate), rising_(rising), threshold_(threshold), out_(out), count_(count) {}
  TurnFilter() = default;

  // Any points of the history, in order.
  void TakePoints(std::span<const float> points);
  // Turns in a row, each of them a turn among the points taken before as well.
  // REQUIRES: 64 more values are readable, and there is room for 64 more reversals.
  void TakeTurns(const float* turns, std::size_t count);
  // Whether p[0] .. p[63] complete no reversal; if so they are taken. A NaN among them is passed over.
  bool TakesWhole(const float* p);

  std::size_t count() const { return count_; }
  void Finish() { out_[count_++] = candidate_; }  // appends the last candidate
  void Clear() { count_ = 0; }                    // `out` was used up

 private:
  // What a point is to the candidate.
  enum class Step : int { kIgnored, kFollows, kCompletes };
  Step StepTo(float v) const {
    const bool onwards = rising_ ? v > candidate_ : v < candidate_;
    if (onwards || v == candidate_) return Step::kFollows;
    return std::fabs(v - candidate_) < threshold_ ? Step::kIgnored : Step::kCompletes;
  }
  std::uint64_t MarkReversals(const float* z, std::size_t size);

  static constexpr std::size_t kElsewhere = 2 * kMaskBits;

  float candidate_ = 0.0F;
  bool rising_ = true;
  float threshold_ = 0.0F;
  float* out_ = nullptr;
  std::size_t count_ = 0;
  std::size_t place_ = kElsewhere;  // the candidate is z[place - 1] of the turns being marked
  const LaneMasks* lanes_ = &BestLaneMasks();
};

}  // namespace zentor
