// Cycle classes of a variable-amplitude study: one per occupied range-mean bin, with its stresses, allowed
// cycles and damage at one node.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "fatigue/rainflow.h"
#include "stress/mean_stress_correction.h"
#include "stress/pair_evaluation.h"
#include "stress/pair_stress.h"
#include "study/study_state.h"

namespace zentor {

// One array per field, entries 0 .. count - 1, in the order range bin outer, mean bin inner.
struct CycleClasses {
  int count = 0;
  std::vector<double>
      alternating;                // half range, in the study's stress unit; after any mean stress correction
  std::vector<double> mean;       // 0 once a correction was applied
  std::vector<float> cycles;      // of one repetition
  std::vector<float> load_range;  // shared history: bin centres in load units
  std::vector<float> load_mean;
  std::vector<std::int32_t> range_bin, mean_bin;
  std::vector<double> allowed, partial_usage;
  std::vector<std::int32_t> used;  // cycles of all repetitions
  double biaxiality = 0.0;  // of every class; 0 without a shared history, whose classes mix stress states
  PairStress strongest;     // shared history: of the widest range, before any correction

  // Room for every bin; a matrix can never give more classes.
  void Allocate(int range_bins, int mean_bins);
};

// Stresses per unit of load of a shared history, as the bin edges of a node's matrices need them.
struct StressScales {
  float range = 0.0F;  // range of the alternating stress measure per unit load range
  float mean = 0.0F;   // signed von Mises stress per unit load mean
};

// Shared history: classes with their loads, from the printed matrix (its occupied mean bins). They do not
// depend on the node. REQUIRES: classes are allocated for the matrix.
void BinsToLoadClasses(const RangeMeanMatrix& matrix, CycleClasses& classes);

// Without a shared history: classes with the stresses of the node's own matrix, corrected for mean stress.
// kNone or the strength conditions. REQUIRES: classes are allocated for the matrix.
LocationCondition BinsToStressClasses(const FatigueProperties& properties, const RangeMeanMatrix& matrix,
                                      const MaterialStrength& strength, CycleClasses& classes);

// Shared history: the stresses of the classes at a node whose unit loads together give `unit_state`. The
// first class is evaluated as a loading pair, the others follow in proportion to their loads. When the first
// class has no mean load, mean stresses follow the signed von Mises stress of the unit state.
LocationCondition EvaluateLoadClasses(const FatigueProperties& properties, const StressTensor& unit_state,
                                      const MaterialStrength& strength, CycleClasses& classes,
                                      StressScales& scales);

// Allowed cycles, used cycles and partial usage factor of every class; cumulative usage factor and mean
// biaxiality ratio. Conditions as ConsumePairs gives them: kAboveCurve leaves the result that holds after a
// Yes.
LocationResult SumUsage(const StudyState& study, int material, bool above_answered, CycleClasses& classes);

// Damage and cycles of a node per bin, cleared first. REQUIRES: both of shape (mean_bins, range_bins), range
// bin fastest, and SumUsage done.
void NodeMatrices(const CycleClasses& classes, int range_bins, std::span<float> damage,
                  std::span<std::int32_t> cycles);

}  // namespace zentor
