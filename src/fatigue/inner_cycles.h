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

namespace zentor {

inline constexpr std::size_t kInnerBlock = 2048;  // points of a block; stays in the first-level cache

// Workspace of a block, about 40 KB.
struct InnerCycles {
  std::array<float, kInnerBlock> points;         // in: the block; out: what is left of it
  std::size_t count = 0;                         // of points
  std::array<float, kInnerBlock> first, second;  // the cycles taken out
  std::size_t cycles = 0;
};

// Copies `block` into the workspace and takes inner cycles out until few are found. A block whose points do
// not rise and fall in turn (equal neighbours, NaN) is left whole. The first point and the last two always
// stay. REQUIRES: block.size() <= kInnerBlock.
void TakeInnerCycles(std::span<const float> block, InnerCycles& work);

}  // namespace zentor
