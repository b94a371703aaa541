#include "progress/progress_state.h"

#include <gtest/gtest.h>

namespace zentor::progress {
namespace {

TEST(ProgressRate, FollowsTheLastReportsAndCountsDown) {
  ProgressState state;
  SetProgress(state, 0, 0, 0);
  EXPECT_FALSE(PerCent(state).has_value());
  for (int i = 1; i <= 20; ++i) SetProgress(state, 4000, 100 * i, i);             // 100 per second
  for (int i = 1; i <= 10; ++i) SetProgress(state, 4000, 2000 + 50 * i, 20 + i);  // then 50
  EXPECT_EQ(PerCent(state), 62);
  EXPECT_DOUBLE_EQ(*state.rate.PerSecond(), 50);
  EXPECT_DOUBLE_EQ(*state.rate.AveragePerSecond(), 2500.0 / 30);
  EXPECT_DOUBLE_EQ(*state.rate.SecondsLeft(4000, 30), 30);
  EXPECT_DOUBLE_EQ(*state.rate.SecondsLeft(4000, 34), 26);
  EXPECT_DOUBLE_EQ(*state.rate.SecondsLeft(4000, 99), 0);
}

TEST(ProgressRate, HeldTimeDoesNotCount) {
  ProgressState state;
  SetProgress(state, 0, 0, 10);
  SetProgress(state, 100, 10, 11);
  state.suspended = true;
  UpdateClock(state, 11);
  state.box_open = true;  // a box while suspended is no second hold
  UpdateClock(state, 50);
  state.suspended = state.box_open = false;
  UpdateClock(state, 100);
  SetProgress(state, 100, 20, 101);
  EXPECT_DOUBLE_EQ(*state.rate.PerSecond(), 10);
}

TEST(ProgressRate, ACountThatStartsAgainForgetsTheOldOne) {
  ProgressState state;
  SetProgress(state, 100, 90, 1);
  SetProgress(state, 50, 10, 2);
  EXPECT_FALSE(state.rate.PerSecond().has_value());
  SetProgress(state, 50, 20, 4);
  EXPECT_DOUBLE_EQ(*state.rate.PerSecond(), 5);
}

TEST(ProgressCount, EndOfTheRunAndSenselessNumbersStayInTheBar) {
  struct Case {
    std::vector<std::pair<int, int>> reports;  // total, count
    int per_cent, total;                       // -1: none
  };
  for (const Case& c : {Case{{{27000, 26460}, {100, 100}}, 100, 27000},
                        Case{{{0, 0}, {100, 100}}, 100, 0},  // too few nodes for a report in between
                        Case{{{-5, 7}}, -1, 0}, Case{{{2147483647, 2147483646}}, 99, 2147483647},
                        Case{{{10, 11}}, 100, 10}}) {
    ProgressState state;
    for (const auto& [total, count] : c.reports) SetProgress(state, total, count, 1);
    EXPECT_EQ(PerCent(state).value_or(-1), c.per_cent);
    EXPECT_EQ(state.total, c.total);
  }
}

TEST(ProgressMessages, RepetitionsAndEmptyLinesAreDroppedOldOnesForgotten) {
  ProgressState state;
  for (const char16_t* text : {u"one", u"one", u"", u" \n", u"two"}) AddMessage(state, text);
  EXPECT_EQ(state.messages, (std::deque<std::u32string>{U"one", U"two"}));
  for (char16_t c = u'a'; c <= u'z'; ++c) AddMessage(state, std::u16string(1, c));
  EXPECT_EQ(state.messages.size(), kKeptMessages);
  EXPECT_EQ(state.messages.back(), U"z");
}

TEST(ProgressWarnings, TheLatestIsWhatTheReportAdds) {
  ProgressState state;
  SetWarnings(state, u"first\n");
  EXPECT_EQ(state.latest_warning, U"first");
  SetWarnings(state, u"first\nsecond\nin two lines\n");
  EXPECT_EQ(state.latest_warning, U"second in two lines");
  SetWarnings(state, u"second\nin two lines\nthird\n");  // the first one has been dropped
  EXPECT_EQ(state.latest_warning, U"third");
  EXPECT_EQ(state.warnings, 3);
}

TEST(ElapsedTime, OwnClockUntilTheShellTellsIt) {
  ProgressState state;
  state.started = 100;
  EXPECT_EQ(ElapsedText(state, 167.9), U"00:01:07");
  state.elapsed = U"01:00:00";
  EXPECT_EQ(ElapsedText(state, 170), U"01:00:00");
  EXPECT_EQ(ClockText(100 * 3600), U"100:00:00");
  EXPECT_EQ(ClockText(1e300), U"9999:00:00");
  EXPECT_EQ(ClockText(-1), U"00:00:00");
}

}  // namespace
}  // namespace zentor::progress
