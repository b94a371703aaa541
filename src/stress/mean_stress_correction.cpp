#include "stress/mean_stress_correction.h"

#include <cmath>

namespace zentor {
namespace {

// Single-precision constants, widened.
constexpr double kNegligibleMeanRatio = 1e-10F;
constexpr double kBeyondStrength = 1e30F;  // above every S-N curve

}  // namespace

MaterialStrength StrengthOf(const StudyState& study, int material) {
  const OneBased<double>& strength = study.materials.strength;
  if (strength.size() == 1) return {strength[1], true};
  if (material < 1) return {0.0, true};
  return {strength.Holds(material) ? strength[material] : 0.0, false};
}

CorrectionOutcome CorrectMeanStress(int correction, const MaterialStrength& strength, double& alternating,
                                    double& mean) {
  if (correction != kSoderberg && correction != kGoodman && correction != kGerber) {
    return CorrectionOutcome::kDone;
  }
  if (alternating <= 0.0 || std::abs(mean) / alternating <= kNegligibleMeanRatio) {
    return CorrectionOutcome::kDone;
  }
  const double su = strength.value;
  if (su <= 0.0) {
    return strength.may_be_missing ? CorrectionOutcome::kNoStrength : CorrectionOutcome::kBadStrength;
  }
  if (su - mean < 1e-10) {
    alternating = kBeyondStrength;
  } else if (correction == kGerber) {
    const double ratio = mean / su;
    alternating = alternating / (1.0 - ratio * ratio);
  } else {
    alternating = su * alternating / (su - mean);
  }
  mean = 0.0;
  return CorrectionOutcome::kDone;
}

}  // namespace zentor
