// A matrix without counts whose bins are one apart.
#pragma once

#include <cstddef>

#include "fatigue/rainflow.h"

namespace zentor::test {

// Range centres 0, 1, 2, ..., mean centres from `smallest` on, every mean bin occupied.
inline RangeMeanMatrix UnitMatrix(int range_bins, int mean_bins, float smallest = 0.0F) {
  RangeMeanMatrix m;
  m.range_bins = range_bins;
  m.mean_bins = mean_bins;
  m.counts.assign(static_cast<std::size_t>(range_bins) * static_cast<std::size_t>(mean_bins), 0);
  for (int i = 0; i < range_bins; ++i) m.range_centres.push_back(static_cast<float>(i));
  for (int j = 0; j < mean_bins; ++j) m.mean_centres.push_back(smallest + static_cast<float>(j));
  m.first_mean = 1;
  m.last_mean = mean_bins;
  return m;
}

}  // namespace zentor::test
