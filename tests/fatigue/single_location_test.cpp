#include "support/study_run.h"

namespace zentor {
namespace {

using test::RunEnd;
using ::testing::EndsWith;
using ::testing::HasSubstr;

// Stresses at node 1: loadings 800 and 300 in event 1, -200 and 0 in event 2. Pairs in order: 1-3 (500),
// 1-4 (400), 1-2 and 2-3 (250), 2-4 (150), 3-4 (100). Pair 1-3 uses the 400 cycles of event 2, pair 1-2 the
// other 600 of event 1; N is 8000 and 64000.
class SingleLocation : public test::StudyRun {
 protected:
  SingleLocation() {
    study.model = test::PlaneModel({1, 2, 3, 4});
    study.stress_cases = {test::Uniaxial(1, study.model, [](int node) { return 800.0 * node; }),
                          test::Uniaxial(2, study.model, [](int node) { return 400.0 * node; })};
    study.events = {{1, 1000, {{1, 1, 1, 1.0F}, {2, 2, 1, 0.75F}}},
                    {2, 400, {{3, 2, 1, -0.5F}, {4, kZeroStressCase, 1, 1.0F}}}};
    study.options.shell_surface = 2;
    study.options.shell_layer = 3;
    ActivateNodeOne();
  }
};

// Field 15 of entity 60 is also the scale factor of loading 14: one that is used stays, run after run.
TEST_F(SingleLocation, ScaleFactorOfLoading14Survives) {
  study.events[0].loadings[1] = {14, 2, 1, 0.75F};
  Write();
  for (int run = 1; run <= 2; ++run) {
    ASSERT_EQ(Run(), RunEnd::kComplete);
    EXPECT_EQ(Real(DbTable::kFtc, 60, 15), 0.75F);
    EXPECT_THAT(Listing(), HasSubstr("    1      1       14      1       600 0.6400E+05 0.25000E+03"));
  }
}

// A slot with one point is no curve: where none is required its point is shown in front of the pairs.
TEST_F(SingleLocation, OnePointOfACurveIsShownAsImproper) {
  study.materials.push_back({2, 2.0e5F, 300.0F, 500.0F});
  study.sn_curves[0].points = {{1e3F, 1000.0F}};
  ASSERT_EQ(WriteAndRun(), RunEnd::kComplete);
  EXPECT_THAT(Listing(), HasSubstr("         S - N   C U R V E  #     1\n\n\n"
                                   "(Material set #    1; Stress ratio:-1.00)\n"
                                   "  POINT No.   No. of Cycles     Alt. Stress\n"
                                   "  ---------   -------------     -----------\n"
                                   "     1        0.100E+04         0.100E+04\n"
                                   "\n\n\nF A T I G U E   C A L C U L A T I O N   R E S U L T S:\n\n\n"));
  EXPECT_THAT(Listing(), EndsWith("     3       2        4       2              0.10000E+03\n"
                                  " No usage factor evaluated (Improper S-N curve, i.e., atleast\n"
                                  "  2 pts. on the curve must be defined)\n\n\n"
                                  "T O T A L   S O L U T I O N   T I M E . . . . . .=     0 Seconds\n"));
  EXPECT_FALSE(services.Showed(9053));
  ASSERT_GE(services.shown.size(), 2U);
  EXPECT_EQ(services.shown[services.shown.size() - 2].message, 9063);
  EXPECT_EQ(services.shown.back().message, 9064);
}

}  // namespace
}  // namespace zentor
