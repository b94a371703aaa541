// Random studies and the changes that must not move their results, by seed.
#pragma once

#include <array>
#include <map>
#include <random>

#include "authoring/study_definition.h"

namespace zentor::validation {

using Matrix = std::array<std::array<double, 3>, 3>;

class RandomStudies {
 public:
  explicit RandomStudies(unsigned seed) : random_(seed) {}

  // Nine squares that share nodes and disagree about the stresses there; constant amplitude with every option
  // of the pairs, or histories, shared or not. No stress is above a curve.
  StudyDefinition Any();
  StudyDefinition ConstantAmplitude();
  // Random interaction; no two stress ranges are within 1 % of each other, so that no event is preferred
  // among nearly equal ones.
  StudyDefinition SeparateRanges();

  Matrix Turn();
  float Factor() { return std::exp2(Real(-3.0F, 20.0F)); }
  int Pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }
  // Ascending numbers with gaps that take the places 0 .. count - 1, in random order: new number by place.
  std::vector<int> NewNumbers(int count);

 private:
  float Real(float low, float high) { return std::uniform_real_distribution<float>(low, high)(random_); }
  float Normal() { return std::normal_distribution<float>(0.0F, 60.0F)(random_); }
  StudyDefinition WithStresses(int cases);
  void AddCurves(StudyDefinition& study);
  void AddHistories(StudyDefinition& study);

  std::mt19937 random_;
};

// Stresses and coordinates in axes whose rows are those of `axes`, right- or left-handed.
StudyDefinition InAxes(StudyDefinition study, const Matrix& axes);
// Everything with the dimension of a stress times the factor.
StudyDefinition InUnits(StudyDefinition study, float factor);
// Every event as two with the same loadings, one of which happens between 0 and all of the times.
StudyDefinition WithSplitEvents(StudyDefinition study, RandomStudies& random);

struct RenumberedStudy {
  StudyDefinition study;
  std::map<int, int> new_node;  // by old number
};
// Nodes, elements and load cases under new numbers, in the order of those.
RenumberedStudy Renumbered(const StudyDefinition& study, RandomStudies& random);

}  // namespace zentor::validation
