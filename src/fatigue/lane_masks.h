// Comparisons of 64 numbers at once as the bits of a word, and compaction by such a word: what takes the
// unforeseeable branches out of the search for turning points and inner cycles. There is a form for any
// processor and a wider one; both compare and move numbers without changing them, so they give the same bits
// everywhere.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

namespace zentor {

inline constexpr std::size_t kMaskBits = 64;

struct LaneMasks {
  // Bit k of the result, k = 0 .. 63: a[k] > b[k], or a[k] == b[k]; false for a NaN.
  std::uint64_t (*greater)(const float* a, const float* b);
  std::uint64_t (*equal)(const float* a, const float* b);
  // Copies from[k] for every set bit k, in rising order, to `to` and returns their number. May write up to 7
  // places behind the last copied one, but none at or behind to[64]. `to` may be an earlier place (or the
  // same) of the same array.
  std::size_t (*compress)(const float* from, std::uint64_t mask, float* to);
};

// The fastest form that this processor runs.
const LaneMasks& BestLaneMasks();
// The form for any processor.
const LaneMasks& PortableLaneMasks();

// The lowest `count` bits, all 64 from there on.
inline std::uint64_t LowBits(std::size_t count) {
  return count >= kMaskBits ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

}  // namespace zentor
