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

// The curves that serve a node of a material: set 1 for a built-in curve, the study-wide set where there is
// one, else the material's own. Without any, curves is null and the condition says why.
struct SnCurveChoice {
  const std::vector<SnCurve>* curves = nullptr;  // at least one
  LocationCondition condition = LocationCondition::kNone;
  int argument = 0;
};
SnCurveChoice CurvesOfMaterial(const StudyState& study, int material);

// What a lookup needs of the study besides the curves.
struct SnLookupOptions {
  float infinite_life = 0.0F;   // N at or below the lowest point when above 1e-8, else the curve's last N
  bool stress_factor = false;   // the study has at most one event
  bool above_answered = false;  // the user has said Yes to the question above the curve
  double zero_part = 0.0;       // of the alternating stress; a largest stress of a cycle up to it counts as 0
};
SnLookupOptions LookupOptionsOf(const StudyState& study, bool above_answered);

// N from the curves of a set: from the one curve, or linear in the stress ratio between the two neighbours
// among several. At or above the highest point N is the curve's first N; with one curve and no answer yet the
// condition is then kAboveCurve, and the rest of the result is what holds after a Yes. Arguments as below.
SnLookup LookUpInCurves(const std::vector<SnCurve>& curves, const SnLookupOptions& options,
                        double& alternating, double ratio, double used_cycles);

// Whether the curve has points and the alternating stress is at or below the lowest one.
bool IsBelowCurve(const SnCurve& curve, double alternating);

// Stress ratio R of a cycle from its alternating (half range) and mean stress: 0 when their sum, the largest
// stress, is at most 1e-20 or the options' part of the alternating stress.
double StressRatio(const SnLookupOptions& options, double alternating, double mean);

// CurvesOfMaterial and LookUpInCurves in one. `alternating` is raised to 1e-20 when smaller (the caller's
// value too). `ratio`: stress ratio R of the cycle. `used_cycles` > 0 asks for the stress factor, which
// exists only while the study has at most one event.
SnLookup LookUpAllowedCycles(const StudyState& study, int material, double& alternating, double ratio,
                             double used_cycles, bool above_answered);

// Fills set 1 of `store` with the 13 points of built-in option -1 or -2, scaled from the curve's own modulus
// to `modulus` (> 0, in the study's stress unit). The interpolation is the one in effect for the study.
void PrepareBuiltInCurve(int option, double modulus, bool multi_study, int interpolation,
                         SnCurveStore& store);

}  // namespace zentor
