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

using Change = std::function<StudyDefinition(RandomStudies&, const StudyDefinition&)>;
using NodeMap = int (*)(const StudyDefinition&, int node);
int SameNode(const StudyDefinition&, int node) { return node; }

// Of the usage factors of the changed studies to those of the same nodes before, the ratio farthest from 1.
Comparison Compare(const std::string& name, double tolerance, StudyDefinition (RandomStudies::*make)(),
                   const Change& change, NodeMap new_node = SameNode) {
  double farthest = 1;
  int usage_factors = 0;
  for (unsigned seed = 1; seed <= kStudies; ++seed) {
    RandomStudies random(seed);
    StudyDefinition study = (random.*make)();
    study.extended.exact_principal_stresses = true;
    const RunResults before = RunStudy(study), after = RunStudy(change(random, study));
    for (const companion::NodeResult& node : before.nodes.nodes) {
      const double ratio = after.Usage(new_node(study, node.node)) / node.usage;
      if (!std::isfinite(ratio)) throw std::runtime_error("a usage factor is 0 or no number");
      if (std::fabs(ratio - 1) > std::fabs(farthest - 1)) farthest = ratio;
      ++usage_factors;
    }
  }
  return {std::to_string(usage_factors) + " usage factors, " + name + ": the ratio farthest from 1", 1.0,
          farthest, tolerance};
}

std::vector<Comparison> SameStudyInOtherWords() {
  const auto turned = [](RandomStudies& random, const StudyDefinition& s) {
    return InAxes(s, random.Turn());
  };
  const auto mirrored = [](RandomStudies&, const StudyDefinition& s) {
    return InAxes(s, {{{-1, 0, 0}, {0, 1, 0}, {0, 0, 1}}});
  };
  const auto renumbered = [](RandomStudies&, const StudyDefinition& s) { return Renumbered(s); };
  const auto in_units = [](RandomStudies& random, const StudyDefinition& s) {
    return InUnits(s, random.Factor());
  };
  const auto split = [](RandomStudies& random, const StudyDefinition& s) {
    return WithSplitEvents(s, random);
  };
  return {
      Compare("turning by any angle", 1e-4, &RandomStudies::Any, turned),
      Compare("mirroring in the plane X = 0", 1e-6, &RandomStudies::Any, mirrored),
      Compare("new numbers of nodes, elements and load cases", 1e-4, &RandomStudies::Any, renumbered,
              NewNode),
      Compare("another unit of stress", 1e-4, &RandomStudies::Any, in_units),
      Compare("splitting every event in two", 1e-6, &RandomStudies::SeparateRanges, split),
  };
}

}  // namespace

std::vector<PublishedCase> Invariances() {
  return {
      {"The same study in other words", "no change is the exact answer",
       "Random studies of 16 nodes whose elements disagree about the stresses, with exact principal "
       "stresses; general and "
       "plane states, bars and plates in oblique directions; constant amplitude with all options, shared and "
       "separate "
       "histories. Units differ by factors up to a million. Stresses are stored in single precision.",
       "Events are split in studies with random interaction whose stress ranges differ by more than 1 %: "
       "among nearly equal "
       "ranges those within one event are taken first, and the halves of an event are two events.",
       SameStudyInOtherWords},
  };
}

}  // namespace zentor::validation
