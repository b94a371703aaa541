#include "fatigue/extremes.h"

#include <cstddef>

#include "fatigue/lane_masks.h"

namespace zentor {
namespace {

Extremes Take(std::span<const float> values, Extremes extremes) {
  for (const float v : values) {
    extremes.largest = v > extremes.largest ? v : extremes.largest;
    extremes.smallest = v < extremes.smallest ? v : extremes.smallest;
  }
  return extremes;
}

Extremes WithPositiveZeros(Extremes extremes) { return {extremes.largest + 0.0F, extremes.smallest + 0.0F}; }

}  // namespace

Extremes ExtremesOf(std::span<const float> values) {
  if (values.empty()) return {};
  const std::size_t whole = values.size() / kMaskBits * kMaskBits;
  const Extremes start = BestLaneMasks().extremes(values.data(), whole, {values.front(), values.front()});
  return WithPositiveZeros(Take(values.subspan(whole), start));
}

Extremes ExtremesByPoint(std::span<const float> values) {
  if (values.empty()) return {};
  return WithPositiveZeros(Take(values, {values.front(), values.front()}));
}

}  // namespace zentor
