// The library's C interface. Wide text is UTF-16 and narrow text UTF-8, both ended by a zero; null counts as
// empty. No entry point lets an exception out, and none keeps a pointer that it was given.
#include <string>
#include <string_view>

#include "progress/panel_text.h"
#include "progress/progress_window.h"

namespace {

using zentor::progress::Counter;
using zentor::progress::ProgressState;

// One window per process. Unloading the library, or the end of the process, closes it.
zentor::progress::ProgressWindow& Window() {
  static zentor::progress::ProgressWindow window;
  return window;
}

// What fails here (memory, threads) must not end the run whose progress is shown.
template <typename Action>
void Guarded(Action action) noexcept {
  try {
    action();
  } catch (...) {
    return;
  }
}

template <typename Change>
void Update(Change change) noexcept {
  Guarded([&] { Window().Update(change); });
}

std::u16string_view Text(const char16_t* text) { return text == nullptr ? std::u16string_view() : text; }
std::string_view Text(const char* text) { return text == nullptr ? std::string_view() : text; }

void SetCounter(Counter counter, int value) noexcept {
  Update([=](ProgressState& state, double) { state.counters[static_cast<std::size_t>(counter)] = value; });
}

}  // namespace

extern "C" {

// Title of the solver.
[[gnu::visibility("default")]] void SetSolverType(const char16_t* title) {
  Update([=](ProgressState& state, double) { state.title = zentor::progress::Printable(Text(title)); });
}

// The message catalog: text of number n is pool[start[n - 1] .. end[n - 1]) when present[n - 1] is not 0.
[[gnu::visibility("default")]] void LoadZentorString(const std::int32_t* start, const std::int32_t* end,
                                                     const char16_t* pool, const std::uint8_t* present) {
  if (start == nullptr || end == nullptr || pool == nullptr || present == nullptr) return;
  Guarded([&] { Window().LoadLabels({start, end, pool, present}); });
}

// The shell's window: this one needs none, since its keys are polled for.
[[gnu::visibility("default")]] void SetWindowHandle(void*) {}

// Base path of the study.
[[gnu::visibility("default")]] void SetSolverDirectory(const char* study) {
  Update([=](ProgressState& state, double) { state.study = zentor::progress::PrintableUtf8(Text(study)); });
}

[[gnu::visibility("default")]] void SetZentorLiteSignalled(int lite) {
  Update([=](ProgressState& state, double) { state.lite_edition = lite != 0; });
}

[[gnu::visibility("default")]] void ShowWindowHidden(int hidden) {
  Guarded([&] { Window().SetHidden(hidden != 0); });
}

// "Create" shows the window. The controls "ProgressControl1" and "ProgressControl2" appear in it as soon as
// they have something to show.
[[gnu::visibility("default")]] void ExportedFunction(const char* name) {
  if (Text(name) == "Create") Guarded([] { Window().Create(); });
}

[[gnu::visibility("default")]] void SetWindowCaption(const char* study) { SetSolverDirectory(study); }

[[gnu::visibility("default")]] void SetElapsedTime(const char* text) {
  Update([=](ProgressState& state, double) { state.elapsed = zentor::progress::PrintableUtf8(Text(text)); });
}

// 1 once the user has confirmed that the run is to be aborted.
[[gnu::visibility("default")]] int GetSolverAbortSignaled() {
  bool asked = false;
  Guarded([&] { asked = Window().AbortAsked(); });
  return asked ? 1 : 0;
}

// 1 while the user holds the solver, 2 while the user is being asked whether to abort.
[[gnu::visibility("default")]] int GetSuspendThreadStatus() {
  int status = 0;
  Guarded([&] { status = Window().HoldStatus(); });
  return status;
}

// 1 when a panel is shown, which reads the keys typed in its terminal.
[[gnu::visibility("default")]] int GetKeysRead() {
  bool read = false;
  Guarded([&] { read = Window().ReadsKeys(); });
  return read ? 1 : 0;
}

// `count` of `total` nodes are done; (0, 0) at the start of the count, (100, 100) at the end of the run.
[[gnu::visibility("default")]] void SetProgressBar2(int total, int count) {
  Update([=](ProgressState& state, double now) { SetProgress(state, total, count, now); });
}

[[gnu::visibility("default")]] void SetScreenData(int step) { SetCounter(Counter::kStep, step); }

[[gnu::visibility("default")]] void SetNonLinearIterationNumber(int value) {
  SetCounter(Counter::kIteration, value);
}

[[gnu::visibility("default")]] void SetNonLinearContactPoints(int value) {
  SetCounter(Counter::kContactPoints, value);
}

[[gnu::visibility("default")]] void SetNonLinearContactIterationNumber(int value) {
  SetCounter(Counter::kContactIteration, value);
}

// 1: the shell keeps the step counter as text, so that a warning in the run summary names its step.
[[gnu::visibility("default")]] int GetStatusForTimeStepNumberToBeWrittenToBuffer() { return 1; }

[[gnu::visibility("default")]] void SetScreenMessage(const char16_t* text) {
  Update([=](ProgressState& state, double) { AddMessage(state, Text(text)); });
}

// The arguments of a step-size message; the first is the step size.
[[gnu::visibility("default")]] void SetNonLinearStepSize(const float* arguments) {
  if (arguments == nullptr) return;
  Update([=](ProgressState& state, double) { state.step_size = *arguments; });
}

// A line of the text screen.
[[gnu::visibility("default")]] void SetScreenData1(double, const char16_t* text) {
  Update([=](ProgressState& state, double) { AddMessage(state, Text(text)); });
}

// 1 before the shell shows a box of its own on the terminal, 0 after it.
[[gnu::visibility("default")]] void SetMessageBoxSignalled(int open) {
  Guarded([&] { Window().SetBoxOpen(open != 0); });
}

// All recent warnings, each followed by a line feed, the new one last.
[[gnu::visibility("default")]] void ShowWarningMessage(const char16_t* all) {
  Update([=](ProgressState& state, double) { SetWarnings(state, Text(all)); });
}

// The end of the run: the terminal is left as it was found.
[[gnu::visibility("default")]] void SetExitWindow() {
  Guarded([] { Window().Close(); });
}

}  // extern "C"
