// S-N curves: layouts, sets, preparation for lookup, echo.
#include "study_input_fixture.h"

namespace zentor::test {
namespace {

class SnCurves : public StudyInput {};

TEST_F(SnCurves, ValuesBelowTheSmallestAreRaisedButEchoedAsRead) {
  SetCurve(1, 1, {{0.0F, 10.0F}, {1.0F, -1.0F}, {2.0F, -5.0F}});
  ASSERT_EQ(Read(), Outcome::kComplete);
  const SnCurve& curve = study.sn_curves.sets[1].at(0);
  EXPECT_EQ(curve.first_cycles, 1e-20);
  EXPECT_EQ(curve.last_stress, 1e-20);
  EXPECT_TRUE(ListingHas("     3        0.200E+01        -0.500E+01"));
}

// Which set serves the study, by how many sets there are and which of them have curves.
TEST_F(SnCurves, StudyWideSet) {
  struct Case {
    int materials;
    std::vector<int> sets;  // of slots 1, 2, ...
    int study_wide, sets_kept;
  };
  for (const Case& c : {Case{1, {1}, 0, 1}, Case{3, {1}, 1, 3}, Case{3, {3, 2, 1, 4, 0}, 3, 3},
                        Case{0, {1, 10, 11}, 10, 10}, Case{2, {}, 0, 2}}) {
    mat = TableBuilder(90, 12);
    for (int m = 1; m <= c.materials; ++m) SetMaterial(m, 250.0F, 400.0F);
    with_materials = c.materials > 0;
    RemoveFile(".MAT");
    for (int slot = 1; slot <= 10; ++slot) ftc.SetInt(97, slot + 7, 0);
    int slot = 0;
    for (const int set : c.sets) SetCurve(++slot, set, {{1.0F, 2.0F}, {10.0F, 1.0F}});
    ASSERT_EQ(Read(), Outcome::kComplete);
    EXPECT_EQ(study.sn_curves.study_wide_set, c.study_wide) << c.materials << " materials";
    EXPECT_EQ(study.sn_curves.sets.size(), c.sets_kept);
  }
}

TEST_F(SnCurves, MultiStudyLayoutReadsCurveEntities) {
  MakeMultiStudy();
  SetMaterial(2, 250.0F, 400.0F);
  SetListedCurve(1, 2, 1, {{1e3F, 100.0F}, {1e6F, 10.0F}});
  SetListedCurve(3, 9, 0, {{1.0F, 1.0F}, {2.0F, 1.0F}});  // a set that the study does not have
  SetListedCurve(4, 2, 2, {{50.0F, 20.0F}});
  ASSERT_EQ(Read(), Outcome::kComplete);
  EXPECT_EQ(study.sn_curves.study_wide_set, 2);
  ASSERT_EQ(study.sn_curves.sets[2].size(), 2U);
  EXPECT_EQ(study.sn_curves.sets[2][0].x, (std::vector<double>{3.0, 6.0}));
  EXPECT_EQ(study.sn_curves.sets[2][1].number, 4);
  EXPECT_EQ(study.sn_curves.sets[2][1].y, std::vector<double>{20.0});
}

TEST_F(SnCurves, MorePointsThanTheRecordHoldsIsAFault) {
  ftc.SetInt(97, 8, 60);
  EXPECT_EQ(FaultIn(".FTC"), "entity 97, field 8 is 60, expected 0 to 59 points");
  MakeMultiStudy();
  snc.SetInt(1, 10, 16);
  EXPECT_EQ(FaultIn(".SNC"), "entity 1, field 10 is 16, expected 0 to 15 points");
}

}  // namespace
}  // namespace zentor::test
