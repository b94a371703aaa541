#include "fatigue/rainflow.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <vector>

#include "fatigue/closed_count.h"
#include "gtest/gtest.h"

namespace zentor {
namespace {

using test::Cycles;
using test::CyclesByDefinition;
using Values = std::vector<float>;

RangeMeanMatrix Counted(const Values& values, int range_bins, int mean_bins) {
  RainflowState state;
  RangeMeanMatrix matrix;
  EXPECT_EQ(CountHistory(range_bins, mean_bins, values, state, matrix), HistoryCondition::kNone);
  return matrix;
}

Values Reversals(Values history) {
  history.resize(ExtractReversalsByPoint(history, 0, history).count);
  return history;
}

// Whole numbers of 0 .. span, both ends among them: with span + 1 range bins and 2 span + 1 mean bins every
// range and every mean has a bin of its own, so a matrix can be read back as cycles without loss.
Values WholeNumbers(unsigned seed, std::size_t length, unsigned span) {
  std::mt19937 random(seed);
  Values history(length);
  for (float& v : history) v = static_cast<float>(random() % (span + 1));
  const std::size_t bottom = random() % length;
  history[bottom] = 0;
  history[(bottom + 1 + random() % (length - 1)) % length] = static_cast<float>(span);
  return history;
}

RangeMeanMatrix CountedExactly(const Values& history, int span) {
  return Counted(Reversals(history), span + 1, 2 * span + 1);
}

Cycles CyclesOf(const RangeMeanMatrix& m) {
  Cycles cycles;
  for (int i = 1; i <= m.range_bins; ++i) {
    for (int j = 1; j <= m.mean_bins; ++j) {
      if (m.Count(i, j) > 0) cycles[{m.range_centres[i - 1], m.mean_centres[j - 1]}] = m.Count(i, j);
    }
  }
  return cycles;
}

struct RandomCase {
  std::size_t length;
  unsigned span;
  unsigned seeds;
};
class RainflowAgainstDefinition : public testing::TestWithParam<RandomCase> {};

TEST_P(RainflowAgainstDefinition, GivesTheSameCycles) {
  const auto [length, span, seeds] = GetParam();
  for (unsigned seed = 1; seed <= seeds; ++seed) {
    const Values history = WholeNumbers(seed, length, span);
    ASSERT_EQ(CyclesOf(CountedExactly(history, static_cast<int>(span))), CyclesByDefinition(history))
        << "seed " << seed << ", length " << length << ", span " << span;
  }
}
INSTANTIATE_TEST_SUITE_P(Histories, RainflowAgainstDefinition,
                         testing::Values(RandomCase{2, 1, 3}, RandomCase{4, 3, 200}, RandomCase{6, 2, 500},
                                         RandomCase{9, 4, 1000}, RandomCase{25, 3, 500},
                                         RandomCase{60, 99, 300}, RandomCase{400, 40, 30}));

TEST(Rainflow, ASwellingHistoryGrowsTheStack) {
  Values history;
  for (int k = 1; k <= 90000; ++k) history.push_back(static_cast<float>(k % 2 == 0 ? k : -k));
  const RangeMeanMatrix m = Counted(history, 10, 10);
  EXPECT_EQ(m.cycles_reading, 0);
  EXPECT_EQ(m.cycles_closing, 45000);
}

TEST(Rainflow, EveryCycleStaysInsideTheMatrix) {
  const RangeMeanMatrix one = Counted(Reversals(WholeNumbers(3, 200, 50)), 1, 1);
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
