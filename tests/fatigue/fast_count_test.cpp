// The fast forms of reduction and counting against their point-by-point statements, to the last count.
#include <bit>
#include <cmath>
#include <functional>
#include <random>
#include <vector>

#include "fatigue/inner_cycles.h"
#include "fatigue/lane_masks.h"
#include "fatigue/rainflow.h"
#include "fatigue/reversals.h"
#include "gtest/gtest.h"

namespace zentor {
namespace {

using Values = std::vector<float>;

struct Signal {
  const char* name;
  std::function<Values(unsigned seed, std::size_t n)> make;
};

Values Draw(unsigned seed, std::size_t n, const std::function<float(std::mt19937&, std::size_t)>& next) {
  std::mt19937 random(seed);
  Values v(n);
  for (std::size_t i = 0; i < n; ++i) v[i] = next(random, i);
  return v;
}

Values Noise(unsigned seed, std::size_t n) {
  std::normal_distribution<float> normal;
  return Draw(seed, n, [&](std::mt19937& random, std::size_t) { return normal(random); });
}
Values Walk(unsigned seed, std::size_t n) {
  std::normal_distribution<float> normal;
  float sum = 0.0F;
  return Draw(seed, n, [&](std::mt19937& random, std::size_t) { return sum += normal(random); });
}
Values Smooth(unsigned seed, std::size_t n) {
  return Draw(seed, n, [&](std::mt19937&, std::size_t i) {
    const float t = static_cast<float>(i) * 0.08F + static_cast<float>(seed);
    return std::sin(t) * (1 + 0.5F * std::sin(t * 0.0137F));
  });
}
// Few different values: plateaus and equal ranges everywhere.
Values Steps(unsigned seed, std::size_t n) {
  return Draw(seed, n, [](std::mt19937& random, std::size_t) { return static_cast<float>(random() % 5); });
}
// Ranges whose differences are rounded: equal as the kernel sees them, but not between equal points.
Values Rounded(unsigned seed, std::size_t n) {
  return Draw(seed, n, [](std::mt19937& random, std::size_t i) {
    const float size = 16777216.0F + 2.0F * static_cast<float>(random() % 8);
    return i % 2 == 0 ? size : -size;
  });
}
Values Swelling(unsigned seed, std::size_t n) {
  return Draw(seed, n, [&](std::mt19937& random, std::size_t i) {
    const float size = static_cast<float>(i < n / 2 ? i : n - i) + static_cast<float>(random() % 3);
    return i % 2 == 0 ? size : -size;
  });
}

class FastCount : public testing::TestWithParam<Signal> {};

TEST_P(FastCount, ReductionAndCountAreThoseOfTheStatements) {
  for (const std::size_t n : {2U, 3U, 63U, 64U, 65U, 66U, 130U, 2049U, 2050U, 2051U, 20011U}) {
    for (unsigned seed = 1; seed <= (n < 1000 ? 40U : 6U); ++seed) {
      const Values history = GetParam().make(seed, n);
      for (const float percent : {0.0F, 3.0F, 30.0F}) {
        const float threshold = FilterThreshold(history, percent);
        Values expected(n);
        Values reversals = history;  // in place
        expected.resize(ExtractReversalsByPoint(history, threshold, expected).count);
        reversals.resize(ExtractReversals(reversals, threshold, reversals).count);
        ASSERT_EQ(reversals, expected) << n << " points, seed " << seed << ", filter " << percent;
        if (expected.empty()) continue;
        RainflowState state;
        RangeMeanMatrix statement;
        RangeMeanMatrix fast;
        ASSERT_EQ(CountHistoryByPoint(200, 150, expected, state, statement), HistoryCondition::kNone);
        ASSERT_EQ(CountHistory(200, 150, expected, state, fast), HistoryCondition::kNone);
        ASSERT_EQ(fast.counts, statement.counts) << n << " points, seed " << seed << ", filter " << percent;
        ASSERT_EQ(fast.cycles_reading, statement.cycles_reading) << n << " points, seed " << seed;
        ASSERT_EQ(fast.cycles_closing, statement.cycles_closing) << n << " points, seed " << seed;
      }
    }
  }
}

// Histories that were not reduced before, as a shared history may be: plateaus and points that are no
// reversals.
TEST_P(FastCount, UnreducedHistoriesCountAlike) {
  for (unsigned seed = 1; seed <= 10; ++seed) {
    const Values history = GetParam().make(seed, 5000);
    RainflowState state;
    RangeMeanMatrix statement;
    RangeMeanMatrix fast;
    const HistoryCondition condition = CountHistoryByPoint(30, 40, history, state, statement);
    ASSERT_EQ(CountHistory(30, 40, history, state, fast), condition) << seed;
    ASSERT_EQ(fast.counts, statement.counts) << seed;
  }
}

INSTANTIATE_TEST_SUITE_P(Signals, FastCount,
                         testing::Values(Signal{"Noise", Noise}, Signal{"Walk", Walk},
                                         Signal{"Smooth", Smooth}, Signal{"Steps", Steps},
                                         Signal{"Rounded", Rounded}, Signal{"Swelling", Swelling}),
                         [](const auto& signal) { return std::string(signal.param.name); });

// Among hundreds of ignored turns, one that reaches the threshold exactly and one that passes the candidate.
TEST(ExtractReversals, SkippedRunsEndAtTheThresholdAndAtANewExtreme) {
  for (const float special : {80.0F, 101.0F}) {
    for (std::size_t place = 3; place < 400; place += 7) {
      Values history = {0};
      while (history.size() < 500) history.push_back(history.size() % 2 == 1 ? 99.0F : 90.0F);
      history[1] = 100;
      history[place + (special > 100 ? place % 2 == 0 : place % 2 == 1)] = special;
      Values expected(history.size());
      expected.resize(ExtractReversalsByPoint(history, 20, expected).count);
      history.resize(ExtractReversals(history, 20, history).count);
      ASSERT_EQ(history, expected) << "value " << special << ", place " << place;
    }
  }
}

TEST(LaneMasks, TheFastestFormGivesTheBitsOfThePortableOne) {
  std::mt19937_64 random(1);
  const LaneMasks& portable = RunnableLaneMasks().front();
  Values a(kMaskBits);
  Values b(kMaskBits);
  for (int round = 0; round < 2000; ++round) {
    std::uint64_t expected_greater = 0;
    std::uint64_t expected_equal = 0;
    for (std::size_t k = 0; k < kMaskBits; ++k) {
      a[k] = random() % 20 == 0 ? std::nanf("") : static_cast<float>(random() % 3);
      b[k] = static_cast<float>(random() % 3);
      expected_greater |= static_cast<std::uint64_t>(a[k] > b[k]) << k;
      expected_equal |= static_cast<std::uint64_t>(a[k] == b[k]) << k;
    }
    for (const LaneMasks& lanes : RunnableLaneMasks()) {
      ASSERT_EQ(lanes.greater(a.data(), b.data()), expected_greater);
      ASSERT_EQ(lanes.equal(a.data(), b.data()), expected_equal);
    }
    // Masks of every density, into a place of its own and over the source.
    std::uint64_t mask = random();
    for (int k = round % 5; k > 0; --k) mask &= random();
    Values expected(kMaskBits, -1.0F);
    const std::size_t count = portable.compress(b.data(), mask, expected.data());
    ASSERT_EQ(count, static_cast<std::size_t>(std::popcount(mask)));
    Values in_place = b;
    ASSERT_EQ(RunnableLaneMasks().back().compress(in_place.data(), mask, in_place.data()), count);
    expected.resize(count);
    in_place.resize(count);
    ASSERT_EQ(in_place, expected) << "mask " << mask;
  }
}

TEST(InnerCycles, TakesOutWhatItsNeighboursEnclose) {
  Values block = {0, 9, 3, 6, -1, 8, 2, 4, 1};
  for (float far = 20; block.size() < 20; far += 10) block.push_back(block.size() % 2 == 0 ? -far : far);
  InnerCycles work;
  TakeInnerCycles(block, work);
  ASSERT_EQ(work.cycles, 3U);
  const auto cycle = [&](std::size_t k) { return std::pair(work.first[k], work.second[k]); };
  EXPECT_EQ(cycle(0), std::pair(3.0F, 6.0F));
  EXPECT_EQ(cycle(1), std::pair(2.0F, 4.0F));
  EXPECT_EQ(cycle(2), std::pair(8.0F, 1.0F));  // once (2, 4) is gone
  EXPECT_EQ(work.count, block.size() - 6);
}

TEST(InnerCycles, LeavesABlockWithPlateausOrNaNWhole) {
  Values block = Noise(1, 100);
  for (std::size_t i = 0; i < block.size(); ++i) block[i] = (i % 2 == 0 ? 1.0F : -1.0F) * std::fabs(block[i]);
  InnerCycles work;
  TakeInnerCycles(block, work);
  ASSERT_GT(work.cycles, 0U);
  for (const float bad : {block[49], std::nanf("")}) {
    Values broken = block;
    broken[50] = bad;
    TakeInnerCycles(broken, work);
    EXPECT_EQ(work.cycles, 0U) << bad;
    EXPECT_EQ(work.count, broken.size()) << bad;
  }
}

}  // namespace
}  // namespace zentor
