#include "fatigue/combined_load_table.h"

#include <limits>
#include <sstream>

#include "fatigue/history_fixture.h"
#include "gmock/gmock.h"

namespace zentor {
namespace {

using ::testing::ElementsAre;
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

// Points as "time:load ...", rows as "load of the first event:load of the second ...".
std::vector<std::pair<float, float>> Pairs(const char* text) {
  std::vector<std::pair<float, float>> pairs;
  std::istringstream in(text);
  char colon = 0;
  for (float a = 0, b = 0; in >> a >> colon >> b;) pairs.emplace_back(a, b);
  return pairs;
}
Input Points(const char* points, double start_time = 0, int repetitions = 1) {
  Input input{{}, {}, start_time, repetitions};
  for (const auto& [time, value] : Pairs(points)) {
    input.times.push_back(time);
    input.values.push_back(value);
  }
  return input;
}

struct MergeCase {
  Input first, second;
  bool unrolled;
  const char* rows;
};
class Merging : public testing::TestWithParam<MergeCase> {};
TEST_P(Merging, GivesTheRows) {
  const MergeCase& m = GetParam();
  const Combined c = Combine({m.first, m.second});
  EXPECT_EQ(c.result.status, CombineStatus::kDone);
  EXPECT_EQ(c.result.unrolled, m.unrolled);
  const auto rows = Pairs(m.rows);
  ASSERT_EQ(c.table.points, rows.size());
  for (std::size_t p = 0; p < rows.size(); ++p) {
    EXPECT_FLOAT_EQ(c.table.loads[1][p], rows[p].first) << p;
    EXPECT_FLOAT_EQ(c.table.loads[2][p], rows[p].second) << p;
  }
}
INSTANTIATE_TEST_SUITE_P(
    Histories, Merging,
    testing::Values(
        // Interpolated, 0 before the start and after the end, one row within the tolerance.
        MergeCase{Points("0:10 1:20 2:30"), Points("0:4 2:8"), false, "10:4 20:6 30:8"},
        MergeCase{Points("0:1 2:2 8:5"), Points("0:7 1:9", 5), false, "1:0 2:0 3.5:7 4:9 5:0"},
        MergeCase{Points("0:1 1:2"), Points("0:3 1:4", 0.5e-7), false, "1:3 2:4"},
        // Kept as one repetition: they end and repeat alike, or do not repeat.
        MergeCase{Points("0:1 2:3", 0, 3), Points("0:5 1.9995:6", 0, 3), false, "1:5 2.9995:6 3:0"},
        MergeCase{Points("0:1 1:2", 0, 0), Points("0:5 8:9", 0, 1), false, "1:5 2:5.5 0:9"},
        // Times 0, 1, 2, 3, 4, 6: the second event runs 0..2, 2..4, 4..6, each from 8 to 4.
        MergeCase{Points("0:0 1:5 2:1", 0, 2), Points("0:8 2:4", 0, 3), true, "0:8 5:6 1:4 5:6 1:4 0:4"},
        // A step moves by one per cent of the next interval, at the end of the one before.
        MergeCase{Points("0:0 1:0 1:9 3:9"), Points("0:0 4:400"), false, "0:0 0:100 9:102 9:300 0:400"},
        MergeCase{Points("0:0 1:0 1:9"), Points("0:0 4:400"), false, "0:0 0:100 9:101 0:400"}));

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

TEST(CombinedLoadTable, TimesThatCannotBeMergedAreReported) {
  // The second repetition of the first event starts with two points at time 13; at time 10 its load would lie
  // between them.
  const CombineResult stuck = Combine({Points("5:1 5:2 8:3", 0, 2), Points("0:0 5:1", 0, 4)}).result;
  EXPECT_EQ(stuck.status, CombineStatus::kEqualTimes);
  EXPECT_EQ(stuck.event, 1);
  // Right after a repetition has started a repeated time is accepted, elsewhere it is not.
  const Input ramp = Points("0:0 1:1", 0, 3);
  EXPECT_EQ(Combine({Points("1:4", 0, 1000), ramp}).result.status, CombineStatus::kDone);
  const Input once = Points("0:0 2:1");
  for (const Input& first : {Points("0:0 1:1 1:2 2:3", 0, 2), Points("0:0 1:1", -3, 2)})
    EXPECT_EQ(Combine({first, once}).result.status, CombineStatus::kTimeNotIncreasing);
  EXPECT_EQ(Combine({Points("0:0 0:1 1:2", 0, 5), ramp}).result.status, CombineStatus::kTimeNotIncreasing);
}

TEST(CombinedLoadTable, NeverHoldsMoreThanItMay) {
  const std::vector<Input> inputs = {{{0, 1, 2}, {1, 2, 3}}, {{0.5F, 1.5F}, {1, 2}}};  // 5 rows of 2
  EXPECT_EQ(Combine(inputs, 10).result.status, CombineStatus::kDone);
  const Combined c = Combine(inputs, 9);
  EXPECT_EQ(c.result.status, CombineStatus::kMemory);
  EXPECT_LE(c.table.points, 4U);
  // Refused before a row is made.
  EXPECT_EQ(
      Combine({Points("0:1 1:2", 0, std::numeric_limits<int>::max()), Points("0:1 1:2", 0, 2)}).result.status,
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

TEST_F(CombinedTableOfStudy, OnlyUnrolledRepetitionsBecomeOne) {
  WriteHistory(test::HistoryWords({kSaw, kRamp}));
  Event& first = AddEvent(1);
  Event& second = AddEvent(2);
  first.repetitions = second.repetitions = 3;
  Build();
  EXPECT_EQ(table.points, 3U);
  EXPECT_EQ(first.repetitions, 3);
  second.repetitions = 2;
  history = LoadHistory();
  Build();
  EXPECT_EQ(table.points, 7U);
  EXPECT_EQ(first.repetitions, 1);
  EXPECT_EQ(second.repetitions, 1);
  EXPECT_EQ(history.times.capacity(), 0U);
}

TEST_F(CombinedTableOfStudy, StopsWithItsMessages) {
  AddEvent(1).repetitions = 2;
  AddEvent(2).repetitions = 1;
  const auto expect_stop = [&](std::vector<std::int32_t> words, std::size_t largest_block, Box box) {
    WriteHistory(words);
    services.asked.clear();
    services.largest_block = largest_block;
    EXPECT_TRUE(Stops([&] { Build(); }));
    EXPECT_EQ(OnlyBox(), box);
  };
  expect_stop(test::HistoryWords({kSaw, kRamp}, false), 1 << 20, {9054, 0});
  expect_stop(test::HistoryWords({kSaw, kRamp}), 39, {9055, 0});  // 5 rows of 2 values need 40 bytes
  expect_stop(test::HistoryWords({{{0, 0, 2}, {0, 2, 1}}, kRamp}), 1 << 20, {9057, 0});
  study.definition.events[2].repetitions = 4;
  expect_stop(test::HistoryWords({{{5, 5, 8}, {1, 2, 3}}, {{0, 5}, {0, 1}}}), 1 << 20, {9056, 1});
  EXPECT_EQ(services.beeps, 4);
}

TEST_F(CombinedTableOfStudy, StartTimeMustBeANumber) {
  WriteHistory(test::HistoryWords({kSaw, kRamp}));
  AddEvent(1).start_time = std::numeric_limits<float>::quiet_NaN();
  EXPECT_THROW(Build(), InputFault);
}

}  // namespace
}  // namespace zentor
