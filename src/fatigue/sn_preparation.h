// Makes the S-N curves ready before the first evaluation.
#pragma once

#include "fatigue/fatigue_run.h"

namespace zentor {

// Whether an evaluation can look up allowed cycles: a built-in curve, or a stored one of at least two points.
bool HasUsableCurve(const StudyState& study);

// Built-in options: derives the curve from the modulus of the node's material. Stops the run when that
// modulus is 0 or less (message 9065) or given as a temperature curve (9066). The study's own
// curves are ready as they were read. Prints the Sm-T curve of a study that has one and a usable S-N curve,
// once.
void PrepareCurves(FatigueRun& run, int node);

// All-nodes option without a usable curve: listing, message 9053, stop.
[[noreturn]] void StopWithoutCurve(FatigueRun& run);

// The material that governs a node: material 1 when the model has no node-to-material table, 0 when it has
// none.
int MaterialOfNode(const StudyState& study, int node);

}  // namespace zentor
