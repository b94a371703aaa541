#include "fatigue/inner_cycles.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstdint>

// Let the points be a, b, c, d with |c - b| < |b - a| as rounded (then a lies strictly beyond c) and d beyond
// or at b. When the kernel has pushed b and closed what b closes, the point below b on its stack is a or lies
// beyond a: an open range there is larger, as rounded, than the one from a to b. So c closes nothing and does
// not move the base. Then d closes (b, c), for its range is at least as large, also as rounded. What b has
// closed or whether it has moved the base d would have done in its place, since d reaches at least as far and
// rounding never turns an order around. So after d the stack and the base are those of the history without b
// and c, and the cycles are the same, all of them counted while reading. Removing one such pair leaves the
// conditions of every other one true, and two pairs cannot share a point (c - b would be both larger and
// smaller than d - c).
namespace zentor {
namespace {

constexpr int kMostPasses = 8;
constexpr std::size_t kFewestPoints = 16;

bool RisesAndFallsInTurn(const LaneMasks& lanes, const float* z, std::size_t n) {
  std::uint64_t rising_before = z[1] > z[0] ? 0 : 1;  // bit 0: the opposite of the first step's direction
  for (std::size_t i = 0; i + 1 < n; i += kMaskBits) {
    const std::uint64_t steps = LowBits(n - 1 - i);
    const std::uint64_t rises = lanes.greater(z + i + 1, z + i);
    const std::uint64_t falls = lanes.greater(z + i, z + i + 1);
    const std::uint64_t turns = rises ^ (rises << 1U | rising_before);
    if (((rises ^ falls) & turns & steps) != steps) return false;
    rising_before = rises >> (kMaskBits - 1);
  }
  return true;
}

// Bit k: (start + k, start + k + 1) is an inner cycle of the n points.
std::uint64_t MaskOfInnerCycles(const LaneMasks& lanes, const InnerCycles& w, std::size_t start) {
  const float* const range = w.ranges.data() + start + 1;  // range[k]: from the point before start + k to it
  const float* const z = w.points.data() + start;
  const std::uint64_t smaller_than_before = lanes.greater(range, range + 1);
  const std::uint64_t passed = lanes.greater(range + 2, range + 1);
  const std::uint64_t matched = lanes.equal(z + 2, z);
  // The first point and the last two are not the start of a cycle.
  const std::uint64_t inside = LowBits(w.count > start + 2 ? w.count - start - 2 : 0) &
                               (start == 0 ? ~std::uint64_t{1} : ~std::uint64_t{0});
  return smaller_than_before & (passed | matched) & inside;
}

void FillRanges(InnerCycles& w) {
  const float* const z = w.points.data();
  float* const range = w.ranges.data();
  const std::size_t n = w.count;
#pragma omp simd
  for (std::size_t i = 1; i < n; ++i) range[i + 1] = std::fabs(z[i] - z[i - 1]);
}

// Moves inner cycles out of the points; the others close up. `take(mask, start)`: what becomes of the inner
// cycles in a mask; returns those that are to go.
template <typename Take>
void MoveOut(const LaneMasks& lanes, InnerCycles& w, Take take) {
  FillRanges(w);
  float* const z = w.points.data();
  std::size_t left = 0;
  std::uint64_t carried = 0;  // the last cycle's second point opens the next mask
  for (std::size_t start = 0; start < w.count; start += kMaskBits) {
    // Reads only points that were not moved yet.
    const std::uint64_t inner = take(MaskOfInnerCycles(lanes, w, start), start);
    const std::uint64_t stays = ~(inner | inner << 1U | carried) & LowBits(w.count - start);
    carried = inner >> (kMaskBits - 1);
    left += lanes.compress(z + start, stays, z + left);
  }
  w.count = left;
}

// Passes until few are found.
template <typename Take>
void MoveOutRepeatedly(std::span<const float> block, InnerCycles& w, Take take) {
  assert(block.size() <= kInnerBlock);
  const LaneMasks& lanes = BestLaneMasks();
  std::copy(block.begin(), block.end(), w.points.begin());
  w.count = block.size();
  w.cycles = 0;
  if (w.count < kFewestPoints || !RisesAndFallsInTurn(lanes, w.points.data(), w.count)) return;
  for (int pass = 0; pass < kMostPasses && w.count >= kFewestPoints; ++pass) {
    const std::size_t before = w.count;
    MoveOut(lanes, w, take);
    if (before - w.count < before / 16) return;
  }
}

}  // namespace

void TakeInnerCycles(std::span<const float> block, InnerCycles& w) {
  const LaneMasks& lanes = BestLaneMasks();
  const float* const z = w.points.data();
  MoveOutRepeatedly(block, w, [&, z](std::uint64_t inner, std::size_t start) {
    lanes.compress(z + start, inner, w.first.data() + w.cycles);
    w.cycles += lanes.compress(z + start + 1, inner, w.second.data() + w.cycles);
    return inner;
  });
}

// Let the points be a, b, c, d as above, say rising, with |c - b| below the threshold. While the candidate is
// a peak at or above b, a was within the threshold of it, so b and c are as well and change nothing. A peak
// below b moves on to b, c is ignored and d takes the place of b, as it would have without them. A valley is
// completed by b and by d alike or by neither, and c lies between a and b.
void DropSmallSwings(std::span<const float> block, float threshold, InnerCycles& w) {
  const LaneMasks& lanes = BestLaneMasks();
  const float* const z = w.points.data();
  MoveOutRepeatedly(block, w, [&, z](std::uint64_t inner, std::size_t start) {
    return inner & ~lanes.apart(z + start + 1, z + start, threshold);
  });
}

}  // namespace zentor
