// Mean stress correction by Soderberg, Goodman or Gerber.
#pragma once

#include "study/study_state.h"

namespace zentor {

enum class CorrectionOutcome : int {
  kDone,         // corrected, or nothing to do
  kNoStrength,   // no strength to correct with: stresses left as they are
  kBadStrength,  // strength 0 or less with a material present: the run must stop
};

// The strength of the node's material, chosen once per node.
struct MaterialStrength {
  double value = 0.0;
  bool may_be_missing = false;  // a single study-wide value, or no material: 0 or less is then not an error
};
MaterialStrength StrengthOf(const StudyState& study, int material);

// Corrects alternating stress (half range) and sets the mean stress to 0; both in the study's stress unit.
// Sources: Soderberg 1930, Goodman 1899, Gerber 1874.
CorrectionOutcome CorrectMeanStress(int correction, const MaterialStrength& strength, double& alternating,
                                    double& mean);

}  // namespace zentor
