#include "fatigue/reversals.h"

#include <cmath>
#include <random>
#include <vector>

#include "gmock/gmock.h"
#include "gtest/gtest.h"

namespace zentor {
namespace {

using ::testing::ElementsAre;
using Values = std::vector<float>;

struct Reduced {
  Values reversals;
  std::vector<std::int32_t> map;
  HistoryCondition condition;
};

Reduced Reduce(const Values& values, float threshold) {
  Reduced r{Values(values.size()), std::vector<std::int32_t>(values.size()), HistoryCondition::kNone};
  const ReversalCount mapped = ExtractReversalsWithMap(values, threshold, r.reversals, r.map);
  r.reversals.resize(mapped.count);
  r.condition = mapped.condition;
  Values in_place = values;  // the form without a map, over its own input
  in_place.resize(ExtractReversals(in_place, threshold, in_place).count);
  EXPECT_EQ(in_place, r.reversals);
  return r;
}

TEST(FilterThreshold, IsAPercentageOfTheLargestMagnitudeInSinglePrecision) {
  EXPECT_EQ(FilterThreshold(Values{3, -200, 150}, 10), 20.0F);
  EXPECT_EQ(FilterThreshold(Values{3, -200, 150}, 0), 0.0F);
  EXPECT_EQ(FilterThreshold(Values{3, -200, 150}, 1e-20F), 0.0F);
  const Values values = {0.1F, 0.7F};
  EXPECT_EQ(FilterThreshold(values, 7), 7.0F * 0.7F / 100.0F);
  Values longer(37, 1.0F);  // past the vector part of the search
  longer[36] = -9;
  EXPECT_EQ(FilterThreshold(longer, 100), 9.0F);
}

TEST(ExtractReversals, MapsEveryPointToTheReversalAtOrBeforeIt) {
  const Reduced r = Reduce({0, 2, 2, 1, 3}, 0);
  EXPECT_THAT(r.reversals, ElementsAre(0, 2, 1, 3));
  EXPECT_THAT(r.map, ElementsAre(1, 1, 1, 2, 4));
}

TEST(ExtractReversals, KeepsTurnsOfExactlyTheThreshold) {
  EXPECT_THAT(Reduce({0, 200, 180, 200, 0}, 20).reversals, ElementsAre(0, 200, 180, 200, 0));
  EXPECT_THAT(Reduce({0, 200, 180.5F, 200, 0}, 20).reversals, ElementsAre(0, 200, 0));
}

TEST(ExtractReversals, MeasuresATurnFromTheExtremeAndNotFromTheLastPoint) {
  // Falls in steps of 6: each is below the threshold, together they are not.
  EXPECT_THAT(Reduce({0, 50, 44, 38, 32, 60}, 15).reversals, ElementsAre(0, 50, 32, 60));
}

TEST(ExtractReversals, SkipsEqualValuesAtTheStart) {
  EXPECT_THAT(Reduce({4, 4, 4, 1, 1, 2}, 0).reversals, ElementsAre(4, 1, 2));
}

TEST(ExtractReversals, ReportsAConstantHistory) {
  EXPECT_EQ(Reduce({5, 5, 5}, 0).condition, HistoryCondition::kConstant);
  EXPECT_EQ(Reduce({5}, 0).condition, HistoryCondition::kConstant);
  EXPECT_EQ(ExtractReversals({}, 0, {}).condition, HistoryCondition::kConstant);
}

TEST(ExtractReversals, WritesNoMoreReversalsThanPointsWhateverTheValues) {
  for (std::size_t mask = 0; mask < 512; ++mask) {
    Values values(9);
    for (std::size_t k = 0; k < values.size(); ++k)
      values[k] = (mask >> k) % 2 == 0 ? NAN : static_cast<float>(k % 2);
    EXPECT_LE(ExtractReversals(values, 0, values).count, values.size()) << mask;
  }
}

// After the first range every swing reaches the threshold, peaks and valleys alternate, and nothing beyond
// the threshold is lost: no point of the history lies further outside the reversals than the threshold.
TEST(ExtractReversals, LeavesSwingsOfAtLeastTheThreshold) {
  for (unsigned seed = 1; seed <= 50; ++seed) {
    std::mt19937 random(seed);
    Values history(300);
    for (float& v : history) v = static_cast<float>(random() % 1000);
    const float threshold = static_cast<float>(random() % 400);
    const Values z = Reduce(history, threshold).reversals;
    for (std::size_t i = 2; i < z.size(); ++i) {
      EXPECT_GE(std::fabs(z[i] - z[i - 1]), threshold) << "seed " << seed << ", reversal " << i;
      EXPECT_LT((z[i] - z[i - 1]) * (z[i - 1] - z[i - 2]), 0) << "seed " << seed << ", reversal " << i;
    }
    const auto [low, high] = std::minmax_element(history.begin(), history.end());
    const auto [lowest, highest] = std::minmax_element(z.begin(), z.end());
    EXPECT_LE(*lowest - *low, threshold) << "seed " << seed;
    EXPECT_LE(*high - *highest, threshold) << "seed " << seed;
  }
}

}  // namespace
}  // namespace zentor
