// Every condition that stops the study input: message, last listing lines, end of the run by run mode.
#include <functional>

#include "study_input_fixture.h"

namespace zentor::test {

// A study of its own for each failure.
class FailingStudy : public StudyInput {
 public:
  void TestBody() override {}
  void Correct(int correction, int material, float yield, float ultimate) {
    SetMaterial(material, yield, ultimate);
    SetMaster(mas, master::kMeanStressCorrection, correction);
  }
  void MakeSurfaceStudy() {
    MakeMultiStudy();
    ftc.SetInt(60, 14, 1);
  }
};
using F = FailingStudy;

struct Failure {
  int message;
  std::function<void(F&)> prepare;
  std::vector<float> arguments = {};
  const char* last_lines = "";  // of the listing
};

const Failure kFailures[] = {
    {9002, [](F& s) { SetMaster(s.mas, master::kRangeBinCount, 201); }},
    {9003, [](F& s) { s.MakeSurfaceStudy(); }},
    {9004, [](F& s) { s.MakeSurfaceStudy(), s.AddFile(".FBD", std::string(80, '\0')); }},
    {9005, [](F& s) { s.Correct(kSoderberg, 2, 0.0F, 400.0F); }, {2}},
    {9006, [](F& s) { s.Correct(kGoodman, 1, 250.0F, 1e-11F); }, {1}},
    {9007, [](F& s) { s.Correct(kGerber, 1, 250.0F, kNaN); }, {1}},
    {9008, [](F& s) { s.mat.SetInt(1, 87, 1); }, {1}},
    {9009, [](F& s) { s.Correct(kSoderberg, 1, 250.0F, 400.0F), s.mat.SetInt(1, 81, 1); }, {1}},
    {9010, [](F& s) { SetMaster(s.mas, master::kSnCurveOption, -2), s.mat.SetInt(1, 3, 1); }, {1}},
    {9011,
     [](F& s) {
       s.SetMaterial(2, 1.0F, 1.0F), s.SetElement(2, 1, {2, 5});
     },
     {2}},
    {9014,
     [](F& s) { s.ftc.SetInt(103, 3, 0); },
     {},
     "\n\n\n*** ERROR - No location is activated for fatique calculations\n \n     STOP"},
    {9015,
     [](F& s) {
       s.MakeVariableAmplitude();
       SetMaster(s.mas, master::kSharedHistory, 1);
       SetMaster(s.mas, master::kAlternatingStressType, kStressIntensity);
       s.SetVariableEvent(2, 1, 6);
     }},
    {9017,
     [](F& s) { s.ftc.SetInt(103, 3, kAllNodes), s.SetLoading(1, 2, -1, 1.0F); },
     {},
     "\n\n ERROR - invalid assignment (-1) to loadcase/timestep for\n         all-nodes option"},
    {9025,
     [](F& s) { s.SetLoading(1, 2, -1, 1.0F); },
     {2},
     "\n\n\n\n*** ERROR - For this location the stress conditions are \n"
     "            not available for loading   2\n"
     "    (Note: -1 is assigned to the corresponding load case\n"
     "           , however, no stress condition is stored, by\n"
     "           using command FTSTR[EAD], for the activated \n"
     "           location and this loading)\n     STOP"},
    {9026,
     [](F& s) { s.SetLocation(3, 3); },
     {},
     "\n\n\n\n  *** ERROR - Node corresponding to this location is not defined\n\n \n     STOP"},
    {9030,
     [](F& s) {
       s.MakeMultiStudy();
       for (int k = 1; k <= 40; ++k) s.ftc.SetInt(21, k + 1, 1);
       s.ftc.SetInt(1, 6, 1);
       s.ftc.SetInt(22, 2, 1);
     }},
    {9040, [](F& s) { s.MakeMultiStudy(), s.RemoveFile("-listed.STE"); }},
    {9050, [](F& s) { s.ftc.SetInt(97, 8, 1); }, {1}},
    {9051,
     [](F& s) {
       s.SetCurve(1, 1, {{1e3F, 200.0F}, {1e4F, 200.0F}, {1e5F, 300.0F}});
     },
     {1},
     "     2        0.100E+05         0.200E+03\n     3        0.100E+06         0.300E+03\n \n"
     " ERROR: S-N curve (for mat.    1 & ratio -1.00 ) is defined improperly\n"
     "         (it must decrease monotonically)    "}};

TEST(Failures, StopTheRun) {
  for (const Failure& failure : kFailures) {
    for (const int run_mode : {0, 1, 2}) {
      SCOPED_TRACE(testing::Message() << failure.message << ", run mode " << run_mode);
      FailingStudy study;
      SetMaster(study.mas, master::kRunMode, run_mode);
      failure.prepare(study);
      ASSERT_EQ(study.Read(), Outcome::kStopped);
      const RecordingServices& services = study.services;
      ASSERT_EQ(services.asked.size(), 1U);
      EXPECT_EQ(services.asked[0].message, failure.message);
      EXPECT_EQ(services.asked[0].style, BoxStyle::kError);
      EXPECT_TRUE(failure.message == 9040 || services.asked[0].arguments == failure.arguments);
      // Before the run mode is read the run owns its end.
      const bool before_run_mode = failure.message == 9002 || failure.message == 9040;
      EXPECT_EQ(services.ends_of_run, run_mode < 2 || before_run_mode ? 1 : 0);
      EXPECT_TRUE(*failure.last_lines == '\0' || study.ListsLast(failure.last_lines));
    }
  }
}

// A model database whose node count contradicts its highest node: the header says 5 nodes, the directory ends
// at 4.
TEST_F(StudyInput, ModelSizesInconsistent) {
  Read();
  services.asked.clear();
  std::vector<std::byte> bytes = ReadBytes(Path(".NOD"));
  bytes[16] = std::byte{5};
  WriteBytes(Path(".NOD"), bytes);
  EXPECT_EQ(ReadFiles(), Outcome::kStopped);
  EXPECT_TRUE(services.WasAsked(9012));
}

}  // namespace zentor::test
