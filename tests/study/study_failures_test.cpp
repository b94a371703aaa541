// Every condition that stops the study input: message, last listing lines, end of the run by run mode.
#include <functional>
#include <ostream>

#include "study_input_fixture.h"

namespace zentor::test {

class Failures;

struct Failure {
  const char* name;
  int message;
  std::vector<float> arguments;
  Lines last_lines;  // of the listing; empty: not looked at
  std::function<void(Failures&)> prepare;
};

// gtest shows parameters of failed tests by their name.
void PrintTo(const Failure& failure, std::ostream* out) { *out << failure.name; }

class Failures : public StudyInput, public ::testing::WithParamInterface<Failure> {};

TEST_P(Failures, StopTheRun) {
  for (const int run_mode : {0, 1, 2}) {
    services.asked.clear();
    services.ends_of_run = 0;
    services.SetRunMode(0);
    SetMaster(mas, master::kRunMode, run_mode);
    GetParam().prepare(*this);
    ASSERT_EQ(Read(), Outcome::kStopped);
    ASSERT_EQ(services.asked.size(), 1U);
    EXPECT_EQ(services.asked[0].message, GetParam().message);
    EXPECT_EQ(services.asked[0].style, BoxStyle::kError);
    if (GetParam().message != 9040) {
      EXPECT_EQ(services.asked[0].arguments, GetParam().arguments);
    }
    // Before the run mode is read the run owns its end.
    const bool before_run_mode = GetParam().message == 9002 || GetParam().message == 9040;
    EXPECT_EQ(services.ends_of_run, run_mode < 2 || before_run_mode ? 1 : 0) << "run mode " << run_mode;
    EXPECT_EQ(services.beeps, 0);
    EXPECT_EQ(services.StudyFileName(".LOG"), Path(".LOG")) << "the study's own name is selected at a stop";
    if (!GetParam().last_lines.empty()) {
      EXPECT_TRUE(ListsLast(GetParam().last_lines));
    }
  }
}

void CorrectWith(Failures& s, int correction) { SetMaster(s.mas, master::kMeanStressCorrection, correction); }

const Failure kFailures[] = {
    {"ListedStudyWithoutStressFile",
     9040,
     {},
     {},
     [](Failures& s) {
       s.MakeMultiStudy();
       s.RemoveFile("-listed.STE");
     }},
    {"TooManyRangeBins", 9002, {}, {}, [](Failures& s) { SetMaster(s.mas, master::kRangeBinCount, 201); }},
    {"TooManyMeanBins", 9002, {}, {}, [](Failures& s) { SetMaster(s.mas, master::kMeanBinCount, 201); }},
    {"SurfaceFileMissing",
     9003,
     {},
     {},
     [](Failures& s) {
       s.MakeMultiStudy();
       s.ftc.SetInt(60, 14, 1);
     }},
    {"SurfaceFileEmpty",
     9004,
     {},
     {},
     [](Failures& s) {
       s.MakeMultiStudy();
       s.ftc.SetInt(60, 14, 1);
       s.AddFile(".FBD", std::string(80, '\0'));
     }},
    {"NoYieldStrength",
     9005,
     {2},
     {},
     [](Failures& s) {
       s.SetMaterial(2, 0.0F, 400.0F);
       CorrectWith(s, kSoderberg);
     }},
    {"NoUltimateStrengthGoodman",
     9006,
     {1},
     {},
     [](Failures& s) {
       s.SetMaterial(1, 250.0F, 1e-11F);
       CorrectWith(s, kGoodman);
     }},
    {"NoUltimateStrengthGerber",
     9007,
     {1},
     {},
     [](Failures& s) {
       s.SetMaterial(1, 250.0F, std::numeric_limits<float>::quiet_NaN());
       CorrectWith(s, kGerber);
     }},
    {"UltimateStrengthIsCurve", 9008, {1}, {}, [](Failures& s) { s.mat.SetInt(1, 87, 1); }},
    {"YieldStrengthIsCurve",
     9009,
     {1},
     {},
     [](Failures& s) {
       s.mat.SetInt(1, 81, 3);
       CorrectWith(s, kSoderberg);
     }},
    {"ModulusIsCurve",
     9010,
     {1},
     {},
     [](Failures& s) {
       SetMaster(s.mas, master::kSnCurveOption, -2);
       s.mat.SetInt(1, 3, 1);
     }},
    {"ElementNodeUnknown",
     9011,
     {2},
     {},
     [](Failures& s) {
       s.SetMaterial(2, 1.0F, 1.0F);
       s.SetElement(2, 1, {2, 5});
     }},
    {"NoActivatedLocation",
     9014,
     {},
     {"", "", "", "*** ERROR - No location is activated for fatique calculations", " ", "     STOP"},
     [](Failures& s) { s.ftc.SetInt(103, 3, 0); }},
    {"DifferentHistoriesWithoutVonMises",
     9015,
     {},
     {},
     [](Failures& s) {
       s.MakeVariableAmplitude();
       SetMaster(s.mas, master::kSharedHistory, 1);
       SetMaster(s.mas, master::kAlternatingStressType, kStressIntensity);
       s.SetVariableEvent(2, 1, 6);
     }},
    {"StoredConditionInAllNodes",
     9017,
     {},
     {"", "", " ERROR - invalid assignment (-1) to loadcase/timestep for", "         all-nodes option"},
     [](Failures& s) {
       s.ftc.SetInt(103, 3, kAllNodes);
       s.SetLoading(1, 2, -1, 1.0F);
     }},
    {"StoredConditionMissing",
     9025,
     {2},
     {"", "", "", "", "*** ERROR - For this location the stress conditions are ",
      "            not available for loading   2", "    (Note: -1 is assigned to the corresponding load case",
      "           , however, no stress condition is stored, by",
      "           using command FTSTR[EAD], for the activated ", "           location and this loading)",
      "     STOP"},
     [](Failures& s) { s.SetLoading(1, 2, -1, 1.0F); }},
    {"LocationNodeUnknown",
     9026,
     {},
     {"", "", "", "", "  *** ERROR - Node corresponding to this location is not defined", "", " ",
      "     STOP"},
     [](Failures& s) { s.SetLocation(3, 3); }},
    {"NoStressFile",
     9029,
     {},
     {" STOP - Missing stress file (file with extension .STE or .STN)"},
     [](Failures& s) { s.RemoveFile(".STE"); }},
    {"TooManyLoadings",
     9030,
     {},
     {},
     [](Failures& s) {
       s.MakeMultiStudy();
       for (int k = 1; k <= 40; ++k) s.ftc.SetInt(21, k + 1, 1);
       s.ftc.SetInt(1, 6, 1);
       s.ftc.SetInt(22, 2, 1);
     }},
    {"OnlySetWithoutCurve", 9050, {1}, {}, [](Failures& s) { s.ftc.SetInt(97, 8, 1); }},
    {"MultiStudySetWithoutCurve",
     9050,
     {2},
     {},
     [](Failures& s) {
       s.MakeMultiStudy();
       s.SetMaterial(3, 1.0F, 1.0F);
       s.SetListedCurve(2, 3, 0, {{1.0F, 1.0F}});
     }},
    {"RisingCurve",
     9051,
     {1},
     {"     2        0.100E+05         0.200E+03", "     3        0.100E+06         0.300E+03", " ",
      " ERROR: S-N curve (for mat.    1 & ratio -1.00 ) is defined improperly",
      "         (it must decrease monotonically)    "},
     [](Failures& s) {
       s.SetCurve(1, 1, {{1e3F, 200.0F}, {1e4F, 200.0F}, {1e5F, 300.0F}});
     }},
};

INSTANTIATE_TEST_SUITE_P(Each, Failures, ::testing::ValuesIn(kFailures),
                         [](const auto& test) { return std::string(test.param.name); });

class Stops : public StudyInput {};

// A model database whose node count contradicts its highest node: the header says 5 nodes, the directory ends
// at 4.
TEST_F(Stops, ModelSizesInconsistent) {
  Read();
  services.asked.clear();
  std::vector<std::byte> bytes = ReadBytes(Path(".NOD"));
  bytes[16] = std::byte{5};
  WriteBytes(Path(".NOD"), bytes);
  EXPECT_EQ(ReadFiles(), Outcome::kStopped);
  EXPECT_TRUE(services.WasAsked(9012));
}

TEST_F(Stops, ListedStudyIsNamedInTheMessage) {
  MakeMultiStudy();
  RemoveFile("-listed.STE");
  Read();
  std::string name;
  for (const float unit : services.asked.at(0).arguments) {
    if (unit != 0.0F) name.push_back(static_cast<char>(unit));
  }
  EXPECT_EQ(name, Path("-listed"));
  EXPECT_EQ(services.asked[0].arguments.back(), 0.0F);
}

// The run driver has its own message for this one.
TEST_F(Stops, AllNodesRunWithoutStressFileIsLeftToTheDriver) {
  RemoveFile(".STE");
  ftc.SetInt(103, 3, kAllNodes);
  EXPECT_EQ(Read(), Outcome::kComplete);
  EXPECT_EQ(study.stress_kind, StressKind::kNone);
}

}  // namespace zentor::test
