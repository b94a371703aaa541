// The options: how they are normalised, and what cannot be used.
#include "study_input_fixture.h"

namespace zentor::test {
namespace {

class Properties : public StudyInput {};

using P = FatigueProperties;

TEST_F(Properties, BinCountsAndReductionFactorHaveDefaults) {
  const int cases[][4] = {{0, 0, 25, 25}, {40, 0, 40, 40}, {200, 200, 200, 200}};
  for (const auto& [range, mean, range_after, mean_after] : cases) {
    SetMaster(mas, master::kRangeBinCount, range);
    SetMaster(mas, master::kMeanBinCount, mean);
    ASSERT_EQ(Read(), Outcome::kComplete);
    EXPECT_EQ(study.properties.RangeBinCount, range_after) << range << ", " << mean;
    EXPECT_EQ(study.properties.MeanBinCount, mean_after) << range << ", " << mean;
  }
  SetMasterReal(mas, master::kStrengthReductionFactor, 1e-17F);
  ASSERT_EQ(Read(), Outcome::kComplete);
  EXPECT_EQ(study.properties.FatigueStrengthReductionFactor, 1.0F);
}

TEST_F(Properties, UnusableValuesAreFaultsThatNameTheField) {
  ftc.SetInt(103, 3, 51);
  EXPECT_EQ(FaultIn(".FTC"), "entity 103, field 3 is 51, expected a location of 1 to 50, or -1");
  ftc.SetInt(103, 3, kLocation);
  SetMasterReal(mas, master::kStrengthReductionFactor, kNaN);
  EXPECT_EQ(FaultIn(".MAS"), "fatigue strength reduction factor is nan, expected a finite number");
}

}  // namespace
}  // namespace zentor::test
