// Allowed cycles from the S-N curves, and the built-in design curves.
#pragma once

#include "stress/pair_evaluation.h"
#include "study/study_state.h"

namespace zentor {

struct SnLookup {
  double allowed = 0.0;        // N
  double stress_factor = 0.0;  // allowed stress at the used cycles / alternating stress; 0 when not asked for
  LocationCondition condition = LocationCondition::kNone;
  int argument = 0;
};

// `alternating` is raised to 1e-20 when smaller (the caller's value too). `ratio`: stress ratio R of the
// cycle. `used_cycles` > 0 asks for the stress factor, which exists only while the study has at most one
// event.
SnLookup LookUpAllowedCycles(const StudyState& study, int material, double& alternating, double ratio,
                             double used_cycles, bool above_answered);

// Fills set 1 of `store` with the 13 points of built-in option -1 or -2, scaled from the curve's own modulus
// to `modulus` (> 0, in the study's stress unit). The interpolation is the one in effect for the study.
void PrepareBuiltInCurve(int option, double modulus, bool multi_study, int interpolation,
                         SnCurveStore& store);

}  // namespace zentor
