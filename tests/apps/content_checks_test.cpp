// Studies that complete and mislead: what is said of them, from their files as a run finds them.
#include "content_checks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "authoring/study_writer.h"
#include "result_checks.h"
#include "stored_content.h"
#include "support/plane_model.h"
#include "support/temp_folder.h"

namespace zentor::companion {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// One event between a case and no stress, one curve, two squares.
StudyDefinition Plain() {
  StudyDefinition study;
  study.model = test::PlaneModel(test::NodesUpTo(8));
  study.stress_cases = {test::Uniaxial(1, study.model, [](int node) { return node < 5 ? 300.0 : 0.0; })};
  study.events = {{1, 1000, {{1, 1}, {2, kZeroStressCase}}}};
  study.sn_curves = {{1, -1.0F, 0, {{1e3F, 400.0F}, {1e6F, 100.0F}}}};
  return study;
}

std::vector<std::string> Said(const StudyDefinition& study) {
  const test::TempFolder folder;
  WriteStudy(study, folder.Path("job"), platform::NativeFileSystem());
  const auto content = ReadStoredContent(folder.Path("job"));
  std::vector<std::string> texts;
  for (const Finding& finding :
       CheckContent(content.value(), [&study] { return CountMaterialNodes(study.model); })) {
    texts.push_back((finding.grade == Finding::Grade::kMistake ? "! " : "") + finding.text);
  }
  return texts;
}

struct Change {
  void (*make)(StudyDefinition& study);
  std::vector<const char*> said;
};

const Change kChanges[] = {
    {[](StudyDefinition&) {}, {}},
    {[](StudyDefinition& s) {
       s.events = {{1, 400, {{1, 1}}}, {3, 400, {{4, 1, 1, -1.0F}}}};
       s.options.event_interaction = 1;
     },
     {"! event 1 has one loading", "! event 3 has one loading"}},
    {[](StudyDefinition& s) {
       s.events = {{1, 400, {{1, 1}}}, {3, 400, {{4, 1, 1, -1.0F}}}};
     },
     {}},
    {[](StudyDefinition& s) {
       s.events.push_back({2, 0, {}});
     },
     {"event 2 has 0 cycles", "event 2 has no loadings"}},
    {[](StudyDefinition& s) {
       s.events[0].loadings = {{1, 1, 1, 2.0F}, {5, 1, 1, 2.0F}};
     },
     {"the loadings of event 1 are one and the same state (load case 1, scale 2)"}},
    {[](StudyDefinition& s) { s.options.infinite_life = 1e6F; }, {}},
    {[](StudyDefinition& s) {
       s.options.sn_curve_option = -1;
       s.options.infinite_life = 1e5F;
     },
     {"! infinite_life is 100000 cycles, fewer than the 1000000 of the last point of the built-in"}},
    {[](StudyDefinition& s) { s.options.strength_reduction_factor = 1e-20F; },
     {"! strength_reduction_factor is 1e-20, which a run takes as 1"}},
    {[](StudyDefinition& s) { s.options.strength_reduction_factor = -2.0F; },
     {"! strength_reduction_factor is -2, which a run takes as 1"}},
    {[](StudyDefinition& s) {
       s.layout = StudyLayout::kMultiStudy;
       s.studies = {"a", "b"};
       s.events = {{1, 10, {{1, 1, 1}}, 1.0F, true}, {2, 10, {{1, 2, 2}, {2, 1, 1, 0.5F}}}};
     },
     {"the loadings of event 1 are one and the same state (load case 1 of study 1, scale 1)"}},
    {[](StudyDefinition& s) {
       s.layout = StudyLayout::kMultiStudy;
       s.studies = {"a"};
       s.events = {{1, 10, {{1, 1, 1}}, 0.0F, true}};
     },
     {}},
    {[](StudyDefinition& s) {
       s.options.sn_curve_option = -1;
       s.materials = {{1, 2e5F}, {2, 7e4F}};
       s.model.elements[1].material = 2;
     },
     {"built-in S-N curve is scaled by the modulus 200000 of material 1, that of the first node, for all "
      "nodes, also for the 4 of material 2"}},
};

TEST(ContentChecks, OfStudyFiles) {
  for (const Change& change : kChanges) {
    StudyDefinition study = Plain();
    change.make(study);
    const std::vector<std::string> said = Said(study);
    ASSERT_EQ(said.size(), change.said.size()) << testing::PrintToString(said);
    for (std::size_t i = 0; i < said.size(); ++i) EXPECT_THAT(said[i], HasSubstr(change.said[i]));
  }
}

// Results as a run of the study would leave them: usage factor and biaxiality by node.
NodeResults Results(const std::vector<std::pair<float, float>>& nodes) {
  NodeResults results;
  results.event_count = 2;
  for (const auto& [usage, biaxiality] : nodes) {
    results.nodes.push_back({static_cast<int>(results.nodes.size()) + 1, 0.0F, usage, 0.0F, biaxiality});
  }
  return results;
}

TEST(ResultChecks, UnstressedNodesAndStressesBelowTheCurve) {
  const test::TempFolder folder;
  StudyDefinition study = Plain();
  study.events.push_back({2, 10, {{3, 1, 1, 0.5F}, {4, kZeroStressCase}}});
  WriteStudy(study, folder.Path("job"), platform::NativeFileSystem());
  const auto said = [&](const NodeResults& results) {
    return CheckNodeResults(folder.Path("job"), study, results);
  };
  // Nodes 1 to 4 are stressed; node 3 in one axis only, node 8 got no damage.
  const NodeResults mixed = Results({{0.2F, 0.1F},
                                     {0.2F, 0.1F},
                                     {0.1F, 0.0F},
                                     {0.2F, 0.2F},
                                     {0.01F, 0.0F},
                                     {0.01F, 0.0F},
                                     {0.01F, 0.0F},
                                     {0.0F, 0.0F}});
  EXPECT_THAT(said(mixed), ElementsAre(HasSubstr("3 of 8 nodes have no stress range and get damage")));
  const float below = 1010.0F / 1e6F;
  EXPECT_THAT(said(Results({{below, 0.1F}, {below, 0.3F}})),
              ElementsAre(HasSubstr("no stress reaches the S-N curve")));
  EXPECT_THAT(said(Results({{0.2F, 0.1F}, {0.2F, 0.3F}})), ElementsAre());
  study.materials = {{1, 2.4e5F}};
  study.options.sn_curve_option = -1;
  EXPECT_THAT(said(Results({{below, 0.1F}, {below, 0.3F}})),
              ElementsAre(HasSubstr("below its lowest, 100;")));
  study.options.infinite_life = 1e9F;
  EXPECT_THAT(said(mixed), ElementsAre());
}

TEST(ResultChecks, LocationBelowTheCurve) {
  LocationResult run;
  run.usage = {0.001F};
  run.pairs = {{0, 1, 1, 2, 1, 1000, 1e6F, 0.0F, 0.0F, 0.0F, 99.0F, 0.001F}};
  EXPECT_THAT(CheckLocationResult(Plain(), run), ElementsAre(HasSubstr("largest alternating stress is 99")));
  run.pairs[0].alternating_stress = 1e-20F;
  StudyDefinition study = Plain();
  EXPECT_THAT(CheckLocationResult(study, run),
              ElementsAre(HasSubstr("the location has no alternating stress by")));
  study.extended.exact_principal_stresses = true;
  EXPECT_THAT(CheckLocationResult(study, run), ElementsAre(HasSubstr("the location is free of stress")));
  run.pairs[0].alternating_stress = 101.0F;
  EXPECT_THAT(CheckLocationResult(Plain(), run), ElementsAre());
}

}  // namespace
}  // namespace zentor::companion
