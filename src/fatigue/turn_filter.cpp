#include "fatigue/turn_filter.h"

#include <algorithm>
#include <bit>

namespace zentor {

void TurnFilter::TakePoints(std::span<const float> points) {
  for (const float v : points) Take(v);
}

// While the candidate is the turn just taken, the next turn completes it exactly when their distance reaches
// the threshold, whatever came before: all these distances are compared at once, and a run of reversals is
// copied as it is.
void TurnFilter::TakeTurns(const float* z, std::size_t n) {
  bool in_step = false;  // z[k - 1] is the candidate
  for (std::size_t start = 0; start < n; start += kMaskBits) {
    const std::size_t size = std::min(kMaskBits, n - start);
    const std::uint64_t reaches = lanes_.apart(z + start, z + start - 1, threshold_) & LowBits(size);
    for (std::size_t k = 0; k < size;) {
      if (in_step) {
        const auto run = static_cast<std::size_t>(std::countr_one(reaches >> k));
        if (run != 0) {
          std::copy_n(z + start + k - 1, run, out_ + count_);
          count_ += run;
          k += run;
          candidate_ = z[start + k - 1];
          rising_ = rising_ != (run % 2 != 0);
          if (k == size) break;
        }
      }
      in_step = Take(z[start + k]);
      ++k;
    }
  }
}

// No point turns back from an extreme that is reached on the way by more than the farthest point does from
// the farthest extreme, also as rounded.
bool TurnFilter::TakesWhole(const float* p) {
  const Extremes extremes = lanes_.extremes(p, kMaskBits, {p[0], p[0]});
  const float onwards = rising_ ? extremes.largest : extremes.smallest;
  const float back = rising_ ? extremes.smallest : extremes.largest;
  const bool passes = rising_ ? onwards > candidate_ : onwards < candidate_;
  const float farthest = passes ? onwards : candidate_;
  if (!(std::fabs(back - farthest) < threshold_)) return false;
  if (passes && onwards == 0.0F) return false;  // which of the zeros it was is not known
  candidate_ = farthest;
  return true;
}

std::size_t TurnFilter::Finish() {
  out_[count_++] = candidate_;
  return count_;
}

}  // namespace zentor
