#include "fatigue/rainflow.h"

#include <numeric>
#include <vector>

#include "gtest/gtest.h"

namespace zentor {
namespace {

using Values = std::vector<float>;

RangeMeanMatrix Counted(const Values& values, int range_bins, int mean_bins) {
  RainflowState state;
  RangeMeanMatrix matrix;
  EXPECT_EQ(CountHistory(range_bins, mean_bins, values, state, matrix), HistoryCondition::kNone);
  return matrix;
}

TEST(Rainflow, ASwellingHistoryGrowsTheStack) {
  Values history;
  for (int k = 1; k <= 90000; ++k) history.push_back(static_cast<float>(k % 2 == 0 ? k : -k));
  const RangeMeanMatrix m = Counted(history, 10, 10);
  EXPECT_EQ(m.cycles_reading, 0);
  EXPECT_EQ(m.cycles_closing, 45000);
}

TEST(Rainflow, EveryCycleStaysInsideTheMatrix) {
  const RangeMeanMatrix one = Counted({0, 50, 20, 30, 10, 50, 0, 7}, 1, 1);
  EXPECT_EQ(one.Count(1, 1), one.TotalCycles());
  EXPECT_EQ(one.range_centres[0], 0.0F);
  // A span beyond single precision.
  const RangeMeanMatrix m = Counted({-3e38F, 3e38F, -1e38F, 2e38F, -3e38F, 3e38F}, 7, 5);
  EXPECT_EQ(std::accumulate(m.counts.begin(), m.counts.end(), 0), m.TotalCycles());
}

TEST(Rainflow, EqualFirstValuesCannotStartACount) {
  RainflowState state;
  RangeMeanMatrix m;
  EXPECT_EQ(CountHistory(3, 3, Values{2, 2, 5}, state, m), HistoryCondition::kFirstEqual);
  EXPECT_EQ(CountHistory(3, 3, Values{2}, state, m), HistoryCondition::kFirstEqual);
  EXPECT_EQ(FilterAndCount(3, 3, 0, Values{2, 2, 5, 1}, state, m), HistoryCondition::kNone);
  EXPECT_EQ(m.TotalCycles(), 1);
  EXPECT_EQ(FilterAndCount(3, 3, 0, Values{0, 0, 0}, state, m), HistoryCondition::kConstant);
}

}  // namespace
}  // namespace zentor
