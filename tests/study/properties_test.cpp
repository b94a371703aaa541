// The options: where they are read, how they are normalised and echoed.
#include "study_input_fixture.h"

namespace zentor::test {
namespace {

class Properties : public StudyInput {};

using P = FatigueProperties;

TEST_F(Properties, AreReadFromTheMasterTable) {
  const std::tuple<std::int32_t P::*, MasterField, std::int32_t> options[] = {
      {&P::StudyType, {3, 48}, 1},
      {&P::AlternatingStressType, {32, 72}, 2},
      {&P::EventInteraction, {33, 2}, 1},
      {&P::SharedHistory, {33, 6}, 1},
      {&P::MeanStressCorrection, {32, 73}, 3},
      {&P::RangeBinCount, {33, 8}, 40},
      {&P::MeanBinCount, {33, 9}, 30},
      {&P::SnInterpolationDefault, {32, 80}, 1},
      {&P::ShellSurface, {3, 70}, 2},
      {&P::ShellLayer, {3, 71}, 4}};
  for (const auto& [option, field, value] : options) SetMaster(mas, field, value);
  SetMasterReal(mas, {33, 3}, 1.25F);
  SetMasterReal(mas, {33, 11}, 1e7F);
  SetMaster(mas, {33, 12}, 12);
  SetMaster(mas, {33, 21}, 1);
  ASSERT_EQ(Read(), Outcome::kComplete);
  const P& p = study.properties;
  for (const auto& [option, field, value] : options)
    EXPECT_EQ(p.*option, value) << field.entity << ", " << field.field;
  EXPECT_EQ(std::tuple(p.FatigueStrengthReductionFactor, p.InfiniteLifeValue, p.FilterPercent, p.PointerWidth,
                       p.ActivatedLocation),
            std::tuple(1.25F, 1e7F, 12.0F, 2, kLocation));
}

TEST_F(Properties, OfAMultiStudyAreReadFromTheDefinitionTable) {
  const std::tuple<std::int32_t P::*, int, std::int32_t> options[] = {
      {&P::AlternatingStressType, 2, 1}, {&P::EventInteraction, 3, 1},     {&P::SharedHistory, 7, 2},
      {&P::ShellSurface, 7, 2},          {&P::MeanStressCorrection, 8, 2}, {&P::RangeBinCount, 9, 20},
      {&P::MeanBinCount, 10, 10}};
  MakeMultiStudy();
  SetMaster(mas, master::kAlternatingStressType, 2);  // not what such a study uses
  for (const auto& [option, field, value] : options) ftc.SetInt(60, field, value);
  ftc.SetReal(60, 4, 1.5F);
  ftc.SetReal(60, 12, 2e6F);
  ftc.SetInt(60, 13, 5);
  ASSERT_EQ(Read(), Outcome::kComplete);
  const P& p = study.properties;
  for (const auto& [option, field, value] : options) EXPECT_EQ(p.*option, value) << field;
  EXPECT_EQ(std::tuple(p.StudyType, p.FatigueStrengthReductionFactor, p.InfiniteLifeValue, p.FilterPercent,
                       p.ActivatedLocation),
            std::tuple(6, 1.5F, 2e6F, 5.0F, kAllNodes));
}

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

TEST_F(Properties, EchoOfAVariableAmplitudeRunOfAllNodes) {
  MakeVariableAmplitude();
  ftc.SetInt(103, 3, kAllNodes);
  SetMaster(mas, master::kFilterPercent, 12);
  SetMasterReal(mas, master::kInfiniteLifeValue, 1e-9F);
  ASSERT_EQ(Read(), Outcome::kComplete);
  EXPECT_TRUE(
      Lists("\n\nNumber of Bins  . . . . . . . . . . . . . . . . . . =      25\n\n\n"
            "Filter(%) . . . . . . . . . . . . . . . . . . . . . =      12\n\n\n"
            "Alternating Stress  . . . . . . . . . . . . . . . . =       1"));
  EXPECT_TRUE(
      Lists("Infinite Life . . . . . . . . . . . . . . . . . . . =       0\n"
            "       EQ. 0, Not Defined\n"
            "       EQ. 1, Defined\n\n\n\n\n\n"
            "         S - N   C U R V E  #     1"));
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
