#include "fatigue/lane_masks.h"

#include <cmath>
#include <vector>

#include "fatigue/lane_masks_wide.h"

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#endif

namespace zentor {
namespace {

#if defined(__x86_64__) && defined(__GNUC__)

// Four numbers at a time: every x86-64 processor.
constexpr std::size_t kLanes = 4;
using Lanes = __m128;

Lanes Load(const float* p) { return _mm_loadu_ps(p); }
std::uint64_t Bits(Lanes condition) {
  return static_cast<std::uint64_t>(static_cast<unsigned>(_mm_movemask_ps(condition)));
}
std::uint64_t GreaterBits(Lanes a, Lanes b) { return Bits(_mm_cmpgt_ps(a, b)); }
std::uint64_t EqualBits(Lanes a, Lanes b) { return Bits(_mm_cmpeq_ps(a, b)); }
std::uint64_t ApartBits(Lanes a, Lanes b, float limit) {
  const Lanes distance = _mm_andnot_ps(_mm_set1_ps(-0.0F), _mm_sub_ps(a, b));
  return Bits(_mm_cmpnlt_ps(distance, _mm_set1_ps(limit)));
}

Extremes ExtremesBaseline(const float* v, std::size_t n, Extremes start) {
  Lanes high[2] = {_mm_set1_ps(start.largest), _mm_set1_ps(start.largest)};
  Lanes low[2] = {_mm_set1_ps(start.smallest), _mm_set1_ps(start.smallest)};
  for (std::size_t i = 0; i < n; i += 2 * kLanes) {
    for (std::size_t set = 0; set < 2; ++set) {
      const Lanes next = Load(v + i + set * kLanes);
      high[set] = _mm_max_ps(next, high[set]);  // the second where one is a NaN
      low[set] = _mm_min_ps(next, low[set]);
    }
  }
  Lanes h = _mm_max_ps(high[0], high[1]);
  Lanes l = _mm_min_ps(low[0], low[1]);
  h = _mm_max_ps(h, _mm_movehl_ps(h, h));
  l = _mm_min_ps(l, _mm_movehl_ps(l, l));
  return {_mm_cvtss_f32(_mm_max_ss(h, _mm_shuffle_ps(h, h, 1))),
          _mm_cvtss_f32(_mm_min_ss(l, _mm_shuffle_ps(l, l, 1)))};
}

#else

constexpr std::size_t kLanes = 1;
using Lanes = float;

Lanes Load(const float* p) { return *p; }
std::uint64_t GreaterBits(Lanes a, Lanes b) { return a > b ? 1 : 0; }
std::uint64_t EqualBits(Lanes a, Lanes b) { return a == b ? 1 : 0; }
std::uint64_t ApartBits(Lanes a, Lanes b, float limit) { return std::fabs(a - b) < limit ? 0 : 1; }

Extremes ExtremesBaseline(const float* v, std::size_t n, Extremes start) {
  for (std::size_t i = 0; i < n; ++i) {
    start.largest = v[i] > start.largest ? v[i] : start.largest;
    start.smallest = v[i] < start.smallest ? v[i] : start.smallest;
  }
  return start;
}

#endif

std::uint64_t GreaterBaseline(const float* a, const float* b) {
  std::uint64_t mask = 0;
  for (std::size_t k = 0; k < kMaskBits; k += kLanes) mask |= GreaterBits(Load(a + k), Load(b + k)) << k;
  return mask;
}

std::uint64_t EqualBaseline(const float* a, const float* b) {
  std::uint64_t mask = 0;
  for (std::size_t k = 0; k < kMaskBits; k += kLanes) mask |= EqualBits(Load(a + k), Load(b + k)) << k;
  return mask;
}

StepMasks StepsBaseline(const float* p) { return {GreaterBaseline(p, p - 1), EqualBaseline(p, p - 1)}; }

std::uint64_t ApartBaseline(const float* a, const float* b, float limit) {
  std::uint64_t mask = 0;
  for (std::size_t k = 0; k < kMaskBits; k += kLanes) mask |= ApartBits(Load(a + k), Load(b + k), limit) << k;
  return mask;
}

std::size_t CompressBitByBit(const float* from, std::uint64_t mask, float* to) {
  std::size_t count = 0;
  for (; mask != 0; mask &= mask - 1) to[count++] = from[std::countr_zero(mask)];
  return count;
}

constexpr LaneMasks kBaseline = {GreaterBaseline, EqualBaseline,    StepsBaseline,
                                 ApartBaseline,   CompressBitByBit, ExtremesBaseline};

std::vector<LaneMasks> FindRunnable() {
  std::vector<LaneMasks> forms = {kBaseline};
#ifdef ZENTOR_X86_WIDE
  const bool avx2 = __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("popcnt") != 0;
  if (avx2) forms.push_back(kAvx2LaneMasks);
  if (avx2 && __builtin_cpu_supports("avx512f") != 0) forms.push_back(kAvx512LaneMasks);
#endif
  return forms;
}

}  // namespace

std::span<const LaneMasks> RunnableLaneMasks() {
  static const std::vector<LaneMasks> forms = FindRunnable();
  return forms;
}

const LaneMasks& BestLaneMasks() {
  static const LaneMasks& best = RunnableLaneMasks().back();
  return best;
}

}  // namespace zentor
