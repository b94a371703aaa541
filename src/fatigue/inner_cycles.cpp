#include "fatigue/inner_cycles.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstdint>

#include "fatigue/bit_masks.h"

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
constexpr std::size_t kPadded = kInnerBlock + kMaskBits;

bool RisesAndFallsInTurn(const float* z, std::size_t n) {
  std::uint32_t broken = 0;
  for (std::size_t i = 0; i + 2 < n; ++i) {
    const bool peak = z[i] < z[i + 1] && z[i + 1] > z[i + 2];
    const bool valley = z[i] > z[i + 1] && z[i + 1] < z[i + 2];
    broken |= static_cast<std::uint32_t>(!(peak || valley));
  }
  return broken == 0;
}

// flags[i] = 1 when (i, i + 1) is an inner cycle. Entries up to the next multiple of 64 behind n are 0.
void FlagInnerCycles(const float* z, std::size_t n, std::array<std::uint8_t, kPadded>& flags) {
  std::array<float, kInnerBlock> range;
  for (std::size_t i = 0; i + 1 < n; ++i) range[i] = std::fabs(z[i + 1] - z[i]);
  flags[0] = 0;
  for (std::size_t i = 1; i + 2 < n; ++i) {
    const auto smaller_than_before = static_cast<std::uint8_t>(range[i] < range[i - 1]);
    const auto passed = static_cast<std::uint8_t>(range[i] < range[i + 1]);
    const auto matched = static_cast<std::uint8_t>(z[i + 2] == z[i]);
    flags[i] = static_cast<std::uint8_t>(smaller_than_before & (passed | matched));
  }
  std::fill(flags.begin() + static_cast<std::ptrdiff_t>(n) - 2,
            flags.begin() + static_cast<std::ptrdiff_t>(n + kMaskBits - 1) / kMaskBits * kMaskBits,
            std::uint8_t{0});
}

// Moves the flagged cycles out of the points; the others close up.
void MoveOut(const std::array<std::uint8_t, kPadded>& flags, InnerCycles& w) {
  const std::size_t n = w.count;
  float* const z = w.points.data();
  std::size_t left = 0;
  std::size_t cycles = w.cycles;
  std::uint64_t carried = 0;  // the last cycle's second point opens the next mask
  for (std::size_t start = 0; start < n; start += kMaskBits) {
    const std::uint64_t inner = MaskOfFlags(flags.data() + start);
    const std::size_t size = std::min(kMaskBits, n - start);
    const std::uint64_t present = size == kMaskBits ? ~std::uint64_t{0} : (std::uint64_t{1} << size) - 1;
    const std::uint64_t stays = ~(inner | inner << 1U | carried) & present;
    carried = inner >> (kMaskBits - 1);
    ForEachBit(inner, [&](std::size_t k) {
      w.first[cycles] = z[start + k];
      w.second[cycles] = z[start + k + 1];
      ++cycles;
    });
    ForEachBit(stays, [&](std::size_t k) { z[left++] = z[start + k]; });
  }
  w.count = left;
  w.cycles = cycles;
}

}  // namespace

void TakeInnerCycles(std::span<const float> block, InnerCycles& w) {
  assert(block.size() <= kInnerBlock);
  std::copy(block.begin(), block.end(), w.points.begin());
  w.count = block.size();
  w.cycles = 0;
  if (!RisesAndFallsInTurn(w.points.data(), w.count)) return;
  std::array<std::uint8_t, kPadded> flags;
  for (int pass = 0; pass < kMostPasses && w.count >= kFewestPoints; ++pass) {
    const std::size_t before = w.count;
    FlagInnerCycles(w.points.data(), w.count, flags);
    MoveOut(flags, w);
    if (before - w.count < before / 16) return;
  }
}

}  // namespace zentor
