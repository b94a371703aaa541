#include "fatigue/combined_load_table.h"

#include <limits>

#include "fatigue/history_fixture.h"
#include "gmock/gmock.h"

namespace zentor {
namespace {

using ::testing::ElementsAre;
using ::testing::FloatEq;
using ::testing::Pointwise;
using Values = std::vector<float>;

struct Input {
  Values times, values;
  double start_time = 0.0;
  int repetitions = 1;
};

struct Combined {
  CombineResult result;
  CombinedLoadTable table;
};

Combined Combine(std::vector<Input> inputs, std::uint64_t max_entries = 1000000) {
  std::vector<EventHistory> events;
  events.reserve(inputs.size());
  for (Input& i : inputs) events.push_back({i.values, i.times, i.start_time, i.repetitions});
  Combined combined;
  combined.result = CombineHistories(events, max_entries, combined.table);
  return combined;
}

TEST(CombinedLoadTable, InterpolatesWhereAnotherEventHasAPoint) {
  const Combined c = Combine({{{0, 1, 2}, {10, 20, 30}}, {{0, 2}, {4, 8}}});
  EXPECT_EQ(c.result.status, CombineStatus::kDone);
  EXPECT_EQ(c.table.points, 3U);
  EXPECT_THAT(c.table.loads[1], ElementsAre(10, 20, 30));
  EXPECT_THAT(c.table.loads[2], ElementsAre(4, 6, 8));
}

TEST(CombinedLoadTable, AnEventIsZeroBeforeItsStartAndAfterItsEnd) {
  const Combined c = Combine({{{0, 2, 8}, {1, 2, 3}}, {{0, 1}, {7, 9}, 5.0}});
  // Times 0, 2, 5, 6, 8.
  EXPECT_THAT(c.table.loads[1], ElementsAre(1, 2, 2.5F, FloatEq(2 + 4.0F / 6), 3));
  EXPECT_THAT(c.table.loads[2], ElementsAre(0, 0, 7, 9, 0));
}

TEST(CombinedLoadTable, PointsWithinTheToleranceShareARow) {
  const Combined c = Combine({{{0, 1}, {1, 2}}, {{0, 1}, {3, 4}, 0.5e-7}});
  EXPECT_THAT(c.table.loads[1], ElementsAre(1, 2));
  EXPECT_THAT(c.table.loads[2], ElementsAre(3, 4));
}

TEST(CombinedLoadTable, EventsThatEndAndRepeatAlikeAreNotUnrolled) {
  const Combined c = Combine({{{0, 1, 2}, {1, 2, 3}, 0, 3}, {{0, 1.9995F}, {5, 6}, 0, 3}});
  EXPECT_FALSE(c.result.unrolled);
  EXPECT_EQ(c.table.points, 4U);
}

TEST(CombinedLoadTable, OneRepetitionIsNeverUnrolled) {
  EXPECT_FALSE(Combine({{{0, 1}, {1, 2}}, {{0, 7}, {5, 6}}}).result.unrolled);
  EXPECT_FALSE(Combine({{{0, 1}, {1, 2}, 0, 0}, {{0, 7}, {5, 6}, 0, 1}}).result.unrolled);
}

TEST(CombinedLoadTable, RepetitionsContinueAtTheEndOfTheOneBefore) {
  const Combined c = Combine({{{0, 1, 2}, {0, 5, 1}, 0, 2}, {{0, 2}, {8, 4}, 0, 3}});
  EXPECT_EQ(c.result.status, CombineStatus::kDone);
  EXPECT_TRUE(c.result.unrolled);
  // Times 0, 1, 2, 3, 4, 6: the second event runs 0..2, 2..4, 4..6, each from 8 to 4.
  EXPECT_THAT(c.table.loads[1], ElementsAre(0, 5, 1, 5, 1, 0));
  EXPECT_THAT(c.table.loads[2], ElementsAre(8, 6, 4, 6, 4, 4));
}

TEST(CombinedLoadTable, AnEventWithoutRepetitionsStaysOutOfAnUnrolledTable) {
  const Combined c = Combine({{{0, 1}, {1, 2}, 0, 0}, {{0, 1}, {3, 4}, 0, 2}});
  EXPECT_THAT(c.table.loads[1], ElementsAre(0, 0, 0));
  EXPECT_THAT(c.table.loads[2], ElementsAre(3, 4, 4));
}

TEST(CombinedLoadTable, AStepMovesByOnePercentOfTheNextInterval) {
  const Combined c = Combine({{{0, 1, 1, 3}, {0, 0, 9, 9}}, {{0, 4}, {0, 400}}});
  // Times 0, 1, 1.02, 3, 4.
  EXPECT_THAT(c.table.loads[1], ElementsAre(0, 0, 9, 9, 0));
  EXPECT_THAT(c.table.loads[2], Pointwise(FloatEq(), {0, 100, 102, 300, 400}));
}

TEST(CombinedLoadTable, AStepAtTheEndMovesByTheIntervalBefore) {
  const Combined c = Combine({{{0, 1, 1}, {0, 0, 9}}, {{0, 4}, {0, 400}}});
  EXPECT_THAT(c.table.loads[2], Pointwise(FloatEq(), {0, 100, 101, 400}));
}

// Nothing to move towards, three equal times in a row, and a step that single precision swallows: a row at
// the same time, and the table ends.
TEST(CombinedLoadTable, TiesThatCannotBeBrokenStillEnd) {
  for (const Values& times :
       {Values{1, 1}, Values{0, 1, 1, 1, 1}, Values{1e7F, 1e7F, 1e7F + 1}, Values{-1, -1, -1}}) {
    const Combined c = Combine({{times, Values(times.size(), 1.0F)}, {{0, 4}, {0, 400}}});
    EXPECT_EQ(c.result.status, CombineStatus::kDone);
    EXPECT_GE(c.table.points, times.size());
    EXPECT_EQ(c.table.loads[2].size(), c.table.points);
  }
}

TEST(CombinedLoadTable, TiesOutsideTheOwnStretchAreNotTouched) {
  Values times = {0, 1, 1, 2};
  const Values values = {0, 5, 6, 7};
  const std::span<float> t(times);
  const std::span<const float> v(values);
  // The first event ends and the second starts at one of the two equal times.
  std::vector<EventHistory> events = {{v.first(2), t.first(2), 0.0, 1}, {v.subspan(2), t.subspan(2), 0.0, 1}};
  CombinedLoadTable table;
  EXPECT_EQ(CombineHistories(events, 1000, table).status, CombineStatus::kDone);
  EXPECT_THAT(times, ElementsAre(0, 1, 1, 2));
  EXPECT_EQ(table.points, 3U);
  // Also not at the very start, where time -1 counts as that of a row before the first.
  times = {-1, -1, 0, 2};
  std::vector<EventHistory> later = {{v.subspan(1), t.subspan(1), 0.0, 1}};
  EXPECT_EQ(CombineHistories(later, 1000, table).status, CombineStatus::kDone);
  EXPECT_THAT(times, ElementsAre(-1, -1, 0, 2));
}

// The second repetition of the first event starts with two points at time 13; at time 10 its load would lie
// between them.
TEST(CombinedLoadTable, EqualTimesThatMustBeInterpolatedAreReported) {
  const Combined c = Combine({{{5, 5, 8}, {1, 2, 3}, 0, 2}, {{0, 5}, {0, 1}, 0, 4}});
  EXPECT_EQ(c.result.status, CombineStatus::kEqualTimes);
  EXPECT_EQ(c.result.event, 1);
}

TEST(CombinedLoadTable, AnUnrolledTimeMustIncrease) {
  EXPECT_EQ(Combine({{{0, 1, 1, 2}, {0, 1, 2, 3}, 0, 2}, {{0, 2}, {0, 1}, 0, 1}}).result.status,
            CombineStatus::kTimeNotIncreasing);
  EXPECT_EQ(Combine({{{0, 1}, {0, 1}, -3, 2}, {{0, 2}, {0, 1}, 0, 1}}).result.status,
            CombineStatus::kTimeNotIncreasing);
}

// Right after a repetition has started a repeated time is accepted; every row still takes a point, so the
// table ends.
TEST(CombinedLoadTable, ARepetitionThatStartsWithEqualTimesEnds) {
  const Combined c = Combine({{{0, 0, 1}, {0, 1, 2}, 0, 5}, {{0, 1}, {0, 1}, 0, 3}});
  EXPECT_EQ(c.result.status, CombineStatus::kTimeNotIncreasing);  // in the first repetition it is not
  const Combined one = Combine({{{1}, {4}, 0, 1000}, {{0, 1}, {0, 1}, 0, 3}});
  EXPECT_EQ(one.result.status, CombineStatus::kDone);
}

TEST(CombinedLoadTable, NeverHoldsMoreThanItMay) {
  const std::vector<Input> inputs = {{{0, 1, 2}, {1, 2, 3}}, {{0.5F, 1.5F}, {1, 2}}};  // 5 rows of 2
  EXPECT_EQ(Combine(inputs, 10).result.status, CombineStatus::kDone);
  const Combined c = Combine(inputs, 9);
  EXPECT_EQ(c.result.status, CombineStatus::kMemory);
  EXPECT_LE(c.table.points, 4U);
  // Refused before a row is made.
  EXPECT_EQ(
      Combine({{{0, 1}, {1, 2}, 0, std::numeric_limits<int>::max()}, {{0, 1}, {1, 2}, 0, 2}}).result.status,
      CombineStatus::kMemory);
}

class CombinedTableOfStudy : public test::HistoryFixture {
 protected:
  void Build() {
    LoadEventHistories(run, study, history);
    BuildCombinedLoadTable(run, study, history, table);
  }
  LoadHistory history;
  CombinedLoadTable table;
};

const test::Curve kSaw = {{0, 1, 2}, {0, 2, 1}};
const test::Curve kRamp = {{0, 2}, {0, 4}};

TEST_F(CombinedTableOfStudy, UnrolledRepetitionsBecomeOne) {
  WriteHistory(test::HistoryWords({kSaw, kRamp}));
  AddEvent(1).repetitions = 3;
  AddEvent(2).repetitions = 2;
  Build();
  EXPECT_EQ(table.points, 7U);
  EXPECT_EQ(study.definition.events[1].repetitions, 1);
  EXPECT_EQ(study.definition.events[2].repetitions, 1);
  EXPECT_EQ(history.times.capacity(), 0U);
}

TEST_F(CombinedTableOfStudy, KeptRepetitionsStay) {
  WriteHistory(test::HistoryWords({kSaw, kRamp}));
  AddEvent(1).repetitions = 3;
  AddEvent(2).repetitions = 3;
  Build();
  EXPECT_EQ(table.points, 3U);
  EXPECT_EQ(study.definition.events[1].repetitions, 3);
}

TEST_F(CombinedTableOfStudy, StopsWithItsMessages) {
  WriteHistory(test::HistoryWords({kSaw, kRamp}, false));
  AddEvent(1).repetitions = 2;
  AddEvent(2).repetitions = 1;
  EXPECT_TRUE(Stops([&] { Build(); }));
  EXPECT_EQ(OnlyBox(), (Box{9054, 0}));

  services.asked.clear();
  services.largest_block = 39;  // 5 rows of 2 values need 40 bytes
  WriteHistory(test::HistoryWords({kSaw, kRamp}));
  EXPECT_TRUE(Stops([&] { Build(); }));
  EXPECT_EQ(OnlyBox(), (Box{9055, 0}));

  services.asked.clear();
  services.largest_block = 1 << 20;
  WriteHistory(test::HistoryWords({{{0, 0, 2}, {0, 2, 1}}, kRamp}));
  EXPECT_TRUE(Stops([&] { Build(); }));
  EXPECT_EQ(OnlyBox(), (Box{9057, 0}));

  services.asked.clear();
  WriteHistory(test::HistoryWords({{{5, 5, 8}, {1, 2, 3}}, {{0, 5}, {0, 1}}}));
  study.definition.events[2].repetitions = 4;
  EXPECT_TRUE(Stops([&] { Build(); }));
  EXPECT_EQ(OnlyBox(), (Box{9056, 1}));
  EXPECT_EQ(services.beeps, 4);
}

TEST_F(CombinedTableOfStudy, StartTimeMustBeANumber) {
  WriteHistory(test::HistoryWords({kSaw, kRamp}));
  AddEvent(1).start_time = std::numeric_limits<float>::quiet_NaN();
  EXPECT_THROW(Build(), InputFault);
}

}  // namespace
}  // namespace zentor
