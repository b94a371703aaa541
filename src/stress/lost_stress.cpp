#include "stress/lost_stress.h"

#include <cmath>
#include <limits>

#include "stress/exact_stress.h"
#include "stress/pair_stress.h"
#include "stress/sn_lookup.h"

namespace zentor {
namespace {

double LowestStress(const std::vector<SnCurve>& curves) {
  double lowest = std::numeric_limits<double>::infinity();
  for (const SnCurve& curve : curves) lowest = std::min(lowest, curve.last_stress);
  return lowest;
}

}  // namespace

double LostStressOf(const StressTensor& s, const PrincipalValues& found) {
  // Two equal values differ from the third by the von Mises stress, which they have right or not.
  const double von_mises = 2.0 * ExactAlternating(kVonMises, s, 1.0);
  const double error = std::abs(std::abs(found[0] - found[1]) - von_mises);
  return error > 1.5e-3 * SizeOf(s) ? von_mises : 0.0;
}

void AddLost(const StudyState& study, int material, const PairStress& stress, LostStress& lost) {
  if (stress.lost_alternating <= 0.0 && stress.lost_mean <= 0.0) return;
  const SnCurveChoice choice = CurvesOfMaterial(study, material);
  const double least = choice.curves == nullptr ? 0.0 : 0.01 * LowestStress(*choice.curves);
  const bool mean_matters = study.properties.MeanStressCorrection != kNoCorrection ||
                            (choice.curves != nullptr && choice.curves->size() > 1);
  const bool mean_lost = mean_matters && stress.lost_mean > least;
  const double largest = std::max(stress.lost_alternating, mean_lost ? stress.alternating : 0.0);
  if (largest > least) lost.Add(largest);
}

}  // namespace zentor
