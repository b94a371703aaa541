#include "fatigue/lane_masks.h"

#include <array>

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#define ZENTOR_X86_LANES 1
#endif

namespace zentor {
namespace {

// A few bits are visited one by one: in smooth histories nearly all masks are empty, and that is foreseen.
constexpr int kFewBits = 3;

std::size_t CompressBitByBit(const float* from, std::uint64_t mask, float* to) {
  std::size_t count = 0;
  for (; mask != 0; mask &= mask - 1) to[count++] = from[std::countr_zero(mask)];
  return count;
}

#ifdef ZENTOR_X86_LANES

// Four numbers at a time: every x86-64 processor.
std::uint64_t GreaterBaseline(const float* a, const float* b) {
  std::uint64_t mask = 0;
  for (std::size_t k = 0; k < kMaskBits; k += 4) {
    const int four = _mm_movemask_ps(_mm_cmpgt_ps(_mm_loadu_ps(a + k), _mm_loadu_ps(b + k)));
    mask |= static_cast<std::uint64_t>(static_cast<unsigned>(four)) << k;
  }
  return mask;
}

std::uint64_t EqualBaseline(const float* a, const float* b) {
  std::uint64_t mask = 0;
  for (std::size_t k = 0; k < kMaskBits; k += 4) {
    const int four = _mm_movemask_ps(_mm_cmpeq_ps(_mm_loadu_ps(a + k), _mm_loadu_ps(b + k)));
    mask |= static_cast<std::uint64_t>(static_cast<unsigned>(four)) << k;
  }
  return mask;
}

// Eight numbers at a time: processors with AVX2.
__attribute__((target("avx2"))) std::uint64_t GreaterAvx2(const float* a, const float* b) {
  std::uint64_t mask = 0;
  for (std::size_t k = 0; k < kMaskBits; k += 8) {
    const int eight =
        _mm256_movemask_ps(_mm256_cmp_ps(_mm256_loadu_ps(a + k), _mm256_loadu_ps(b + k), _CMP_GT_OQ));
    mask |= static_cast<std::uint64_t>(static_cast<unsigned>(eight)) << k;
  }
  return mask;
}

__attribute__((target("avx2"))) std::uint64_t EqualAvx2(const float* a, const float* b) {
  std::uint64_t mask = 0;
  for (std::size_t k = 0; k < kMaskBits; k += 8) {
    const int eight =
        _mm256_movemask_ps(_mm256_cmp_ps(_mm256_loadu_ps(a + k), _mm256_loadu_ps(b + k), _CMP_EQ_OQ));
    mask |= static_cast<std::uint64_t>(static_cast<unsigned>(eight)) << k;
  }
  return mask;
}

// Per 8-bit mask the positions of its set bits, one per byte, lowest first.
constexpr std::array<std::uint64_t, 256> BitPositions() {
  std::array<std::uint64_t, 256> table{};
  for (unsigned mask = 0; mask < table.size(); ++mask) {
    unsigned place = 0;
    for (unsigned bit = 0; bit < 8; ++bit) {
      if ((mask >> bit & 1U) != 0) table[mask] |= std::uint64_t{bit} << (8 * place++);
    }
  }
  return table;
}
constexpr std::array<std::uint64_t, 256> kBitPositions = BitPositions();

// The marked of eight numbers move to the front, all eight are stored, the next eight go behind the marked
// ones.
__attribute__((target("avx2,popcnt"))) std::size_t CompressAvx2(const float* from, std::uint64_t mask,
                                                                float* to) {
  if (_mm_popcnt_u64(mask) <= kFewBits) return CompressBitByBit(from, mask, to);
  std::size_t count = 0;
  for (std::size_t k = 0; k < kMaskBits; k += 8, mask >>= 8U) {
    const auto marked = static_cast<std::size_t>(mask & 0xffU);
    const __m256i order =
        _mm256_cvtepu8_epi32(_mm_cvtsi64_si128(static_cast<long long>(kBitPositions[marked])));
    _mm256_storeu_ps(to + count, _mm256_permutevar8x32_ps(_mm256_loadu_ps(from + k), order));
    count += static_cast<std::size_t>(_mm_popcnt_u64(marked));
  }
  return count;
}

constexpr LaneMasks kPortable = {GreaterBaseline, EqualBaseline, CompressBitByBit};
constexpr LaneMasks kWide = {GreaterAvx2, EqualAvx2, CompressAvx2};

bool RunsWideForm() { return __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("popcnt") != 0; }

#else

template <typename Holds>
std::uint64_t MaskWhere(const float* a, const float* b, Holds holds) {
  std::uint64_t mask = 0;
  for (std::size_t k = 0; k < kMaskBits; ++k) mask |= static_cast<std::uint64_t>(holds(a[k], b[k])) << k;
  return mask;
}

constexpr LaneMasks kPortable = {
    [](const float* a, const float* b) { return MaskWhere(a, b, [](float x, float y) { return x > y; }); },
    [](const float* a, const float* b) { return MaskWhere(a, b, [](float x, float y) { return x == y; }); },
    CompressBitByBit};
constexpr LaneMasks kWide = kPortable;

bool RunsWideForm() { return false; }

#endif

}  // namespace

const LaneMasks& BestLaneMasks() {
  static const bool wide = RunsWideForm();
  return wide ? kWide : kPortable;
}

const LaneMasks& PortableLaneMasks() { return kPortable; }

}  // namespace zentor
