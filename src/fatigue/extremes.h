// Largest and smallest value of a history.
#pragma once

#include <span>

namespace zentor {

struct Extremes {
  float largest = 0.0F, smallest = 0.0F;
};

// Both 0 for no values. A NaN is passed over unless it is the first value.
Extremes ExtremesOf(std::span<const float> values);

}  // namespace zentor
