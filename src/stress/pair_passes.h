// Loops over all pairs of a node that approximate their stresses, for EvaluateUsage.
//
// What decides the result is the scalar statement (EvaluatePair, CorrectMeanStress), down to the last bit.
// Exact principal stresses come out of the loops with these bits. As stated, the loops only say, much faster,
// which pairs can matter: every value is either within a proven relative error of the scalar one, or NaN
// where such an error cannot be guaranteed and the scalar statement must be asked.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "stress/usage_plan.h"

namespace zentor {

// Stress states of a node's loadings in the order of the plan, one array per component. The places behind the
// last loading hold finite numbers.
using LoadingStresses = std::array<std::array<double, kLoadingPlaces>, 6>;
using PairValues = std::array<double, kPairPlaces>;

// Values differ from the scalar ones by at most this part of themselves.
inline constexpr double kStressError = 0x1p-25;

// As stated: the node's loadings have no out-of-plane shear that a pair could see: the plane form serves all
// its pairs.
bool AllPairsPlane(const UsagePlan& plan, const LoadingStresses& stress, double kt);

struct PairStressRequest {
  int alternating_type = 0;
  int correction = 0;     // kNoCorrection, or a correction with the strength
  double strength = 0.0;  // above 0
  double kt = 1.0;
};

using PairPass = void (*)(const PairStressRequest&, const UsagePlan&, const LoadingStresses&,
                          PairValues& alternating);
struct PairPasses {
  // As stated, plane: corrected alternating stress of every pair of a node, the bits of the scalar statement.
  PairPass plane;
  // As stated, any pairs: within kStressError; NaN: undecided.
  PairPass general;
};
const PairPasses& PassesOf(VectorForm form);
// Exact principal stresses, any pairs: the bits of the scalar statement.
PairPass ExactPassOf(VectorForm form);

}  // namespace zentor
