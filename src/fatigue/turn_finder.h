// The turns of a history: a point is one when the direction changes behind it. Equal neighbours keep the
// direction.
#pragma once

#include <cstddef>

#include "fatigue/lane_masks.h"

namespace zentor {

// Goes through a history from its second point on, 64 steps at a time, and writes the turns found.
class TurnFinder {
 public:
  // `out` gets the turns behind the `count` values that it holds already; `rising`: the direction so far.
  TurnFinder(bool rising, float* out, std::size_t count) : rising_(rising), out_(out), count_(count) {}

  TurnFinder() = default;

  // The turns among v[first - 1] .. v[last - 2].
  // REQUIRES: first >= 1; TakeMask: last = first + 64, and room for 64 more values.
  void TakeMask(const float* v, std::size_t first);
  void TakePoints(const float* v, std::size_t first, std::size_t last);

  std::size_t count() const { return count_; }
  void Clear() { count_ = 0; }  // `out` was used up

 private:
  bool rising_ = true;
  float* out_ = nullptr;
  std::size_t count_ = 0;
  const LaneMasks* lanes_ = &BestLaneMasks();
};

}  // namespace zentor
