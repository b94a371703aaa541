#include "stress/node_usage.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <memory>

#include "stress/random_usage.h"

namespace zentor {
namespace {

LocationResult AsStated(const StudyState& study, const LoadingStates& states, int material, bool answered) {
  const auto pairs = std::make_unique<PairArrays>();
  LocationResult result;
  result.condition = EvaluatePairs(study, states, material, *pairs);
  if (result.condition != LocationCondition::kNone) return result;
  return ConsumePairs(study, states, material, answered, *pairs);
}

// Equal bits, or both no number.
bool Same(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (a != a && b != b);
}

void ExpectSame(const LocationResult& found, const LocationResult& expected) {
  EXPECT_TRUE(Same(found.usage, expected.usage)) << found.usage << " " << expected.usage;
  EXPECT_TRUE(Same(found.biaxiality, expected.biaxiality)) << found.biaxiality << " " << expected.biaxiality;
  EXPECT_TRUE(Same(found.life_sum, expected.life_sum)) << found.life_sum << " " << expected.life_sum;
  EXPECT_TRUE(Same(found.smallest_stress_factor, expected.smallest_stress_factor));
  EXPECT_EQ(found.any_used, expected.any_used);
  EXPECT_EQ(found.condition, expected.condition);
  EXPECT_EQ(found.argument, expected.argument);
}

TEST(NodeUsage, TheScalarStatementToTheLastBit) {
  const auto work = std::make_unique<UsageWorkspace>();
  for (unsigned seed = 1; seed <= 3000 && !HasFailure(); ++seed) {
    test::RandomUsage random(seed);
    const StudyState study = random.Study();
    const UsagePlan plan = MakeUsagePlan(study);
    for (int node = 0; node < 3; ++node) {
      const LoadingStates states = random.States();
      const int material = random.Pick(0, 8) == 0 ? random.Pick(0, 2) : 1;
      const bool answered = random.Pick(0, 1) == 1;
      const LocationResult expected = AsStated(study, states, material, answered);
      for (const VectorForm form : kVectorForms) {
        if (!RunsVectorForm(form)) continue;
        SCOPED_TRACE(testing::Message()
                     << "seed " << seed << " node " << node << " form " << static_cast<int>(form));
        GatherStresses(plan, states, work->stress);
        ExpectSame(EvaluateUsage(study, plan, material, answered, *work, form), expected);
      }
    }
  }
}

}  // namespace
}  // namespace zentor
