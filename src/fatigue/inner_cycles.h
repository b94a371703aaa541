// Cycles of a history that lie inside their neighbourhood, found side by side instead of one after the other.
//
// A range between two neighbouring points that is smaller than the range before it, and is passed or matched
// by the point behind it, is closed by that point whatever came before or comes later: counting it and taking
// both of its points out leaves the kernel of rainflow.h in the same state at every other point. Why this
// holds to the last bit, rounding of the kernel's differences included, is said in inner_cycles.cpp.
#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "fatigue/lane_masks.h"

namespace zentor {

inline constexpr std::size_t kInnerBlock = 2048;  // points of a block; its workspace stays in the caches

// Workspace of a block, about 34 KB. Entries behind the counts have no meaning; masks read up to a word past
// them.
struct InnerCycles {
  static constexpr std::size_t kPadded = kInnerBlock + kMaskBits + 2;
  std::array<float, kPadded> points{};           // in: the block; out: what is left of it
  std::size_t count = 0;                         // of points
  std::array<float, kPadded> first{}, second{};  // the cycles taken out
  std::size_t cycles = 0;
  std::array<float, kPadded> ranges{};  // used inside
};

// Copies `block` into the workspace and takes inner cycles out until few are found. A block whose points do
// not rise and fall in turn (equal neighbours, NaN) is left whole. The first point and the last two always
// stay. REQUIRES: block.size() <= kInnerBlock.
void TakeInnerCycles(std::span<const float> block, InnerCycles& work);

// The same for the filter of small swings, which such a range of less than the threshold does not concern: it
// is taken out and not kept.
void DropSmallSwings(std::span<const float> block, float threshold, InnerCycles& work);

}  // namespace zentor
