#include "fatigue/variable_amplitude.h"

#include <cmath>

#include "fatigue/history_fixture.h"
#include "gmock/gmock.h"
#include "stress/study_parts.h"

namespace zentor {
namespace {

using ::testing::HasSubstr;

class VariableStudy : public test::HistoryFixture {
 protected:
  VariableStudy() {
    FatigueProperties& p = study.properties;
    p.LoadAmplitudeType = 1;
    p.AlternatingStressType = kVonMises;
    p.RangeBinCount = p.MeanBinCount = 6;
    // N = 10^(1 + (1000 - S) / 200)
    study.sn_curves.sets.PushBack({test::MakeCurve(1, 0, {{10, 1000}, {1e5, 200}})});
    study.sn_curves.study_wide_set = 1;
    run.listing.Open(run.files, folder.Path("study.FTG"), TextRecordFile::Mode::kNew);
  }
  void Count() {
    PrepareHistories(run, study, variable);
    MatrixFile file(run, study);
    CountEventHistories(run, study, file, variable);
    run.listing.Flush();
  }
  LocationResult Evaluate(VariableWorkspace& work) const {
    return EvaluateVariableNode(study, variable, states, 0, false, work);
  }
  std::string Listing() const { return test::ReadText(folder.Path("study.FTG")); }

  LoadingStates states;
  VariableAmplitude variable;
};

const test::Curve kHistory = {{0, 1, 2, 3, 4}, {0, 5, 1, 4, 0}};

// Uniaxial stress: the stress history is the load history times the unit stress, so both roads give one class
// of range 3 and one of range 5.
TEST_F(VariableStudy, BothRoadsAgreeOnAUniaxialState) {
  WriteHistory(test::HistoryWords({kHistory}));
  AddEvent(1).repetitions = 2;
  states.stress[1] = {200, 0, 0, 0, 0, 0};
  Count();
  VariableWorkspace own = MakeVariableWorkspace(study, variable);
  const LocationResult separate = Evaluate(own);
  EXPECT_EQ(separate.condition, LocationCondition::kNone);
  EXPECT_EQ(own.classes.count, 2);
  // S = 300 and 500: N = 10^4.5 and 10^3.5.
  EXPECT_NEAR(separate.usage, 2 * (std::pow(10, -4.5) + std::pow(10, -3.5)), 1e-9);
  EXPECT_EQ(Listing(), "");

  study.properties.SharedHistory = 1;
  variable = VariableAmplitude();
  Count();
  EXPECT_THAT(Listing(), HasSubstr("R A N G E - M E A N"));
  VariableWorkspace shared = MakeVariableWorkspace(study, variable);
  EXPECT_NEAR(Evaluate(shared).usage, separate.usage, 1e-6 * separate.usage);
  EXPECT_FLOAT_EQ(shared.edges.range_width, own.edges.range_width);
  EXPECT_FLOAT_EQ(shared.edges.mean_origin, own.edges.mean_origin);
}

TEST_F(VariableStudy, ASharedHistorySumsItsLoadings) {
  WriteHistory(test::HistoryWords({kHistory}));
  AddEvent(1);
  AddEvent(1);
  study.properties.SharedHistory = 1;
  Count();
  VariableWorkspace work = MakeVariableWorkspace(study, variable);
  states.stress[1] = {150, 0, 0, 0, 0, 0};
  states.stress[2] = {50, 0, 0, 0, 0, 0};
  const double together = Evaluate(work).usage;
  states.stress[1] = {200, 0, 0, 0, 0, 0};
  states.stress[2] = StressTensor{};
  EXPECT_EQ(Evaluate(work).usage, together);
}

// The second evaluation must not see anything of the node between.
TEST_F(VariableStudy, ANodeLeavesNothingBehindForTheNext) {
  WriteHistory(test::HistoryWords({kHistory, {{0, 1.5F, 4}, {1, -2, 1}}}));
  AddEvent(1);
  AddEvent(2);
  Count();
  VariableWorkspace work = MakeVariableWorkspace(study, variable);
  states.stress[1] = {120, 30, 0, 10, 0, 0};
  states.stress[2] = {-20, 80, 5, 0, 40, 0};
  const LocationResult first = Evaluate(work);
  const LoadingStates kept = states;
  states.stress[1] = {10, 300, 0, 0, 0, 70};
  Evaluate(work);
  states = kept;
  EXPECT_EQ(Evaluate(work).usage, first.usage);
}

TEST_F(VariableStudy, ANodeWithoutStressHasNoCycles) {
  WriteHistory(test::HistoryWords({kHistory}));
  AddEvent(1);
  Count();
  VariableWorkspace work = MakeVariableWorkspace(study, variable);
  EXPECT_EQ(Evaluate(work).condition, LocationCondition::kHistoryConstant);
}

TEST_F(VariableStudy, AConstantLoadHistoryStopsTheRun) {
  WriteHistory(test::HistoryWords({{{0, 1}, {3, 3}}}));
  AddEvent(1);
  EXPECT_TRUE(Stops([&] { Count(); }));
  EXPECT_EQ(OnlyBox(), (Box{9060, 0}));
}

TEST_F(VariableStudy, OneRangeBinIsWarnedOfAndDoesNoDamage) {
  study.properties.RangeBinCount = 1;
  WriteHistory(test::HistoryWords({kHistory}));
  AddEvent(1);
  Count();
  ASSERT_TRUE(services.Showed(9072));
  EXPECT_EQ(services.shown.front().severity, Severity::kWarning);
  EXPECT_THAT(Listing(), HasSubstr(" *** WARNING - Only one range bin"));
  states.stress[1] = {200, 0, 0, 0, 0, 0};
  VariableWorkspace work = MakeVariableWorkspace(study, variable);
  const LocationResult result = Evaluate(work);
  EXPECT_EQ(result.condition, LocationCondition::kNone);
  EXPECT_EQ(result.usage, 0.0);
}

}  // namespace
}  // namespace zentor
