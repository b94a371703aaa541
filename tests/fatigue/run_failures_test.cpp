#include "fatigue/conditions.h"

#include <optional>

#include "support/study_run.h"

namespace zentor {
namespace {

using test::RunEnd;
using ::testing::ElementsAre;
using ::testing::EndsWith;

struct Failure {
  const char* name;
  std::function<void(StudyDefinition&)> damage;
  const char* last_lines;  // of the listing
  int message;
  int beeps = 0;
  std::optional<float> argument = std::nullopt;
};

void UseTwoMaterials(StudyDefinition& s) { s.materials.push_back({2, 2.0e5F, 300.0F, 500.0F}); }
void ActivateOne(StudyDefinition& s) {
  s.options.activated_location = 1;
  s.locations = {{1, 1}};
}
// Every material has its own curve, which only this layout keeps apart.
void UseListedStudy(StudyDefinition& s) {
  UseTwoMaterials(s);
  s.layout = StudyLayout::kMultiStudy;
  s.studies = {"listed"};
  s.stress_cases.clear();
  s.sn_curves.push_back(s.sn_curves[0]);
  s.sn_curves[1].material = 2;
}
void UseLoadHistory(StudyDefinition& s) {
  s.options.load_amplitude_type = 1;
  s.options.alternating_stress_type = 1;
  s.histories = {{1, {0, 1, 2}, {0, 5, 0}}};
  s.events = {{1, 10, {{1, 1, 1, 1.0F}}}};
  s.events[0].history = 1;
}
void RemoveStresses(StudyDefinition& s) { s.stress_cases[0].fields[0].values.assign(24, 0.0F); }
void RemoveCurves(StudyDefinition& s) {
  UseTwoMaterials(s);  // with one material a study without a curve is refused earlier
  s.sn_curves.clear();
}

const Failure kFailures[] = {
    {"NoStressFile", [](StudyDefinition& s) { s.stress_cases.clear(); }, "\n  ERROR - No stress file\n",
     9061},
    {"NoStressFileSingleLocation",
     [](StudyDefinition& s) {
       ActivateOne(s);
       s.stress_cases.clear();
     },
     "\n STOP - Missing stress file (file with extension .STE or .STN)\n", 9029},
    {"ModulusZero",
     [](StudyDefinition& s) {
       s.options.sn_curve_option = -1;
       s.materials[0].modulus = 0.0F;
     },
     "\n *** ERROR - Modulus of elast. must be > 0\n", 9065},
    {"NoCurveAllNodes", RemoveCurves, "\n\n\n *** ERROR - No S-N curve is defined\n", 9053},
    {"NodeWithoutMaterial",
     [](StudyDefinition& s) {
       UseListedStudy(s);
       for (AuthoredElement& element : s.model.elements) element.material = 0;
     },
     "", 9031, 0, 1.0F},
    {"NoCurveForTheRatio",
     [](StudyDefinition& s) {
       s.sn_curves.push_back(s.sn_curves[0]);
       for (AuthoredSnCurve& curve : s.sn_curves) curve.stress_ratio = 1e30F;
     },
     "\n S-N curves are not defined properly\n", 9033, 0, 1.0F},
    {"NodeWithoutStressHistory",  // told before the missing curve, as the history is counted first
     [](StudyDefinition& s) {
       UseLoadHistory(s);
       RemoveCurves(s);
       RemoveStresses(s);
     },
     "", 9060, 1, 1.0F},
    {"ConstantLoadHistory",
     [](StudyDefinition& s) {
       UseLoadHistory(s);
       s.histories[0].values = {5, 5, 5};
     },
     "", 9060, 1, 0.0F},
};

class RunFailure : public test::StudyRun, public ::testing::WithParamInterface<Failure> {
 protected:
  RunFailure() {
    MakeAllNodes(
        {1, 2, 3, 4}, [](int) { return 500.0; }, 1000);
    WriteStudy(study, folder.Path("listed"), platform::NativeFileSystem());
    services.second_studies = {folder.Path("listed")};
  }
};

// The listing and the box say why, the end of the run runs when the study's run mode asks for it, and the
// study's own files are as they were but for the mark that a missing curve leaves.
TEST_P(RunFailure, StopsInOrder) {
  const Failure& failure = GetParam();
  failure.damage(study);
  for (const int run_mode : {0, 1, 2}) {
    SCOPED_TRACE(run_mode);
    study.options.run_mode = run_mode;
    Write();
    const std::map<std::string, std::string> before = Files();
    services.asked.clear();
    services.ends_of_run = services.beeps = 0;
    ASSERT_EQ(Run(), RunEnd::kStopped);
    ASSERT_THAT(Boxes(), ElementsAre(failure.message));
    EXPECT_EQ(services.asked[0].style, BoxStyle::kError);
    const std::vector<float> argument(failure.argument ? 1 : 0, failure.argument.value_or(0));
    EXPECT_EQ(services.asked[0].arguments, argument);
    EXPECT_EQ(services.ends_of_run, run_mode == 2 ? 0 : 1);
    EXPECT_EQ(services.beeps, failure.beeps);
    const std::map<std::string, std::string> after = Files();
    EXPECT_THAT(after.at(after.count(".OUT") != 0 ? ".OUT" : ".FTG"), EndsWith(failure.last_lines));
    const int results = Int(DbTable::kFtc, 103, 7);
    EXPECT_EQ(results, failure.message == 9053 ? -1 : 0) << "-1 marks them as missing";
    if (results != 0) Put(DbTable::kFtc, 103, 7, 0);
    for (const auto& [extension, content] : before) {
      const bool listing = extension == ".FTG" || extension == ".OUT";
      EXPECT_TRUE(listing || content == Files().at(extension)) << extension;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Cases, RunFailure, ::testing::ValuesIn(kFailures),
                         [](const auto& one) { return one.param.name; });

using NodeCondition = test::StudyRun;

// Conditions that the study input rules out for a sound study; the messages must still be the right ones.
struct Acted {
  LocationCondition condition;
  int message;
  float argument;
};

TEST_F(NodeCondition, StopsTheRun) {
  for (const Acted& acted : {Acted{LocationCondition::kNoCurveInSet, 9032, 7},
                             {LocationCondition::kNoYieldStrength, 9058, 3},
                             {LocationCondition::kNoUltimateStrength, 9059, 3},
                             {LocationCondition::kFirstReversalsEqual, 9071, 12}}) {
    services.asked.clear();
    FatigueRun run(platform::NativeFileSystem(), services);
    EXPECT_THROW(ActOnCondition(run, acted.condition, 7, 12, 3), RunStopped);
    ASSERT_THAT(Boxes(), ElementsAre(acted.message));
    EXPECT_THAT(services.asked[0].arguments, ElementsAre(acted.argument));
  }
}

}  // namespace
}  // namespace zentor
