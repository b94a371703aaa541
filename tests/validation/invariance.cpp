// What must not change: the usage factors of random studies when the study is said in another way.
#include <cmath>
#include <functional>
#include <stdexcept>

#include "validation/published_case.h"
#include "validation/random_studies.h"
#include "validation/whole_run.h"

namespace zentor::validation {

namespace {

constexpr unsigned kStudies = 30;

// The ratio of a usage factor of the changed study to that of the same node of the first one that is farthest
// from 1.
class FarthestRatio {
 public:
  void Add(const StudyDefinition& study, const RenumberedStudy& changed) {
    const RunResults before = RunStudy(study), after = RunStudy(changed.study);
    for (const companion::NodeResult& node : before.nodes.nodes) {
      const auto found = changed.new_node.find(node.node);
      const double usage = after.Usage(found == changed.new_node.end() ? node.node : found->second);
      ++usage_factors_;
      const double ratio = usage / node.usage;
      if (!std::isfinite(ratio)) throw std::runtime_error("a usage factor is 0 or no number");
      if (std::fabs(ratio - 1) > std::fabs(ratio_ - 1)) ratio_ = ratio;
    }
  }
  Comparison Compared(const std::string& change, double tolerance) const {
    return {std::to_string(usage_factors_) + " usage factors, " + change + ": the ratio farthest from 1", 1.0,
            ratio_, tolerance};
  }

 private:
  double ratio_ = 1;
  int usage_factors_ = 0;
};

using Change = std::function<RenumberedStudy(RandomStudies&, const StudyDefinition&)>;
Comparison Compare(const std::string& name, double tolerance, StudyDefinition (RandomStudies::*make)(),
                   const Change& change) {
  FarthestRatio farthest;
  for (unsigned seed = 1; seed <= kStudies; ++seed) {
    RandomStudies random(seed);
    const StudyDefinition study = (random.*make)();
    farthest.Add(study, change(random, study));
  }
  return farthest.Compared(name, tolerance);
}

std::vector<Comparison> SameStudyInOtherWords() {
  const Matrix mirror = {{{-1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
  return {
      Compare("mirroring in the plane X = 0", 1e-6, &RandomStudies::Any,
              [&](RandomStudies&, const StudyDefinition& s) {
                return RenumberedStudy{InAxes(s, mirror), {}};
              }),
      Compare("new numbers of nodes, elements and load cases", 2e-6, &RandomStudies::Any,
              [](RandomStudies& random, const StudyDefinition& s) { return Renumbered(s, random); }),
      Compare("another unit of stress", 1e-5, &RandomStudies::Any,
              [](RandomStudies& random, const StudyDefinition& s) {
                return RenumberedStudy{InUnits(s, random.Factor()), {}};
              }),
      Compare("splitting every event in two", 1e-6, &RandomStudies::SeparateRanges,
              [](RandomStudies& random, const StudyDefinition& s) {
                return RenumberedStudy{WithSplitEvents(s, random), {}};
              }),
  };
}

}  // namespace

std::vector<PublishedCase> Invariances() {
  return {
      {"The same study in other words", "no change is the exact answer",
       "Random studies of 16 nodes whose elements disagree about the stresses; constant amplitude with all "
       "options, shared and "
       "separate histories.",
       "Events are split in studies with random interaction whose stress ranges differ by more than 1 %: "
       "among nearly equal ranges "
       "those within one event are taken first, and the halves of an event are two events.",
       SameStudyInOtherWords},
  };
}

}  // namespace zentor::validation
