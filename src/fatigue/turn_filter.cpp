#include "fatigue/turn_filter.h"

#include <algorithm>
#include <bit>

namespace zentor {

void TurnFilter::TakePoints(std::span<const float> points) {
  for (const float v : points) {
    const Step step = StepTo(v);
    if (step == Step::kIgnored) continue;
    if (step == Step::kCompletes) {
      out_[count_++] = candidate_;
      rising_ = !rising_;
    }
    candidate_ = v;
  }
}

// While the candidate is the turn just taken, the next turn completes it exactly when their distance reaches
// the threshold, whatever came before: all these distances are compared at once, and runs of reversals are
// only marked. Bit k of the marks is z[k - 1].
std::uint64_t TurnFilter::MarkReversals(const float* z, std::size_t size) {
  const std::uint64_t reaches = lanes_->apart(z, z - 1, threshold_) & LowBits(size);
  std::uint64_t marks = 0;
  for (std::size_t k = 0; k < size;) {
    if (place_ == k) {
      const auto run = static_cast<std::size_t>(std::countr_one(reaches >> k));
      marks |= LowBits(run) << k;
      k += run;
      place_ = k;
      candidate_ = z[k - 1];
      rising_ = rising_ != (run % 2 != 0);
      if (k == size) break;
    }
    const float v = z[k++];
    const Step step = StepTo(v);
    if (step == Step::kIgnored) continue;
    if (step == Step::kCompletes) {
      if (place_ < kMaskBits) {
        marks |= std::uint64_t{1} << place_;
      } else {
        out_[count_++] = candidate_;
      }
      rising_ = !rising_;
    }
    candidate_ = v;
    place_ = k;
  }
  return marks;
}

void TurnFilter::TakeTurns(const float* turns, std::size_t count) {
  if (count == 0) return;
  TakePoints(std::span(turns, 1));
  place_ = kElsewhere;
  for (std::size_t start = 1; start < count; start += kMaskBits) {
    const std::size_t size = std::min(kMaskBits, count - start);
    const std::uint64_t marks = MarkReversals(turns + start, size);
    place_ = place_ == kMaskBits ? 0 : kElsewhere;
    count_ += lanes_->compress(turns + start - 1, marks, out_ + count_);
  }
}

// No point turns back from an extreme that is reached on the way by more than the farthest point does from
// the farthest extreme, also as rounded.
bool TurnFilter::TakesWhole(const float* p) {
  const Extremes extremes = lanes_->extremes(p, kMaskBits, {p[0], p[0]});
  const float onwards = rising_ ? extremes.largest : extremes.smallest;
  const float back = rising_ ? extremes.smallest : extremes.largest;
  const bool passes = rising_ ? onwards > candidate_ : onwards < candidate_;
  const float farthest = passes ? onwards : candidate_;
  if (!(std::fabs(back - farthest) < threshold_)) return false;
  if (passes && onwards == 0.0F) return false;  // which of the zeros it was is not known
  candidate_ = farthest;
  return true;
}

}  // namespace zentor
