// The forms of the lane masks for wider instructions. They may only be called where the processor has them.
#pragma once

#include "fatigue/lane_masks.h"

#if defined(__x86_64__) && defined(__GNUC__)
#define ZENTOR_X86_WIDE 1

namespace zentor {

extern const LaneMasks kAvx2LaneMasks;    // AVX2 and POPCNT
extern const LaneMasks kAvx512LaneMasks;  // these and AVX-512F

Extremes ExtremesAvx2(const float* v, std::size_t n, Extremes start);

}  // namespace zentor

#endif
