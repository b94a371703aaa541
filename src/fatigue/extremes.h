// Largest and smallest value of a history.
#pragma once

#include <span>

namespace zentor {

struct Extremes {
  float largest = 0.0F, smallest = 0.0F;
  bool operator==(const Extremes&) const = default;
};

// Of what two of them came from.
inline Extremes Union(const Extremes& a, const Extremes& b) {
  return {b.largest > a.largest ? b.largest : a.largest, b.smallest < a.smallest ? b.smallest : a.smallest};
}

// Both 0 for no values. A NaN is passed over unless it is the first value; a zero is positive.
Extremes ExtremesOf(std::span<const float> values);

// The same, point by point: what ExtremesOf means, its reference in tests and bench.
Extremes ExtremesByPoint(std::span<const float> values);

}  // namespace zentor
