// Reads and echoes the study's own S-N curves.
#pragma once

#include "study/run_context.h"
#include "study/study_state.h"

namespace zentor {

// Fills study.sn_curves; with a built-in curve it makes room for set 1 only. Stops the run when a material
// set lacks the curve that it needs and when a curve rises; the listing then ends with the offending point.
// Throws InputFault when a curve has more points than its records hold.
void ReadSnCurves(RunContext& run, StudyState& study);

// A curve as the tables hold it, before it is prepared for lookup.
struct SnCurveSource {
  int number = 0;  // slot (ordinary layout) or entity number (multi-study layout)
  int set = 0;
  float ratio = 0.0F;
  int interpolation = 0;
  std::vector<float> cycles, stresses;
};

// The curves of the study in reading order, without those of sets that the study does not have. A slot of the
// ordinary layout holds a curve when it has at least 2 points.
std::vector<SnCurveSource> ReadSnCurveSources(RunContext& run, const StudyState& study);
// The slots of the ordinary layout with one point only: no curves, but what a study without any has to show.
std::vector<SnCurveSource> ReadOnePointSlots(RunContext& run, const StudyState& study);

}  // namespace zentor
