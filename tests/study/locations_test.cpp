// Locations, sections and stored conditions: what is applied and what is echoed.
#include "study_input_fixture.h"

namespace zentor::test {
namespace {

class Locations : public StudyInput {};

TEST_F(Locations, Echo) {
  SetLocation(1, 0);  // without a node: not shown
  SetLocation(50, 3);
  ASSERT_EQ(Read(), Outcome::kComplete);
  EXPECT_TRUE(
      Lists("\nL O C A T I O N   P A R A M E T E R S:\n\n"
            " Locat.  Node    X       Y          Z       CS   SCFX      SCFY      SCFZ\n"
            " ------  ----  -----   ------     ------    --   ----      ----      ----\n"
            "   3      2  0.20E+02  0.25E+01  -.20E+01    7  0.150E+01 0.200E+01 0.300E+01\n"
            "  50      3  ........  ........  ........   ..  0.150E+01 0.200E+01 0.300E+01\n"
            " \n"
            " "));
}

// Section 2 has three locations, of which the first two count.
TEST_F(Locations, SectionsEcho) {
  SetLocation(2, 1, 2, 11, 0.0F, 1);
  SetLocation(3, 2, 2, 21, 0.0F, 0);
  SetLocation(4, 4, 2, 31, 0.0F, 0);
  SetLocation(6, 4, 5, 33, 12.5F, 1);
  ASSERT_EQ(Read(), Outcome::kComplete);
  EXPECT_TRUE(
      Lists("\n\n\nS E C T I O N   P A R A M E T E R S:\n\n"
            "              FIRST           SECOND       PATH    RADIUS OF   B. STRESS\n"
            " SECTION  LOCATION/NODE   LOCATION/NODE   POINTS   CURVATURE     FLAG\n"
            "    2         2      1        3      2      21     0.0000E+00    ---\n"
            "    5         6      4                      33     0.1250E+02      1\n\n\n\n"
            "S T R E S S   C O N D I T I O N S   S T O R E D"));
  EXPECT_EQ(study.location_section, 2);
}

TEST_F(Locations, StoredConditionsEcho) {
  SetElasticPlastic();
  SetLocation(1, 1);
  Store(1, 2, true, true, false, -1.0F);
  Store(kLocation, 1, false, false, true);
  Store(kLocation, 2, true, true, false);
  Store(kLocation, 7, true, true, true);  // a loading of no event
  Store(9, 1, true, true, true);          // a location that is not defined
  ASSERT_EQ(Read(), Outcome::kComplete);
  EXPECT_TRUE(
      ListsLast("\n\n\nA C T U A L   S T R E S S E S   S T O R E D\n"
                "B Y    C O M M A N D    F T S T R [ E A D ]:\n\n\n"
                " Stress Conditions For Loading   2:\n\n"
                "Locat.  SX       SY        SZ      TAU-XY    TAU-XZ    TAU-YZ\n"
                "---- --------  --------  --------  --------  --------  --------\n"
                "  1  -.10E+03  -.20E+03  -.30E+03  -.40E+03  -.50E+03  -.60E+03\n"
                "  3  0.10E+03  0.20E+03  0.30E+03  0.40E+03  0.50E+03  0.60E+03\n\n\n\n"
                "L I N E A R I Z E D   S T R E S S E S   S T O R E D\n"
                "B Y    C O M M A N D    F T S T R [ E A D ]:\n\n\n"
                " Stress Conditions For Loading   2:\n\n"
                "Locat.  SX       SY        SZ      TAU-XY\n"
                "---- --------  --------  --------  -------\n"
                "  1  0.10E+02  0.20E+02  0.30E+02  0.40E+02\n"
                "  3  0.10E+02  0.20E+02  0.30E+02  0.40E+02\n\n\n\n"
                "N O D A L   T E M P E R A T U R E S   S T O R E D\n\n\n"
                "  Nodal Temperatures For Loading   1:\n\n"
                " Location     Nodal Temperature\n"
                " --------     -----------------\n"
                "     3               0.350E+03"));
}

TEST_F(Locations, StoredConditionsTakeThePlaceOfLoadCases) {
  SetElasticPlastic();
  SetLoading(1, 3, -1, 1.0F);
  Store(kLocation, 2, false, true, true);
  Store(kLocation, 3, true, false, false);
  Store(2, 1, true, true, true);  // of another location
  ASSERT_EQ(Read(), Outcome::kComplete);
  const AppliedConditions& c = study.conditions;
  EXPECT_EQ((std::array{c.stress_case[1], c.stress_case[2], c.stress_case[3]}), (std::array{1, 2, -2}));
  EXPECT_EQ((std::array{c.linearised_case[1], c.linearised_case[2], c.linearised_case[3]}),
            (std::array{1, -2, -1}));
  EXPECT_EQ(c.stress[3], (StressTensor{150.0, 400.0, 900.0, 400.0, 500.0, 600.0}));
  EXPECT_EQ(c.linearised[2], (LinearisedStress{10.0, 20.0, 30.0, 40.0}));
  EXPECT_EQ(c.temperature[2], 350.0);
}

}  // namespace
}  // namespace zentor::test
