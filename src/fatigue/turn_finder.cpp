#include "fatigue/turn_finder.h"

namespace zentor {

void TurnFinder::TakeMask(const float* v, std::size_t first) {
  const StepMasks steps = lanes_->steps(v + first);
  if (steps.stays != 0) return TakePoints(v, first, first + kMaskBits);
  const std::uint64_t turns = steps.rises ^ (steps.rises << 1U | static_cast<std::uint64_t>(rising_));
  rising_ = steps.rises >> (kMaskBits - 1) != 0;
  count_ += lanes_->compress(v + first - 1, turns, out_ + count_);
}

void TurnFinder::TakePoints(const float* v, std::size_t first, std::size_t last) {
  for (std::size_t i = first; i < last; ++i) {
    const bool up = v[i] > v[i - 1];
    const bool moved = v[i] != v[i - 1];
    out_[count_] = v[i - 1];
    count_ += static_cast<std::size_t>(moved & (up != rising_));
    rising_ = moved ? up : rising_;
  }
}

}  // namespace zentor
