// Every condition that stops the study input: message, last listing lines, end of the run by run mode.
#include <functional>
#include <ostream>

#include "study_input_fixture.h"

namespace zentor::test {

class Failures;

struct Failure {
  const char* name;
  int message;
  std::function<void(Failures&)> prepare;
  std::vector<float> arguments = {};
  const char* last_lines = "";  // of the listing
};

// gtest shows parameters of failed tests by their name.
void PrintTo(const Failure& failure, std::ostream* out) { *out << failure.name; }

class Failures : public StudyInput, public ::testing::WithParamInterface<Failure> {
 public:
  void Correct(int correction, int material, float yield, float ultimate) {
    SetMaterial(material, yield, ultimate);
    SetMaster(mas, master::kMeanStressCorrection, correction);
  }
  void StoreMaterialCurve(int field, int correction) {
    mat.SetInt(1, field, 1);
    SetMaster(mas, master::kMeanStressCorrection, correction);
  }
};

TEST_P(Failures, StopTheRun) {
  const Failure& failure = GetParam();
  for (const int run_mode : {0, 1, 2}) {
    services.asked.clear();
    services.ends_of_run = 0;
    services.SetRunMode(0);
    SetMaster(mas, master::kRunMode, run_mode);
    failure.prepare(*this);
    ASSERT_EQ(Read(), Outcome::kStopped);
    ASSERT_EQ(services.asked.size(), 1U);
    EXPECT_EQ(services.asked[0].message, failure.message);
    EXPECT_EQ(services.asked[0].style, BoxStyle::kError);
    EXPECT_TRUE(failure.message == 9040 || services.asked[0].arguments == failure.arguments);
    // Before the run mode is read the run owns its end.
    const bool before_run_mode = failure.message == 9002 || failure.message == 9040;
    EXPECT_EQ(services.ends_of_run, run_mode < 2 || before_run_mode ? 1 : 0) << "run mode " << run_mode;
    EXPECT_EQ(services.beeps, 0);
    EXPECT_EQ(services.StudyFileName(".LOG"), Path(".LOG")) << "the study's own name is selected at a stop";
    EXPECT_TRUE(*failure.last_lines == '\0' || ListsLast(failure.last_lines));
  }
}

// A study of the other layout that asks for surface nodes.
void AskForSurface(Failures& s) {
  s.MakeMultiStudy();
  s.ftc.SetInt(60, 14, 1);
}

const Failure kFailures[] = {
    {"TooManyRangeBins", 9002, [](Failures& s) { SetMaster(s.mas, master::kRangeBinCount, 201); }},
    {"TooManyMeanBins", 9002, [](Failures& s) { SetMaster(s.mas, master::kMeanBinCount, 201); }},
    {"SurfaceFileMissing", 9003, AskForSurface},
    {"SurfaceFileEmpty", 9004,
     [](Failures& s) { AskForSurface(s), s.AddFile(".FBD", std::string(80, '\0')); }},
    {"NoYieldStrength", 9005, [](Failures& s) { s.Correct(kSoderberg, 2, 0.0F, 400.0F); }, {2}},
    {"NoUltimateStrengthGoodman", 9006, [](Failures& s) { s.Correct(kGoodman, 1, 250.0F, 1e-11F); }, {1}},
    {"NoUltimateStrengthGerber", 9007, [](Failures& s) { s.Correct(kGerber, 1, 250.0F, kNaN); }, {1}},
    {"UltimateStrengthIsCurve", 9008, [](Failures& s) { s.StoreMaterialCurve(87, 0); }, {1}},
    {"YieldStrengthIsCurve", 9009, [](Failures& s) { s.StoreMaterialCurve(81, kSoderberg); }, {1}},
    {"ModulusIsCurve",
     9010,
     [](Failures& s) { SetMaster(s.mas, master::kSnCurveOption, -2), s.mat.SetInt(1, 3, 1); },
     {1}},
    {"ElementNodeUnknown",
     9011,
     [](Failures& s) {
       s.SetMaterial(2, 1.0F, 1.0F), s.SetElement(2, 1, {2, 5});
     },
     {2}},
    {"NoActivatedLocation",
     9014,
     [](Failures& s) { s.ftc.SetInt(103, 3, 0); },
     {},
     "\n\n\n*** ERROR - No location is activated for fatique calculations\n \n     STOP"},
    {"DifferentHistoriesWithoutVonMises", 9015,
     [](Failures& s) {
       s.MakeVariableAmplitude();
       SetMaster(s.mas, master::kSharedHistory, 1);
       SetMaster(s.mas, master::kAlternatingStressType, kStressIntensity);
       s.SetVariableEvent(2, 1, 6);
     }},
    {"StoredConditionInAllNodes",
     9017,
     [](Failures& s) { s.ftc.SetInt(103, 3, kAllNodes), s.SetLoading(1, 2, -1, 1.0F); },
     {},
     "\n\n ERROR - invalid assignment (-1) to loadcase/timestep for\n         all-nodes option"},
    {"StoredConditionMissing",
     9025,
     [](Failures& s) { s.SetLoading(1, 2, -1, 1.0F); },
     {2},
     "\n\n\n\n*** ERROR - For this location the stress conditions are \n"
     "            not available for loading   2\n"
     "    (Note: -1 is assigned to the corresponding load case\n"
     "           , however, no stress condition is stored, by\n"
     "           using command FTSTR[EAD], for the activated \n"
     "           location and this loading)\n     STOP"},
    {"LocationNodeUnknown",
     9026,
     [](Failures& s) { s.SetLocation(3, 3); },
     {},
     "\n\n\n\n  *** ERROR - Node corresponding to this location is not defined\n\n \n     STOP"},
    {"TooManyLoadings", 9030,
     [](Failures& s) {
       s.MakeMultiStudy();
       for (int k = 1; k <= 40; ++k) s.ftc.SetInt(21, k + 1, 1);
       s.ftc.SetInt(1, 6, 1);
       s.ftc.SetInt(22, 2, 1);
     }},
    {"ListedStudyWithoutStressFile", 9040,
     [](Failures& s) { s.MakeMultiStudy(), s.RemoveFile("-listed.STE"); }},
    {"OnlySetWithoutCurve", 9050, [](Failures& s) { s.ftc.SetInt(97, 8, 1); }, {1}},
    {"MultiStudySetWithoutCurve",
     9050,
     [](Failures& s) {
       s.MakeMultiStudy();
       s.SetMaterial(3, 1.0F, 1.0F);
       s.SetListedCurve(2, 3, 0, {{1.0F, 1.0F}});
     },
     {2}},
    {"RisingCurve",
     9051,
     [](Failures& s) {
       s.SetCurve(1, 1, {{1e3F, 200.0F}, {1e4F, 200.0F}, {1e5F, 300.0F}});
     },
     {1},
     "     2        0.100E+05         0.200E+03\n     3        0.100E+06         0.300E+03\n \n"
     " ERROR: S-N curve (for mat.    1 & ratio -1.00 ) is defined improperly\n"
     "         (it must decrease monotonically)    "}};

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

}  // namespace zentor::test
