// Small studies for the validation, and their run from the files of the study to the result files.
#pragma once

#include <array>
#include <functional>
#include <optional>
#include <vector>

#include "authoring/study_definition.h"
#include "study_results.h"

namespace zentor::validation {

using Tensor = std::array<double, 6>;  // SX SY SZ TXY TXZ TYZ

struct RunResults {
  companion::NodeResults nodes;                          // all-nodes runs
  companion::LocationResult location;                    // runs of one location
  std::optional<companion::RangeMeanBlock> first_count;  // cycles of event 1 in variable amplitude

  // REQUIRES: an all-nodes run whose node `node` was evaluated.
  double Usage(int node) const;
};

// Writes the study into a folder of its own, runs it and reads the results. Throws std::runtime_error for a
// run that stops.
RunResults RunStudy(const StudyDefinition& study);

// Unconnected points: cases[c][p] is the stress of case c + 1 at node p + 1. Evaluated at all nodes, with N =
// 1e6 / S.
StudyDefinition PointStudy(const std::vector<std::vector<Tensor>>& cases);
// An event of loadings of these cases with scale 1. As often as the curve of PointStudy has cycles at a
// stress of 1, the usage factor is the alternating stress.
inline constexpr int kUnitCycles = 1000000;
void AddEvent(StudyDefinition& study, int cycles, const std::vector<int>& cases);

// A wall, one row of squares between X = inner and X = outer: nodes 1 .. elements + 1 along Y = 0;
// cases[c](x) is the stress of case c + 1. Locations 1 and 2 are its ends, joined by a section of 65 points.
// Curve as in PointStudy.
using WallStress = std::function<Tensor(double x)>;
StudyDefinition WallStudy(double inner, double outer, int elements, const std::vector<WallStress>& cases);

// Sm is the same at all temperatures.
ElasticPlasticData ConstantSm(double sm, double m, double n);

}  // namespace zentor::validation
