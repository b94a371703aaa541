// What the stresses of a definition say about it: gathered case by case while they are read, since the cases
// of a large model are never in memory together.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "authoring/study_definition.h"

namespace zentor::companion {

class StressFacts {
 public:
  void Add(int stress_case, const StudyModel& model, const std::vector<StressField>& fields);

  // Warnings, one line each: nodes that have no stress and will get damage or stop the run, stresses that are
  // far from the S-N curve (of another unit, most likely), cases with the same stresses.
  std::vector<std::string> Warnings(const StudyDefinition& study) const;

 private:
  struct Case {
    float largest = 0.0F;        // magnitude of a component
    std::uint64_t digest = 0;    // of all values
    std::vector<bool> stressed;  // by node number: some component is not 0
  };
  void WarnOfUnstressedNodes(const StudyDefinition& study, std::vector<std::string>& warnings) const;
  void WarnOfUnits(const StudyDefinition& study, std::vector<std::string>& warnings) const;
  void WarnOfTwins(const StudyDefinition& study, std::vector<std::string>& warnings) const;

  std::map<int, Case> cases_;
};

}  // namespace zentor::companion
