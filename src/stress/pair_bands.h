// The pairs of a node in order of their stress, sorted only as far as somebody looks.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "stress/usage_plan.h"

namespace zentor {

// Distributes the pairs over bands of stress and sorts a band when it is reached. Largest value first, equal
// values as formed. The order is that of the values at Begin; they must be finite.
class PairBands {
 public:
  void Begin(const UsagePlan& plan, const double* values);
  // Place of the pair with rank i, 0 .. pairs - 1. Ranks must be asked for in rising order.
  std::int32_t& operator[](std::size_t i) {
    while (i >= sorted_) SortNextBand();
    return order_[i];
  }

 private:
  static constexpr std::size_t kMostBands = 512;

  void SortNextBand();

  const UsagePlan* plan_ = nullptr;
  const double* values_ = nullptr;
  std::size_t sorted_ = 0;  // ranks
  std::size_t band_ = 0;    // the first one that is not sorted
  std::array<std::uint16_t, kPairPlaces> band_of_;
  std::array<std::uint16_t, kMostBands> end_;
  std::array<std::int32_t, kMaxPairs> order_;
};

}  // namespace zentor
