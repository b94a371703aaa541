// The one place where bytes become numbers: little-endian 32-bit and 64-bit words on every machine.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zentor {

static_assert(std::endian::native == std::endian::little, "a big-endian machine needs byte swaps here");

inline std::int32_t LoadInt(const std::byte* p) {
  std::int32_t value = 0;
  std::memcpy(&value, p, sizeof value);
  return value;
}
inline std::int64_t LoadInt64(const std::byte* p) {
  std::int64_t value = 0;
  std::memcpy(&value, p, sizeof value);
  return value;
}
inline float LoadReal(const std::byte* p) { return std::bit_cast<float>(LoadInt(p)); }
inline void StoreInt(std::byte* p, std::int32_t value) { std::memcpy(p, &value, sizeof value); }
inline void StoreInt64(std::byte* p, std::int64_t value) { std::memcpy(p, &value, sizeof value); }
inline void StoreReal(std::byte* p, float value) { StoreInt(p, std::bit_cast<std::int32_t>(value)); }

}  // namespace zentor
