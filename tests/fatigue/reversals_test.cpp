#include "fatigue/reversals.h"

#include <cmath>
#include <vector>

#include "fatigue/reversal_reader.h"
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
  Reduced r{values, std::vector<std::int32_t>(values.size()), HistoryCondition::kNone};
  const ReversalCount mapped = ExtractReversalsWithMap(values, threshold, r.reversals, r.map);
  r.reversals.resize(mapped.count);
  r.condition = mapped.condition;
  ReversalReader reader;
  EXPECT_EQ(reader.Start(values, threshold), r.condition);
  const std::span<const float> read = reader.Next();
  EXPECT_EQ(Values(read.begin(), read.end()), r.reversals);
  return r;
}

TEST(FilterThreshold, IsAPercentageOfTheLargestMagnitudeInSinglePrecision) {
  EXPECT_EQ(FilterThreshold(Values{3, -200, 150}, 10), 20.0F);
  EXPECT_EQ(FilterThreshold(Values{3, -200, 150}, 1e-20F), 0.0F);
  const Values values = {0.1F, 0.7F};
  EXPECT_EQ(FilterThreshold(values, 7), 7.0F * 0.7F / 100.0F);
}

struct ReductionCase {
  const char* name;
  Values history;
  float threshold;
  Values reversals;
};
class Reduction : public testing::TestWithParam<ReductionCase> {};
TEST_P(Reduction, GivesTheReversals) {
  EXPECT_EQ(Reduce(GetParam().history, GetParam().threshold).reversals, GetParam().reversals);
}
INSTANTIATE_TEST_SUITE_P(
    Histories, Reduction,
    testing::Values(
        ReductionCase{"TurnOfExactlyTheThreshold", {0, 200, 180, 200, 0}, 20, {0, 200, 180, 200, 0}},
        ReductionCase{"TurnBelowTheThreshold", {0, 200, 180.5F, 200, 0}, 20, {0, 200, 0}},
        // Falls in steps of 6: each is below the threshold, together they are not.
        ReductionCase{"MeasuredFromTheExtreme", {0, 50, 44, 38, 32, 60}, 15, {0, 50, 32, 60}},
        ReductionCase{"EqualValuesAtTheStart", {4, 4, 4, 1, 1, 2}, 0, {4, 1, 2}},
        ReductionCase{"Constant", {5, 5, 5}, 0, {}}, ReductionCase{"OnePoint", {5}, 0, {}}),
    [](const auto& reduction) { return std::string(reduction.param.name); });

TEST(ExtractReversals, MapsEveryPointToTheReversalAtOrBeforeIt) {
  const Reduced r = Reduce({0, 2, 2, 1, 3}, 0);
  EXPECT_THAT(r.reversals, ElementsAre(0, 2, 1, 3));
  EXPECT_THAT(r.map, ElementsAre(1, 1, 1, 2, 4));
  EXPECT_EQ(Reduce({5, 5, 5}, 0).condition, HistoryCondition::kConstant);
  EXPECT_EQ(Reduce({}, 0).condition, HistoryCondition::kConstant);
}

// Nonsense in, no more reversals than points out.
TEST(ReversalReader, GivesNoMoreReversalsThanPointsWhateverTheValues) {
  for (const float threshold : {0.0F, 0.5F}) {
    for (std::size_t mask = 0; mask < 512; ++mask) {
      Values values(200);
      for (std::size_t k = 0; k < values.size(); ++k) {
        values[k] = (mask >> k % 9) % 2 == 0 ? NAN : static_cast<float>(k % 2);
      }
      ReversalReader reader;
      reader.Start(values, threshold);
      std::size_t count = 0;
      for (auto block = reader.Next(); !block.empty(); block = reader.Next()) count += block.size();
      EXPECT_LE(count, values.size()) << mask;
    }
  }
}

}  // namespace
}  // namespace zentor
