// Where the fatigue definition lies in ".FTC". Field numbers are record fields; field 1 is the entity's id.
// The whole layout: docs/formats/ftc.md.
#pragma once

#include "study/definition.h"

namespace zentor::ftc {

// Event j is entity j.
inline constexpr int kLoadCases =
    20;  // entity kLoadCases + j, field k + 1: load case of loading k of event j
inline constexpr int kMatrixNodes = 59;  // fields 2 .. 41
inline constexpr int kOptions =
    60;  // options (multi-study layout); field k + 1: scale of loading k (ordinary layout)
inline constexpr int kMembership = 60;  // entity kMembership + j, field k + 1: k when event j owns loading k;
                                        // multi-study mode: scale factor of the entry
inline constexpr int kMaterialData = 97;  // S-N curve directory, elastic-plastic parameters
inline constexpr int kSmTTemperatures = 98;
inline constexpr int kSmTStresses = 99;
inline constexpr int kLocationSelection = 103;  // entity kLocationSelection + l: location l
inline constexpr int kCurveCycles = 202;        // entity kCurveCycles + 2 c: cycles of S-N curve slot c
inline constexpr int kCurveStresses = 203;      // entity kCurveStresses + 2 c: its alternating stresses
inline constexpr int kCurveSlots = 10;

// What is stored for location l (1 .. kMaxLocations) and loading k (1 .. kMaxLoadings).
constexpr int StoredConditionEntity(int l, int k) { return 604 + (l - 1) * kMaxLoadings + k; }

}  // namespace zentor::ftc
