// Largest and smallest value of a history.
#pragma once

#include <span>

namespace zentor {

struct Extremes {
  float largest = 0.0F, smallest = 0.0F;
};

// Both 0 for no values. A NaN is passed over unless it is the first value; a zero is positive.
Extremes ExtremesOf(std::span<const float> values);

// The same, point by point: what ExtremesOf means, its reference in tests and bench.
Extremes ExtremesByPoint(std::span<const float> values);

}  // namespace zentor
