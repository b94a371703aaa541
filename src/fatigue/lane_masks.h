// Comparisons of 64 numbers at once as the bits of a word, compaction by such a word, and extremes: what
// takes the unforeseeable branches out of the search for turning points and inner cycles. There is a form for
// any processor and there are wider ones; each number is compared, subtracted once or moved, none is summed,
// so all forms give the same bits.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

#include "fatigue/extremes.h"

namespace zentor {

inline constexpr std::size_t kMaskBits = 64;

// Steps between neighbours: bit k tells of p[k] beside p[k - 1].
struct StepMasks {
  std::uint64_t rises = 0;
  std::uint64_t stays = 0;  // equal
};

struct LaneMasks {
  // Bit k of the result, k = 0 .. 63: a[k] > b[k], or a[k] == b[k]; false for a NaN.
  std::uint64_t (*greater)(const float* a, const float* b);
  std::uint64_t (*equal)(const float* a, const float* b);
  // Of p[-1] .. p[63].
  StepMasks (*steps)(const float* p);
  // Bit k: not |a[k] - b[k]| < limit; true for a NaN.
  std::uint64_t (*apart)(const float* a, const float* b, float limit);
  // Copies from[k] for every set bit k, in rising order, to `to` and returns their number. May write up to 15
  // places behind the last copied one, but none at or behind to[64]. `to` may be an earlier place (or the
  // same) of the same array.
  std::size_t (*compress)(const float* from, std::uint64_t mask, float* to);
  // Of v[0] .. v[n - 1] and `start`; n is a multiple of 64. A NaN among v is passed over; of zeros either may
  // come out.
  Extremes (*extremes)(const float* v, std::size_t n, Extremes start);
};

// The fastest form that this processor runs.
const LaneMasks& BestLaneMasks();
// Every form that it runs, the one for any processor first.
std::span<const LaneMasks> RunnableLaneMasks();

// The lowest `count` bits, all 64 from there on.
inline std::uint64_t LowBits(std::size_t count) {
  return count >= kMaskBits ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

}  // namespace zentor
