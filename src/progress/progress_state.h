// What the progress window knows of a run. Plain data without a lock; time comes in as seconds of a steady
// clock.
#pragma once

#include <array>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

#include "progress/progress_rate.h"

namespace zentor::progress {

inline constexpr std::size_t kKeptMessages = 8;

// Counters of the suite's step-by-step solvers, in the order in which they are shown.
enum class Counter { kStep, kIteration, kContactPoints, kContactIteration };
inline constexpr std::size_t kCounters = 4;

struct ProgressState {
  std::u32string title;
  std::u32string study;
  bool lite_edition = false;
  std::deque<std::u32string> messages;  // newest last; its last one names the phase
  int total = 0;                        // 0: nothing has been counted yet
  int count = 0;                        // 0 .. total
  bool finished = false;                // the last progress report has come
  RateMeter rate;
  ActiveClock clock;
  double started = 0;      // when the window was created
  std::u32string elapsed;  // as the shell tells it; empty until it does
  int warnings = 0;
  std::u32string latest_warning;
  std::u16string warning_text;  // all warnings of the last report
  std::array<std::optional<int>, kCounters> counters;
  std::optional<float> step_size;
  bool suspended = false;  // by the user
  bool asking = false;     // whether to abort
  bool aborting = false;   // the answer was Yes
  bool box_open = false;   // the shell shows a box of its own

  // Whether the user keeps the solver from running.
  bool HoldsSolver() const { return (suspended || asking) && !aborting; }
};

// Adds a line; empty ones and repetitions of the last are dropped.
void AddMessage(ProgressState& state, std::u16string_view text);

// `count` of `total` items are done. (0, 0) starts the clock of the rate. (100, 100) ends a run of any size:
// the bar is full and the total counted before stays.
void SetProgress(ProgressState& state, int total, int count, double now);

// `all`: the recent warnings, each followed by a line feed, the new one last. One call per warning.
void SetWarnings(ProgressState& state, std::u16string_view all);

// Whether time runs: it stands while the user holds the solver or a box is open.
void UpdateClock(ProgressState& state, double now);

// 0 to 100; nothing before the first count of a run that is not finished.
std::optional<int> PerCent(const ProgressState& state);

// The text of the shell, or the time since the window was created until there is one: "00:01:07".
std::u32string ElapsedText(const ProgressState& state, double now);

// "00:01:07", hours with as many digits as they need.
std::u32string ClockText(double seconds);

}  // namespace zentor::progress
