#include "fatigue/extremes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

namespace zentor {
namespace {

// Four numbers side by side, four times over to keep the processor busy. Written out because a plain loop
// over a running maximum may not be reordered without giving up NaN, and stays scalar.
constexpr std::size_t kLanes = 4;
constexpr std::size_t kSets = 4;
using Lanes __attribute__((vector_size(kLanes * sizeof(float)))) = float;

Lanes LoadLanes(const float* p) {
  Lanes lanes;
  std::memcpy(&lanes, p, sizeof lanes);
  return lanes;
}

}  // namespace

Extremes ExtremesOf(std::span<const float> values) {
  if (values.empty()) return {};
  Extremes extremes = {values[0], values[0]};
  const auto take = [&extremes](float largest, float smallest) {
    extremes.largest = extremes.largest < largest ? largest : extremes.largest;
    extremes.smallest = smallest < extremes.smallest ? smallest : extremes.smallest;
  };
  std::array<Lanes, kSets> high;
  high.fill(Lanes{} + values[0]);
  std::array<Lanes, kSets> low = high;
  std::size_t i = 0;
  for (; i + kLanes * kSets <= values.size(); i += kLanes * kSets) {
    for (std::size_t set = 0; set < kSets; ++set) {
      const Lanes v = LoadLanes(values.data() + i + kLanes * set);
      high[set] = high[set] < v ? v : high[set];
      low[set] = v < low[set] ? v : low[set];
    }
  }
  for (std::size_t set = 0; set < kSets; ++set) {
    for (std::size_t k = 0; k < kLanes; ++k) take(high[set][k], low[set][k]);
  }
  for (; i < values.size(); ++i) take(values[i], values[i]);
  return extremes;
}

}  // namespace zentor
