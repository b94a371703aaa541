#include "stress/node_usage.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <memory>

#include "stress/mean_stress_correction.h"
#include "stress/pair_passes.h"
#include "stress/pair_stress.h"
#include "stress/random_usage.h"

namespace zentor {
namespace {

class NodeUsage : public ::testing::Test {
 protected:
  LocationResult AsStated(const StudyState& study, const LoadingStates& states, int material, bool answered) {
    LocationResult result;
    result.condition = EvaluatePairs(study, states, material, *pairs_);
    if (result.condition != LocationCondition::kNone) return result;
    return ConsumePairs(study, states, material, answered, *pairs_);
  }

  std::unique_ptr<PairArrays> pairs_ = std::make_unique<PairArrays>();
  std::unique_ptr<UsageWorkspace> work_ = std::make_unique<UsageWorkspace>();
};

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

TEST_F(NodeUsage, TheScalarStatementToTheLastBit) {
  for (unsigned seed = 1; seed <= 4000 && !HasFailure(); ++seed) {
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
        GatherStresses(plan, states, work_->stress);
        ExpectSame(EvaluateUsage(study, plan, material, answered, *work_, form), expected);
      }
    }
  }
}

PairStress ExactStress(const UsagePlan& plan, const LoadingStates& states, const PairStressRequest& request,
                       std::size_t p) {
  const PairTensors tensors = TensorsOfPair(states.stress[plan.loading[plan.first[p]]],
                                            states.stress[plan.loading[plan.second[p]]], request.kt);
  PairStress stress = EvaluatePairStress(request.alternating_type, tensors.difference, tensors.mean);
  CorrectMeanStress(request.correction, {request.strength, true}, stress.alternating, stress.mean);
  return stress;
}

// Strengths of all sizes, and ones that a pair's mean stress comes close to.
PairStressRequest RequestOf(const FatigueProperties& properties, const UsagePlan& plan,
                            const LoadingStates& states, test::RandomUsage& random) {
  PairStressRequest request = {properties.AlternatingStressType, kNoCorrection, 900.0,
                               properties.FatigueStrengthReductionFactor};
  if (plan.pairs > 0 && random.Pick(0, 1) == 0) {
    const double mean = std::abs(ExactStress(plan, states, request, 0).mean);
    const double near = mean * (1.0 + std::ldexp(random.Pick(-1, 1), -random.Pick(1, 50)));
    if (near > 0.0) request.strength = near;
  }
  request.correction = properties.MeanStressCorrection;
  return request;
}

// The loops over pairs keep to their error, and say so where they cannot; the forms agree to the last bit.
TEST_F(NodeUsage, ApproximateStressesWithinTheirError) {
  const auto other = std::make_unique<UsageWorkspace>();
  int decided = 0;
  for (unsigned seed = 1; seed <= 3000 && !HasFailure(); ++seed) {
    test::RandomUsage random(seed);
    const StudyState study = random.Study();
    const UsagePlan plan = MakeUsagePlan(study);
    const LoadingStates states = random.States();
    const PairStressRequest request = RequestOf(study.properties, plan, states, random);
    GatherStresses(plan, states, work_->stress);
    PassesOf(VectorForm::kBaseline).general(request, plan, work_->stress, work_->alternating);
    for (std::size_t p = 0; p < plan.pairs; ++p) {
      const double found = work_->alternating[p];
      if (found != found) continue;
      ++decided;
      const double exact = ExactStress(plan, states, request, p).alternating;
      ASSERT_LE(std::abs(found - exact), kStressError * std::abs(exact)) << "seed " << seed << " pair " << p;
    }
    for (const VectorForm form : {VectorForm::kBits256, VectorForm::kBits512}) {
      if (!RunsVectorForm(form)) continue;
      PassesOf(form).general(request, plan, work_->stress, other->alternating);
      for (std::size_t p = 0; p < plan.pairs; ++p) {
        ASSERT_TRUE(Same(other->alternating[p], work_->alternating[p])) << "seed " << seed << " pair " << p;
      }
    }
  }
  EXPECT_GT(decided, 30000);
}

}  // namespace
}  // namespace zentor
