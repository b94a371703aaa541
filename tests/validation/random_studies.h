// Random studies, and the changes that must not move their results.
#pragma once

#include <array>
#include <cmath>
#include <random>

#include "authoring/study_definition.h"

namespace zentor::validation {

using Matrix = std::array<std::array<double, 3>, 3>;

// By seed. The studies have nine squares that share nodes and disagree about the stresses there; no stress is
// above a curve.
class RandomStudies {
 public:
  explicit RandomStudies(unsigned seed) : random_(seed) {}

  // Constant amplitude with every option of the pairs, or histories, shared or not.
  StudyDefinition Any();
  // Random interaction; no two stress ranges are within 1 % of each other, so that no event is preferred
  // among nearly equal ones.
  StudyDefinition SeparateRanges();
  Matrix Turn();
  float Factor() { return std::exp2(Real(-20.0F, 20.0F)); }
  int Pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }

 private:
  float Real(float low, float high) { return std::uniform_real_distribution<float>(low, high)(random_); }
  float Normal() { return std::normal_distribution<float>(0.0F, 60.0F)(random_); }
  StudyDefinition WithStresses(int cases);
  void AddHistories(StudyDefinition& study);

  std::mt19937 random_;
};

// Stresses in axes that are the rows of `axes`, right- or left-handed. Coordinates play no part in a run of
// all nodes.
StudyDefinition InAxes(StudyDefinition study, const Matrix& axes);
// Everything with the dimension of a stress times the factor.
StudyDefinition InUnits(StudyDefinition study, float factor);
// Every event as two with the same loadings that share its cycles.
StudyDefinition WithSplitEvents(StudyDefinition study, RandomStudies& random);
// Nodes, elements and load cases in the opposite order, nodes with gaps between their numbers.
StudyDefinition Renumbered(StudyDefinition study);
int NewNode(const StudyDefinition& study, int node);

}  // namespace zentor::validation
