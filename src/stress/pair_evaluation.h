// Constant-amplitude evaluation of one location or node: loading pairs, alternating and mean stress, S-N
// lookup, consumption of the events' cycles, cumulative usage factor.
//
// A pure function of (study, loading stresses, node): no service is called and nothing is allocated. What
// needs the user or stops the run comes back as a condition, so nodes can be evaluated by several threads in
// any order and the conditions are acted on in node order.
#pragma once

#include <array>
#include <cstdint>

#include "stress/lost_stress.h"
#include "study/study_state.h"

namespace zentor {

inline constexpr int kMaxPairs = kMaxLoadings * (kMaxLoadings - 1) / 2;  // 780

// Stress states of the loadings at a location, scaled, and what section mode adds.
struct LoadingStates {
  OneBasedArray<StressTensor, kMaxLoadings> stress;
  OneBasedArray<LinearisedStress, kMaxLoadings> linearised;  // section mode
  OneBasedArray<double, kMaxLoadings> temperature;           // section mode
  bool section_mode = false;                                 // pairs carry section values
  bool elastic_plastic = false;  // Ke is applied (section mode and the factor enabled)
};

// What the evaluation met that only the run driver can act on.
enum class LocationCondition : int {
  kNone,
  kAboveCurve,          // stress at or above the highest S-N point and the user has not yet said Yes
  kNoMaterialSet,       // message 9031
  kNoCurveInSet,        // message 9032, argument: set
  kNoCurveForRatio,     // message 9033
  kNoYieldStrength,     // message 9058
  kNoUltimateStrength,  // message 9059
  kHistoryConstant,     // variable amplitude: the node's stress history has no cycle, message 9060
  kFirstReversalsEqual  // variable amplitude: the count cannot start, message 9071
};

// The pairs of one location, one array per field (entries 0 .. count - 1), in generation order until sorted.
// Sorting moves the loading and event numbers, the stresses, the biaxiality ratio and the temperature; the
// section differences stay where they were generated. About 90 kB: kept on the heap by whoever evaluates, one
// per thread, and used for node after node.
struct PairArrays {
  int count = 0;
  LostStress lost;                                       // by formulas as stated
  std::array<std::array<double, kMaxPairs>, 4> section;  // linearised difference / Kt, section mode
  std::array<std::int32_t, kMaxPairs> first_loading, second_loading, first_event, second_event;
  std::array<double, kMaxPairs> alternating;  // Salt
  std::array<double, kMaxPairs> mean_stress;  // signed von Mises; 0 once a correction was applied
  std::array<double, kMaxPairs> biaxiality;
  std::array<double, kMaxPairs> section_alternating, temperature, ke;  // section mode
  std::array<double, kMaxPairs> allowed, partial_usage;
  std::array<std::int32_t, kMaxPairs> used;
};

struct LocationResult {
  double usage = 0.0;                    // cumulative usage factor
  double biaxiality = 0.0;               // cycle-weighted mean biaxiality ratio; 0 without used cycles
  float life_sum = 0.0F;                 // sum of N over pairs with used cycles, single precision
  double smallest_stress_factor = 1e50;  // of the pairs with used cycles
  bool any_used = false;
  LocationCondition condition = LocationCondition::kNone;
  int argument = 0;  // set number of kNoCurveInSet
  LostStress lost;   // by formulas as stated
};

// Forms, evaluates and sorts the pairs of the loadings of the study at one node. `material`: the node's
// material (0 none). Returns kNone or the strength conditions.
LocationCondition EvaluatePairs(const StudyState& study, const LoadingStates& states, int material,
                                PairArrays& pairs);

// Consumes the events' cycles pair by pair and sums the usage factor; fills ke, allowed, partial_usage and
// used and applies Ke to the alternating stress. A pair whose events have no cycles left gets zeros.
// `above_answered`: the user has said Yes to the question above the curve. Without that answer a stress above
// the curve gives the condition kAboveCurve beside the complete result that a Yes leaves standing; any other
// condition ends the consumption where it was met. REQUIRES: event numbers of the pairs in 1 .. kMaxEvents.
LocationResult ConsumePairs(const StudyState& study, const LoadingStates& states, int material,
                            bool above_answered, PairArrays& pairs);

}  // namespace zentor
