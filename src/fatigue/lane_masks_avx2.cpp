#include "fatigue/lane_masks_wide.h"

#ifdef ZENTOR_X86_WIDE

#include <immintrin.h>

#include <array>

#define ZENTOR_AVX2 __attribute__((target("avx2,popcnt")))

namespace zentor {
namespace {

// A few bits are visited one by one: in smooth histories nearly all masks are empty, and that is foreseen.
constexpr int kFewBits = 3;
constexpr std::size_t kLanes = 8;

ZENTOR_AVX2 std::uint64_t BitsAt(__m256 condition, std::size_t k) {
  return static_cast<std::uint64_t>(static_cast<unsigned>(_mm256_movemask_ps(condition))) << k;
}

ZENTOR_AVX2 std::uint64_t Greater(const float* a, const float* b) {
  std::uint64_t mask = 0;
  for (std::size_t k = 0; k < kMaskBits; k += kLanes) {
    mask |= BitsAt(_mm256_cmp_ps(_mm256_loadu_ps(a + k), _mm256_loadu_ps(b + k), _CMP_GT_OQ), k);
  }
  return mask;
}

ZENTOR_AVX2 std::uint64_t Equal(const float* a, const float* b) {
  std::uint64_t mask = 0;
  for (std::size_t k = 0; k < kMaskBits; k += kLanes) {
    mask |= BitsAt(_mm256_cmp_ps(_mm256_loadu_ps(a + k), _mm256_loadu_ps(b + k), _CMP_EQ_OQ), k);
  }
  return mask;
}

ZENTOR_AVX2 StepMasks Steps(const float* p) {
  StepMasks steps;
  for (std::size_t k = 0; k < kMaskBits; k += kLanes) {
    const __m256 before = _mm256_loadu_ps(p + k - 1);
    const __m256 here = _mm256_loadu_ps(p + k);
    steps.rises |= BitsAt(_mm256_cmp_ps(here, before, _CMP_GT_OQ), k);
    steps.stays |= BitsAt(_mm256_cmp_ps(here, before, _CMP_EQ_OQ), k);
  }
  return steps;
}

ZENTOR_AVX2 std::uint64_t Apart(const float* a, const float* b, float limit) {
  const __m256 limits = _mm256_set1_ps(limit);
  const __m256 sign = _mm256_set1_ps(-0.0F);
  std::uint64_t mask = 0;
  for (std::size_t k = 0; k < kMaskBits; k += kLanes) {
    const __m256 difference = _mm256_sub_ps(_mm256_loadu_ps(a + k), _mm256_loadu_ps(b + k));
    mask |= BitsAt(_mm256_cmp_ps(_mm256_andnot_ps(sign, difference), limits, _CMP_NLT_UQ), k);
  }
  return mask;
}

// Per 8-bit mask the positions of its set bits, one per byte, lowest first.
constexpr std::array<std::uint64_t, 256> BitPositions() {
  std::array<std::uint64_t, 256> table{};
  for (unsigned mask = 0; mask < table.size(); ++mask) {
    unsigned place = 0;
    for (unsigned bit = 0; bit < kLanes; ++bit) {
      if ((mask >> bit & 1U) != 0) table[mask] |= std::uint64_t{bit} << (8 * place++);
    }
  }
  return table;
}
constexpr std::array<std::uint64_t, 256> kBitPositions = BitPositions();

// The marked of eight numbers move to the front, all eight are stored, the next eight go behind the marked
// ones.
ZENTOR_AVX2 std::size_t Compress(const float* from, std::uint64_t mask, float* to) {
  std::size_t count = 0;
  if (_mm_popcnt_u64(mask) <= kFewBits) {
    for (; mask != 0; mask &= mask - 1) to[count++] = from[std::countr_zero(mask)];
    return count;
  }
  for (std::size_t k = 0; k < kMaskBits; k += kLanes, mask >>= kLanes) {
    const auto marked = static_cast<std::size_t>(mask & 0xffU);
    const __m256i order =
        _mm256_cvtepu8_epi32(_mm_cvtsi64_si128(static_cast<long long>(kBitPositions[marked])));
    _mm256_storeu_ps(to + count, _mm256_permutevar8x32_ps(_mm256_loadu_ps(from + k), order));
    count += static_cast<std::size_t>(_mm_popcnt_u64(marked));
  }
  return count;
}

}  // namespace

ZENTOR_AVX2 Extremes ExtremesAvx2(const float* v, std::size_t n, Extremes start) {
  __m256 high0 = _mm256_set1_ps(start.largest);
  __m256 low0 = _mm256_set1_ps(start.smallest);
  __m256 high1 = high0;
  __m256 low1 = low0;
  for (std::size_t i = 0; i < n; i += 2 * kLanes) {
    const __m256 v0 = _mm256_loadu_ps(v + i);
    const __m256 v1 = _mm256_loadu_ps(v + i + kLanes);
    high0 = _mm256_max_ps(v0, high0);  // the second where one is a NaN
    high1 = _mm256_max_ps(v1, high1);
    low0 = _mm256_min_ps(v0, low0);
    low1 = _mm256_min_ps(v1, low1);
  }
  high0 = _mm256_max_ps(high0, high1);
  low0 = _mm256_min_ps(low0, low1);
  __m128 high = _mm_max_ps(_mm256_castps256_ps128(high0), _mm256_extractf128_ps(high0, 1));
  __m128 low = _mm_min_ps(_mm256_castps256_ps128(low0), _mm256_extractf128_ps(low0, 1));
  high = _mm_max_ps(high, _mm_movehl_ps(high, high));
  low = _mm_min_ps(low, _mm_movehl_ps(low, low));
  return {_mm_cvtss_f32(_mm_max_ss(high, _mm_movehdup_ps(high))),
          _mm_cvtss_f32(_mm_min_ss(low, _mm_movehdup_ps(low)))};
}

const LaneMasks kAvx2LaneMasks = {Greater, Equal, Steps, Apart, Compress, ExtremesAvx2};

}  // namespace zentor

#endif
