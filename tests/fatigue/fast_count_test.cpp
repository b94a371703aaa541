// The fast forms of reduction and counting against their point-by-point statements, to the last count.
#include <bit>
#include <cmath>
#include <functional>
#include <random>
#include <vector>

#include "fatigue/extremes.h"
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
// Small swings on a large one: a filter ignores long runs of turns, but the candidate moves on.
Values Ripple(unsigned seed, std::size_t n) {
  Values v = Smooth(seed, n);
  const Values noise = Noise(seed, n);
  for (std::size_t i = 0; i < n; ++i) v[i] += 0.02F * noise[i];
  return v;
}
// Stretches of 64 points without a reversal, up to the threshold and to a new extreme.
Values Stretches(unsigned seed, std::size_t n) {
  return Draw(seed, n, [](std::mt19937& random, std::size_t i) {
    const float size = random() % 150 == 0 ? 30.0F + static_cast<float>(random() % 3) : 0.0F;
    return (i % 2 == 0 ? 100.0F : 90.0F) + (random() % 2 == 0 ? size : -size);
  });
}

class FastCount : public testing::TestWithParam<Signal> {};

void ExpectSameCounts(const RangeMeanMatrix& fast, const RangeMeanMatrix& statement) {
  EXPECT_EQ(fast.counts, statement.counts);
  EXPECT_EQ(fast.mean_centres, statement.mean_centres);
  EXPECT_EQ(fast.cycles_reading, statement.cycles_reading);
  EXPECT_EQ(fast.cycles_closing, statement.cycles_closing);
}

TEST_P(FastCount, ReductionAndCountAreThoseOfTheStatements) {
  RainflowState state;
  RangeMeanMatrix statement;
  RangeMeanMatrix fast;
  for (const std::size_t n : {2U, 3U, 63U, 64U, 65U, 66U, 130U, 2049U, 2050U, 2051U, 20011U}) {
    for (unsigned seed = 1; seed <= (n < 1000 ? 40U : 6U) && !HasFailure(); ++seed) {
      const Values history = GetParam().make(seed, n);
      for (const float percent : {0.0F, 0.5F, 3.0F, 8.0F, 30.0F}) {
        SCOPED_TRACE(testing::Message() << n << " points, seed " << seed << ", filter " << percent);
        const float threshold = FilterThresholdByPoint(history, percent);
        ASSERT_EQ(FilterThreshold(history, percent), threshold);
        Values expected(n);
        expected.resize(ExtractReversalsByPoint(history, threshold, expected).count);
        Values reversals;
        state.reader.Start(history, threshold);
        for (auto block = state.reader.Next(); !block.empty(); block = state.reader.Next()) {
          reversals.insert(reversals.end(), block.begin(), block.end());
        }
        ASSERT_EQ(reversals, expected);
        if (expected.empty()) continue;
        ASSERT_EQ(CountHistoryByPoint(200, 150, expected, state, statement), HistoryCondition::kNone);
        ASSERT_EQ(FilterAndCount(200, 150, percent, history, state, fast), HistoryCondition::kNone);
        ExpectSameCounts(fast, statement);
      }
      // Not reduced, as a shared history may be: plateaus and points that are no reversals.
      const HistoryCondition condition = CountHistoryByPoint(30, 40, history, state, statement);
      ASSERT_EQ(CountHistory(30, 40, history, state, fast), condition);
      ExpectSameCounts(fast, statement);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Signals, FastCount,
                         testing::Values(Signal{"Noise", Noise}, Signal{"Walk", Walk}, Signal{"Steps", Steps},
                                         Signal{"Rounded", Rounded}, Signal{"Ripple", Ripple},
                                         Signal{"Stretches", Stretches}),
                         [](const auto& signal) { return std::string(signal.param.name); });

TEST(LaneMasks, EveryFormGivesTheSameBits) {
  std::mt19937_64 random(1);
  Values a(kMaskBits + 1);
  Values b(kMaskBits);
  for (int round = 0; round < 2000; ++round) {
    std::uint64_t greater = 0;
    std::uint64_t equal = 0;
    std::uint64_t apart = 0;
    for (float& x : a) x = random() % 20 == 0 ? std::nanf("") : static_cast<float>(random() % 3);
    for (std::size_t k = 0; k < kMaskBits; ++k) {
      b[k] = static_cast<float>(random() % 3);
      greater |= static_cast<std::uint64_t>(a[k] > b[k]) << k;
      equal |= static_cast<std::uint64_t>(a[k] == b[k]) << k;
      apart |= static_cast<std::uint64_t>(!(std::fabs(a[k] - b[k]) < 2)) << k;
    }
    std::uint64_t marks = random();  // of every density
    for (int k = round % 5; k > 0; --k) marks &= random();
    Values marked;
    for (std::size_t k = 0; k < kMaskBits; ++k) {
      if ((marks >> k & 1U) != 0) marked.push_back(b[k]);
    }
    for (const LaneMasks& lanes : RunnableLaneMasks()) {
      ASSERT_EQ(lanes.greater(a.data(), b.data()), greater);
      ASSERT_EQ(lanes.equal(a.data(), b.data()), equal);
      ASSERT_EQ(lanes.apart(a.data(), b.data(), 2), apart);
      const StepMasks steps = lanes.steps(a.data() + 1);
      ASSERT_EQ(steps.rises, lanes.greater(a.data() + 1, a.data()));
      ASSERT_EQ(steps.stays, lanes.equal(a.data() + 1, a.data()));
      Values in_place = b;
      in_place.resize(lanes.compress(in_place.data(), marks, in_place.data()));
      ASSERT_EQ(in_place, marked) << "marks " << marks;
      Values with_start = {b[0]};
      with_start.insert(with_start.end(), a.begin() + 1, a.end());
      const Extremes expected = ExtremesByPoint(with_start);
      const Extremes extremes = lanes.extremes(a.data() + 1, kMaskBits, {b[0], b[0]});
      ASSERT_EQ(std::pair(extremes.largest, extremes.smallest),
                std::pair(expected.largest, expected.smallest));
    }
  }
}

}  // namespace
}  // namespace zentor
