// Flags of many items as bits of a word, to visit the items that have theirs set without a branch per item.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zentor {

inline constexpr std::size_t kMaskBits = 64;

// Bit k of the result is flags[k], k = 0 .. 63. REQUIRES: every flag is 0 or 1.
inline std::uint64_t MaskOfFlags(const std::uint8_t* flags) {
  static_assert(std::endian::native == std::endian::little);
  // Moves bit 0 of byte k to bit 56 + k; no two products share a bit, so nothing carries.
  constexpr std::uint64_t kGather = 0x0102040810204080U;
  std::uint64_t mask = 0;
  for (std::size_t group = 0; group < 8; ++group) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, flags + 8 * group, sizeof bytes);
    mask |= ((bytes * kGather) >> 56U) << (8 * group);
  }
  return mask;
}

// Calls visit(k) for every set bit k, in rising order.
template <typename Visit>
void ForEachBit(std::uint64_t mask, Visit visit) {
  for (; mask != 0; mask &= mask - 1) visit(static_cast<std::size_t>(std::countr_zero(mask)));
}

}  // namespace zentor
