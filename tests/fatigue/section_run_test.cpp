// Whole runs of a location in a section: the elastic-plastic factor and what keeps it from being applied.
#include "stress/section_study.h"
#include "support/study_run.h"

namespace zentor::test {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

// Axial stress 300 + 50 (12 - x) at X = 10 .. 14 in case 1, minus half of that in case 2; membrane 300,
// bending 100 at node 1, which 17 points make 100.78125. Linearised ranges there: pair 1-3 601.171875, pair
// 1-2 400.78125; alternating stresses 300 and 200. Sm falls from 100 at 20 degrees to 80 at 300. S-N curve N
// = 1e12 / S^3.
class SectionRun : public StudyRun {
 protected:
  SectionRun() {
    SectionWall wall;
    wall.AddCase([](float x, float) { return Axial(300 + 50 * (12 - x)); }, 100.0F);
    wall.AddCase([](float x, float) { return Axial(-150 - 25 * (12 - x)); }, 300.0F);
    wall.AddEvent(1000, {{1, 1.0F}, {kZeroStressCase, 1.0F}});
    wall.AddEvent(400, {{2, 1.0F}, {kZeroStressCase, 1.0F}});
    wall.AddLocation(1, 1);
    wall.AddLocation(5, 1);
    study = wall.study;
    study.options.activated_location = 1;
    study.sn_curves = {{1, -1.0F, 0, {{125.0F, 2000.0F}, {1e6F, 100.0F}}}};
    study.elastic_plastic = {{{20.0F, 100.0F}, {300.0F, 80.0F}}, 3.0F, 0.2F, true};
  }
  static std::array<float, 4> Axial(float sy) { return {0.0F, sy, 0.0F, 0.0F}; }
  // Numbers of the records of ".FTI" behind the counter.
  std::vector<int> RecordTypes() const {
    const std::vector<std::int32_t> words = Words(".FTI");
    std::vector<int> types;
    for (std::size_t at = 10; at < words.size(); at += 10) types.push_back(words[at]);
    return types;
  }
};

// Pair 1-3 at 300 degrees: Ke = 1 + 2 (601.17 / 240 - 1) = 4.0098; pair 1-2 at 100 degrees with Sm 94.286:
// 1.8338. The factor acts once, although the cycles are consumed again after the answer.
TEST_F(SectionRun, StressAboveTheCurveAnsweredYes) {
  study.sn_curves[0].points = {{1e3F, 1000.0F}, {1e6F, 100.0F}};
  services.answer = Answer::kYes;
  ASSERT_EQ(WriteAndRun(), RunEnd::kComplete);
  EXPECT_EQ(services.asked.size(), 1U);
  EXPECT_EQ(Told(), "9013 16, 9018 4, 9019 2, 9020 1, 9027, 9034 1, 9035 1, 9036 1, 9034 1, 9035 3, 9036 2");
  EXPECT_THAT(Listing(),
              HasSubstr("    1        3      400  0.100E+04   300.0  4.01  0.120E+04  0.301E+03  0.400\n"
                        "    1        2      600  0.203E+05   100.0  1.83  0.367E+03  0.200E+03  0.030\n"));
}

// The warning's head and the reasons, as often as they stand in the listing.
std::vector<int> CountsOf(const std::string& listing) {
  const char* const texts[] = {"\n\n\n *** WARNING - No Simplified Elastic-Plastic formulation:  \n",
                               "\n        (Some of the Elastic-Plastic properties are not\n"
                               "         available in the data base)\n",
                               "\n        (Elastic-Plastic material parameters are not defined\n"
                               "         OR are out of range)\n",
                               "\n        (-1 is assigned to the loadcase(s), however, not all the\n"
                               "         linearized stress conditions are specified, i.e., by\n"
                               "         using command FTSTR)\n",
                               "\n         (no section contains this location at one end OR unable\n"
                               "         to open the data-base file to read the nodal temper-\n"
                               "         tures OR unable to read the corresponding records)\n",
                               "\n         (No section contains the activated location at one end\n"
                               "          OR if such section exists, the other end location is\n"
                               "          not available, i.e., is deleleted)\n",
                               "\n         (Sm-T curve is defined improperly, i.e., it does not\n"
                               "         decrease monotonically)\n"};
  std::vector<int> counts;
  for (const std::string text : texts) {
    counts.push_back(0);
    for (std::size_t at = 0; (at = listing.find(text, at)) != std::string::npos; ++at) ++counts.back();
  }
  return counts;
}

struct MissingPiece {
  const char* what;
  std::vector<int> warnings;  // heads, then the six reasons
  std::function<void(StudyDefinition&)> remove;
};

class SectionWarnings : public SectionRun, public ::testing::WithParamInterface<MissingPiece> {};

TEST_P(SectionWarnings, EachIsWrittenOnceAndTheFactorIsNotApplied) {
  const MissingPiece& piece = GetParam();
  piece.remove(study);
  ASSERT_EQ(WriteAndRun(), RunEnd::kComplete);
  const std::string listing = Listing();
  EXPECT_EQ(CountsOf(listing), piece.warnings);
  EXPECT_EQ(RecordTypes(), (std::vector<int>{1, 2, 2, 3}));
  EXPECT_THAT(listing, HasSubstr(" LOADING (EVN)   LOADING (EVN)    USED/ALLOWED     STRESS     FACTOR\n"));
  EXPECT_LT(listing.find("Usage  Factor"), listing.find("WARNING"));
  const bool rises = piece.warnings.back() != 0;
  for (const int message : {9067, 9068}) {
    const auto shown = std::count_if(services.shown.begin(), services.shown.end(),
                                     [&](const auto& s) { return s.message == message; });
    EXPECT_EQ(shown, rises ? 1 : 0) << message;
  }
}

void TakeStoredStressWithoutLinearised(StudyDefinition& s) {
  s.events[1].loadings[0].stress_case = kStoredStressCase;
  s.stored_conditions = {{1, 3, std::array<float, 6>{0.0F, -200.0F}, std::nullopt, 300.0F}};
}

const MissingPiece kMissingPieces[] = {
    {"NoSmTCurve", {1, 1, 0, 0, 0, 0, 0}, [](StudyDefinition& s) { s.elastic_plastic = {}; }},
    {"OnePoint", {2, 1, 1, 0, 0, 0, 0}, [](StudyDefinition& s) { s.elastic_plastic.sm_t.resize(1); }},
    {"NoLinearisedStress", {2, 1, 0, 1, 0, 0, 0}, TakeStoredStressWithoutLinearised},
    {"NoTemperatures", {2, 1, 0, 0, 1, 0, 0}, [](StudyDefinition& s) { s.temperatures.clear(); }},
    {"NoOtherEnd", {2, 1, 0, 0, 0, 1, 0}, [](StudyDefinition& s) { s.locations[1].node = 77; }},
    {"NoSection", {1, 0, 0, 0, 0, 1, 0}, [](StudyDefinition& s) { s.locations[0].section = 0; }},
    {"RisingCurve", {2, 1, 0, 0, 0, 0, 1}, [](StudyDefinition& s) { s.elastic_plastic.sm_t[1][1] = 101; }},
};
INSTANTIATE_TEST_SUITE_P(MissingPieces, SectionWarnings, ::testing::ValuesIn(kMissingPieces),
                         [](const auto& piece) { return piece.param.what; });

// A path that leaves the model ends the run by name, with the flush and the end of the run as ever.
TEST_F(SectionRun, UnusablePathStopsTheRun) {
  study.locations[1].node = 16;
  ASSERT_EQ(WriteAndRun(), RunEnd::kStopped);
  EXPECT_THAT(Listing(), EndsWith(" ERROR - Point  8 (X=     14.38  Y=      0.00)  of the section,\n"
                                  "         is not defined\n"));
  EXPECT_EQ(Boxes(), std::vector<int>{0});
  EXPECT_EQ(services.ends_of_run, 1);

  study.locations[1].node = 5;
  study.locations[0].path_points = 0;
  ASSERT_EQ(WriteAndRun(), RunEnd::kStopped);
  EXPECT_THAT(Listing(),
              HasSubstr("entity 104, field 6 is 0, expected 2 to 65 points on the section's path"));
}

}  // namespace
}  // namespace zentor::test
