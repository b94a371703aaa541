// Constant-amplitude usage factor of a node in an all-nodes run, where only the result counts and not the
// table of its pairs.
#pragma once

#include <array>
#include <cstdint>

#include "stress/pair_bands.h"
#include "stress/pair_evaluation.h"
#include "stress/pair_passes.h"
#include "stress/usage_plan.h"

namespace zentor {

// What one thread needs for node after node; about 250 kB.
struct UsageWorkspace {
  LoadingStresses stress{};  // filled by the caller, in the order of the plan's loadings

  PairValues alternating;  // within kStressError, or exact
  PairValues mean;         // exact once the pair is evaluated
  PairValues biaxiality;   // of evaluated pairs
  enum class Known : std::uint8_t { kApproximate, kExactStress, kEvaluated };
  std::array<Known, kMaxPairs> known;
  std::array<std::int32_t, kMaxPairs> found;
  PairBands bands;
  // For nodes that are left to the scalar statement.
  LoadingStates states;
  PairArrays pairs;
};

// What EvaluatePairs and ConsumePairs give for these stresses, to the last bit and with the same conditions,
// without evaluating all of the pairs exactly: vector loops bound every pair's stress, pairs that can
// matter are evaluated by the scalar statement, and the evaluation ends when no pair has cycles left.
// REQUIRES: a plan of this study, RunsVectorForm(form).
LocationResult EvaluateUsage(const StudyState& study, const UsagePlan& plan, int material,
                             bool above_answered, UsageWorkspace& work, VectorForm form = BestVectorForm());

// The stresses of the plan's loadings.
void GatherStresses(const UsagePlan& plan, const LoadingStates& states, LoadingStresses& stress);

}  // namespace zentor
