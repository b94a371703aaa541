// Locations and stored conditions: what is applied.
#include "study_input_fixture.h"

namespace zentor::test {
namespace {

class Locations : public StudyInput {};

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
