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

TEST(ProgressCount, EndOfTheRunAndSenselessNumbersStayInTheBar) {
  struct Case {
    std::vector<std::pair<int, int>> reports;  // total, count
    int per_cent, total;                       // -1: none
  };
  for (const Case& c : {Case{{{27000, 26460}, {100, 100}}, 100, 27000},
                        Case{{{0, 0}, {100, 100}}, 100, 0},  // too few nodes for a report in between
                        Case{{{-5, 7}}, -1, 0}, Case{{{2147483647, 2147483646}}, 99, 2147483647}}) {
    ProgressState state;
    for (const auto& [total, count] : c.reports) SetProgress(state, total, count, 1);
    EXPECT_EQ(PerCent(state).value_or(-1), c.per_cent);
    EXPECT_EQ(state.total, c.total);
  }
}

}  // namespace
}  // namespace zentor::progress
