// The reversals of a history, read block by block: nothing as long as the history is kept.
#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "fatigue/inner_cycles.h"
#include "fatigue/reversals.h"
#include "fatigue/turn_filter.h"
#include "fatigue/turn_finder.h"

namespace zentor {

// Without a filter every turn is a reversal. With one, turns are filtered a buffer at a time, while they are
// in the first-level cache; stretches of 64 points are passed over as a whole where that succeeds for most of
// them, with a try now and then elsewhere.
class ReversalReader {
 public:
  // REQUIRES: the values stay until the last block was read. kConstant when no value differs from the first.
  HistoryCondition Start(std::span<const float> values, float threshold);

  // The next 2 .. kInnerBlock reversals (the last block may be shorter unless it is the first), none at the
  // end. Valid until the next call.
  std::span<const float> Next();
  // The values behind the blocks read.
  std::span<const float> Rest() const { return finished_ ? values_.first(0) : values_.subspan(next_ - 1); }

 private:
  static constexpr std::size_t kTurns = 512;
  static constexpr std::size_t kFullTurns = kInnerBlock - kMaskBits - 1;
  static constexpr std::size_t kFullFiltered = kInnerBlock - kTurns - 3 * kMaskBits;
  static constexpr int kMostTrust = 16, kLossOfTrust = 4;
  static constexpr int kPause = 32;

  bool HasStretch() const { return next_ + kMaskBits <= values_.size(); }
  std::size_t ReadTurns();
  std::size_t ReadFiltered();
  void TakeStretch();
  bool PassesOver();
  void FilterTurns();

  std::span<const float> values_;
  float threshold_ = 0.0F;
  std::size_t next_ = 0;
  bool finished_ = true;
  bool passed_over_ = false;   // the stretch before was
  bool many_ignored_ = false;  // of the turns filtered last
  int trust_ = 0;              // that the next stretch will be passed over
  int wait_ = 0;               // stretches before the next try
  TurnFinder finder_;
  TurnFilter filter_;
  std::array<float, kInnerBlock + kMaskBits> reversals_{};
  std::array<float, kTurns + 3 * kMaskBits> turns_{};
  InnerCycles inner_;
};

}  // namespace zentor
