// The filter of small swings, for points that are known to turn and for whole stretches that hold none to
// keep.
#pragma once

#include <cmath>
#include <cstddef>
#include <span>

#include "fatigue/lane_masks.h"

namespace zentor {

// Between two turns the history runs one way, so it passes a candidate, or turns back by the threshold,
// furthest at the turn: filtering the turns gives what filtering all points gives, and so does any selection
// of points that holds the turns.
class TurnFilter {
 public:
  // `candidate`: the first point that differs from the first one. Reversals go to out[1] onwards (out[0] is
  // the first point); at most one per point taken. REQUIRES: threshold > 0.
  TurnFilter(float candidate, bool rising, float threshold, float* out)
      : candidate_(candidate), rising_(rising), threshold_(threshold), out_(out) {}

  // Any points of the history, in order.
  void TakePoints(std::span<const float> points);
  // n turns, up and down by turns, the first one as the history before it had it.
  // REQUIRES: z[-1] and z[n] .. z[n + 63] are readable.
  void TakeTurns(const float* z, std::size_t n);
  // Whether p[0] .. p[63] complete no reversal; if so they are taken. A NaN among them is passed over.
  bool TakesWhole(const float* p);

  // Appends the last candidate and returns the number of reversals.
  std::size_t Finish();

 private:
  // Returns whether the point is the candidate now.
  bool Take(float v) {
    if (rising_ ? v > candidate_ : v < candidate_) {
      candidate_ = v;
      return true;
    }
    if (v == candidate_) return true;
    if (std::fabs(v - candidate_) < threshold_) return false;
    out_[count_++] = candidate_;
    candidate_ = v;
    rising_ = !rising_;
    return true;
  }

  float candidate_;
  bool rising_;
  float threshold_;
  float* out_;
  std::size_t count_ = 1;
  const LaneMasks& lanes_ = BestLaneMasks();
};

}  // namespace zentor
