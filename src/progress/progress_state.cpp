#include "progress/progress_state.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "progress/panel_text.h"

namespace zentor::progress {
namespace {

// The end of a run, whatever it has counted.
constexpr int kEndOfRun = 100;

// What `all` holds behind the warnings of the report before. The oldest of those may have been dropped from
// its front, so the longest rest of it that `all` starts with is looked for.
std::u16string_view NewestWarning(std::u16string_view all, std::u16string_view before) {
  while (!before.empty()) {
    if (all.starts_with(before)) return all.substr(before.size());
    const std::size_t line_end = before.find(u'\n');
    before = line_end == std::u16string_view::npos ? u"" : before.substr(line_end + 1);
  }
  return all;
}

}  // namespace

void AddMessage(ProgressState& state, std::u16string_view text) {
  std::u32string line = Printable(text);
  if (line.empty() || (!state.messages.empty() && state.messages.back() == line)) return;
  state.messages.push_back(std::move(line));
  if (state.messages.size() > kKeptMessages) state.messages.pop_front();
}

void SetProgress(ProgressState& state, int total, int count, double now) {
  if (total == kEndOfRun && count == kEndOfRun) {
    state.finished = true;
    total = count = state.total;
  }
  state.total = std::max(0, total);
  state.count = std::clamp(count, 0, state.total);
  state.rate.Add(state.count, state.clock.At(now));
}

void SetWarnings(ProgressState& state, std::u16string_view all) {
  ++state.warnings;
  state.latest_warning = Printable(NewestWarning(all, state.warning_text));
  state.warning_text = all;
}

void UpdateClock(ProgressState& state, double now) {
  state.clock.SetHeld(state.HoldsSolver() || state.box_open, now);
}

std::optional<int> PerCent(const ProgressState& state) {
  if (state.finished) return 100;
  if (state.total == 0) return std::nullopt;
  return static_cast<int>(std::int64_t{100} * state.count / state.total);
}

std::u32string ElapsedText(const ProgressState& state, double now) {
  return state.elapsed.empty() ? ClockText(now - state.started) : state.elapsed;
}

std::u32string ClockText(double seconds) {
  constexpr double kLongest = 9999.0 * 3600;
  const auto whole = static_cast<long>(std::clamp(seconds, 0.0, kLongest));
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%02ld:%02ld:%02ld", whole / 3600, whole / 60 % 60, whole % 60);
  return PrintableUtf8(text.data());
}

}  // namespace zentor::progress
