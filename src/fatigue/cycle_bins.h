// From a cycle to its bin in a range-mean matrix, one by one and many at a time.
#pragma once

#include <cmath>
#include <cstdint>
#include <span>

#include "fatigue/inner_cycles.h"
#include "stress/vector_forms.h"

namespace zentor {

// Geometry of the bins; all arithmetic is single precision.
struct CycleBins {
  float range_origin = 0.0F, range_width = 0.0F;  // lower edge of the first bin, width of a bin
  float mean_origin = 0.0F, mean_width = 0.0F;
  int range_bins = 0, mean_bins = 0;

  // Index of the cycle between a and b, range bin fastest.
  ZENTOR_LANES int IndexOf(float a, float b) const {
    const int i = BinOf((std::fabs(b - a) - range_origin) / range_width, range_bins);
    const int j = BinOf(((a + b) / 2.0F - mean_origin) / mean_width, mean_bins);
    return j * range_bins + i;
  }

 private:
  // Bin (from 0) of a position in widths from the lower edge of the first, kept inside. Rounding can push a
  // cycle past the last edge, and spans near the largest float give infinities and NaN; all of these end
  // inside.
  ZENTOR_LANES static int BinOf(float position, int bins) {
    const auto last = static_cast<float>(bins - 1);
    const float above = position > 0.0F ? position : 0.0F;
    return static_cast<int>(above < last ? above : last);
  }
};

// Adds the cycles to the counts of their bins; shape of counts as IndexOf says.
void CountInnerCycles(const CycleBins& bins, const InnerCycles& inner, std::span<std::int32_t> counts);

}  // namespace zentor
