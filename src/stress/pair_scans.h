// Searches through the alternating stresses of a node's pairs, for EvaluateUsage. The arrays are padded to
// whole vectors with values of -infinity.
#pragma once

#include <cstddef>
#include <cstdint>

#include "stress/vector_forms.h"

namespace zentor {

// Scans take blocks of so many places.
inline constexpr std::size_t kScanBlock = 16;
inline constexpr double kLargestDecided = 1e300;

struct NearPairs {
  std::size_t count = 0;
  bool same_event = false;
};

struct PairScans {
  // Whether a value is NaN or beyond kLargestDecided in magnitude, -infinity excepted.
  bool (*any_undecided)(const double* values, std::size_t places);
  // Largest value of the pairs none of whose events is among the bits of `dead`; -infinity without any.
  double (*largest_alive)(const double* values, const std::uint64_t* events, std::uint64_t dead,
                          std::size_t places);
  // Pairs none of whose events is among `dead` with a value of `low` or more: their places in rising order go
  // to `found`. And whether any pair of one event has a value in group_low .. group_high.
  NearPairs (*near)(const double* values, const std::uint64_t* events, std::uint64_t dead, double low,
                    double group_low, double group_high, std::size_t places, std::int32_t* found);
};
const PairScans& ScansOf(VectorForm form);

}  // namespace zentor
