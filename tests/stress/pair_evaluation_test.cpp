#include "stress/pair_evaluation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <random>
#include <tuple>
#include <vector>

#include "stress/pair_steps.h"
#include "stress/pair_stress.h"
#include "stress/sn_lookup.h"
#include "stress/study_parts.h"

namespace zentor {
namespace {

using test::MakeCurve;
using test::SetEvent;
using test::SetLoading;

// Alternating stresses chosen directly; all but the named pairs join different events.
struct GroupCase {
  std::vector<double> stresses;
  std::vector<int> same_event;  // indices
  std::vector<int> expected;
};
TEST(SortPairs, SameEventPairsWithinOnePerCent) {
  const GroupCase cases[] = {
      {{100, 99.5, 99.2}, {2}, {2, 1, 0}},     // only the two change places
      {{100, 99.5, 99.2}, {1, 2}, {1, 0, 2}},  // with the first of them
      {{100, 99.5, 99.2}, {0, 2}, {0, 1, 2}},  // the leader is one already
      {{100, 99.000001, 98.0}, {1}, {1, 0, 2}},
      {{100, 99.0, 98.5}, {1}, {0, 1, 2}},           // 0.99 in single precision is slightly more than 0.99
      {{100, 99.5, 98.8, 98.5}, {3}, {0, 1, 3, 2}},  // 98.8 leads the second group, not 99.5
      {{0, 0, 0}, {2}, {0, 1, 2}},                   // zeros are not above 0.99 times zero
      {{98, 100, 98, 100}, {2}, {1, 3, 2, 0}},       // equal stresses keep their order before
  };
  const auto pairs = std::make_unique<PairArrays>();
  for (const GroupCase& c : cases) {
    pairs->count = static_cast<int>(c.stresses.size());
    for (int p = 0; p < pairs->count; ++p) {
      pairs->alternating[p] = c.stresses[p];
      pairs->first_loading[p] = p;
      pairs->first_event[p] = 1;
      const bool same = std::count(c.same_event.begin(), c.same_event.end(), p) != 0;
      pairs->second_event[p] = same ? 1 : 2;
    }
    SortPairs(true, false, *pairs);
    for (int p = 0; p < pairs->count; ++p) {
      EXPECT_EQ(pairs->first_loading[p], c.expected[p]) << "case " << &c - cases << " place " << p;
      EXPECT_EQ(pairs->alternating[p], c.stresses[c.expected[p]]);
    }
  }
}

// The whole evaluation once more, pair by pair, from the definition: an insertion sort of whole entries, a
// map of remaining cycles.
struct SlowPair {
  int first = 0, second = 0, first_event = 0, second_event = 0, used = 0;
  PairStress stress;
  double allowed = 0, partial = 0;
};

std::vector<SlowPair> SlowPairs(const StudyState& study, const LoadingStates& states, int material) {
  std::vector<SlowPair> pairs;
  for (int i = 1; i <= kMaxLoadings; ++i) {
    for (int j = i + 1; j <= kMaxLoadings; ++j) {
      const int e1 = study.definition.loadings[i].event;
      const int e2 = study.definition.loadings[j].event;
      if (e1 < 1 || e2 < 1 || (study.properties.EventInteraction == 1 && e1 != e2)) continue;
      StressTensor difference;
      StressTensor mean;
      for (int c = 0; c < 6; ++c) {
        difference[c] = (states.stress[i][c] - states.stress[j][c]) /
                        double{study.properties.FatigueStrengthReductionFactor};
        mean[c] = (states.stress[i][c] + states.stress[j][c]) * 0.5;
      }
      SlowPair pair{i,  j, e1,
                    e2, 0, EvaluatePairStress(study.properties.AlternatingStressType, difference, mean)};
      CorrectMeanStress(study.properties.MeanStressCorrection, StrengthOf(study, material),
                        pair.stress.alternating, pair.stress.mean);
      pairs.push_back(pair);
    }
  }
  return pairs;
}

void SlowSort(bool prefer_same_event, std::vector<SlowPair>& pairs) {
  for (std::size_t i = 1; i < pairs.size(); ++i) {
    for (std::size_t k = i; k > 0 && pairs[k - 1].stress.alternating < pairs[k].stress.alternating; --k) {
      std::swap(pairs[k - 1], pairs[k]);
    }
  }
  if (!prefer_same_event) return;
  for (auto leader = pairs.begin(); leader != pairs.end();) {
    const double limit = double{0.99F} * leader->stress.alternating;
    const auto end =
        std::find_if(leader + 1, pairs.end(), [&](auto& p) { return !(p.stress.alternating > limit); });
    const auto same = std::find_if(leader, end, [](auto& p) { return p.first_event == p.second_event; });
    if (same != end) std::iter_swap(leader, same);
    leader = end;
  }
}

LocationResult SlowUsage(const StudyState& study, int material, std::vector<SlowPair>& pairs) {
  LocationResult result;
  std::map<int, int> left;
  for (const SlowPair& p : pairs) left[p.first_event] = study.definition.events[p.first_event].cycles;
  for (const SlowPair& p : pairs) left[p.second_event] = study.definition.events[p.second_event].cycles;
  double weighted = 0;
  double cycles = 0;
  for (SlowPair& p : pairs) {
    p.used = std::min(left[p.first_event], left[p.second_event]);
    if (p.used == 0) continue;
    const double sum = p.stress.mean + p.stress.alternating;
    const double ratio = sum > 1e-20 ? (p.stress.mean - p.stress.alternating) / sum : 0;
    const SnLookup lookup = LookUpAllowedCycles(study, material, p.stress.alternating, ratio, p.used, true);
    p.allowed = lookup.allowed;
    p.partial = p.used / p.allowed;
    left[p.first_event] -= p.used;
    if (p.second_event != p.first_event) left[p.second_event] -= p.used;
    result.any_used = true;
    result.usage += p.partial;
    result.life_sum = static_cast<float>(double{result.life_sum} + p.allowed);
    if (study.definition.event_count == 1) {
      result.smallest_stress_factor = std::min(result.smallest_stress_factor, lookup.stress_factor);
    }
    weighted += p.stress.biaxiality * p.used;
    cycles += p.used;
  }
  result.biaxiality = cycles > 0 ? weighted / cycles : 0;
  return result;
}

// Small whole stresses make ties; some loadings have out-of-plane shear, some belong to no event.
void RandomStudy(std::mt19937& random, StudyState& study, LoadingStates& states) {
  const auto pick = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
  FatigueProperties& properties = study.properties;
  properties.AlternatingStressType = pick(0, 2);
  properties.EventInteraction = pick(0, 1);
  properties.MeanStressCorrection = pick(0, 3);
  properties.FatigueStrengthReductionFactor = pick(0, 1) == 0 ? 1.0F : 1.3F;
  study.materials.strength.Assign(1, 90.0);
  const int events = pick(1, 5);
  study.definition.event_count = events;
  for (int e = 1; e <= events; ++e) SetEvent(study, e, pick(0, 3) * pick(1, 500));
  const int loadings = pick(0, kMaxLoadings);
  const int out_of_plane = pick(0, 2);  // never, sometimes, often
  for (int k = 1; k <= loadings; ++k) {
    SetLoading(study, k, pick(0, events));
    for (int c = 0; c < 4; ++c) states.stress[k][c] = 10 * pick(-4, 4);
    for (int c = 4; c < 6; ++c) states.stress[k][c] = pick(0, 2) < out_of_plane ? 10 * pick(-2, 2) : 0;
  }
}

TEST(PairEvaluationByDefinition, RandomStudies) {
  const auto pairs = std::make_unique<PairArrays>();
  for (unsigned seed = 1; seed <= 400; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    StudyState study = test::StudyWithCurves({MakeCurve(0, -1, {{100, 300}, {1e4, 60}, {1e6, 20}}),
                                              MakeCurve(0, 0.2F, {{100, 250}, {1e4, 50}, {1e6, 10}})});
    LoadingStates states;
    RandomStudy(random, study, states);
    ASSERT_EQ(EvaluatePairs(study, states, 1, *pairs), LocationCondition::kNone);
    const LocationResult result = ConsumePairs(study, states, 1, true, *pairs);

    std::vector<SlowPair> slow = SlowPairs(study, states, 1);
    SlowSort(study.properties.EventInteraction == 0 && study.definition.event_count > 1, slow);
    const LocationResult expected = SlowUsage(study, 1, slow);
    EXPECT_EQ(std::tuple(result.usage, result.biaxiality, result.life_sum, result.any_used),
              std::tuple(expected.usage, expected.biaxiality, expected.life_sum, expected.any_used));
    EXPECT_EQ(result.smallest_stress_factor, expected.smallest_stress_factor);
    ASSERT_EQ(pairs->count, static_cast<int>(slow.size()));
    for (int p = 0; p < pairs->count; ++p) {
      const SlowPair& wanted = slow[p];
      const bool used = wanted.used != 0;
      ASSERT_EQ(std::tuple(pairs->first_loading[p], pairs->second_loading[p], pairs->used[p],
                           pairs->partial_usage[p], pairs->allowed[p], pairs->alternating[p]),
                std::tuple(wanted.first, wanted.second, wanted.used, wanted.partial, wanted.allowed,
                           used ? wanted.stress.alternating : 0.0))
          << "place " << p;
      if (!used) continue;
      ASSERT_EQ(pairs->mean_stress[p], wanted.stress.mean) << "place " << p;
    }
  }
}

}  // namespace
}  // namespace zentor
