#include "stress/pair_evaluation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "stress/pair_steps.h"

namespace zentor {
namespace {

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

}  // namespace
}  // namespace zentor
