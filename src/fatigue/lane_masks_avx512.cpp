#include "fatigue/lane_masks_wide.h"

#ifdef ZENTOR_X86_WIDE

#include <immintrin.h>

#define ZENTOR_AVX512 __attribute__((target("avx512f,avx2,popcnt")))

namespace zentor {
namespace {

constexpr std::size_t kLanes = 16;

std::uint64_t BitsAt(__mmask16 mask, std::size_t k) { return std::uint64_t{mask} << k; }

ZENTOR_AVX512 std::uint64_t Greater(const float* a, const float* b) {
  std::uint64_t mask = 0;
  for (std::size_t k = 0; k < kMaskBits; k += kLanes) {
    mask |= BitsAt(_mm512_cmp_ps_mask(_mm512_loadu_ps(a + k), _mm512_loadu_ps(b + k), _CMP_GT_OQ), k);
  }
  return mask;
}

ZENTOR_AVX512 std::uint64_t Equal(const float* a, const float* b) {
  std::uint64_t mask = 0;
  for (std::size_t k = 0; k < kMaskBits; k += kLanes) {
    mask |= BitsAt(_mm512_cmp_ps_mask(_mm512_loadu_ps(a + k), _mm512_loadu_ps(b + k), _CMP_EQ_OQ), k);
  }
  return mask;
}

ZENTOR_AVX512 StepMasks Steps(const float* p) {
  StepMasks steps;
  for (std::size_t k = 0; k < kMaskBits; k += kLanes) {
    const __m512 before = _mm512_loadu_ps(p + k - 1);
    const __m512 here = _mm512_loadu_ps(p + k);
    steps.rises |= BitsAt(_mm512_cmp_ps_mask(here, before, _CMP_GT_OQ), k);
    steps.stays |= BitsAt(_mm512_cmp_ps_mask(here, before, _CMP_EQ_OQ), k);
  }
  return steps;
}

ZENTOR_AVX512 std::uint64_t Apart(const float* a, const float* b, float limit) {
  const __m512 limits = _mm512_set1_ps(limit);
  std::uint64_t mask = 0;
  for (std::size_t k = 0; k < kMaskBits; k += kLanes) {
    const __m512 distance = _mm512_abs_ps(_mm512_sub_ps(_mm512_loadu_ps(a + k), _mm512_loadu_ps(b + k)));
    mask |= BitsAt(_mm512_cmp_ps_mask(distance, limits, _CMP_NLT_UQ), k);
  }
  return mask;
}

ZENTOR_AVX512 std::size_t Compress(const float* from, std::uint64_t mask, float* to) {
  std::size_t count = 0;
  for (std::size_t k = 0; k < kMaskBits; k += kLanes, mask >>= kLanes) {
    const auto marked = static_cast<__mmask16>(mask);
    _mm512_storeu_ps(to + count, _mm512_maskz_compress_ps(marked, _mm512_loadu_ps(from + k)));
    count += static_cast<std::size_t>(_mm_popcnt_u32(marked));
  }
  return count;
}

}  // namespace

const LaneMasks kAvx512LaneMasks = {Greater, Equal, Steps, Apart, Compress, ExtremesAvx2};

}  // namespace zentor

#endif
