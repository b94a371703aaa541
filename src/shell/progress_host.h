// The suite's progress-window library, loaded at run time. A missing library is not an error.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "platform/dynamic_library.h"
#include "shell/shell_context.h"

namespace zentor {

// What the library wants of the solver: to run, to be held, or to be held while the user is asked whether to
// abort, which takes none of the run's time.
enum class HoldRequest { kNone, kHold, kQuestion };

// Calls the library's entry points. Wide text is UTF-16 and narrow text UTF-8, both ended by a zero. An entry
// point that the library lacks is not called. The solver thread and the shell thread both call.
class ProgressHost {
 public:
  explicit ProgressHost(std::string program_folder) : program_folder_(std::move(program_folder)) {}

  // Loads the library from the program's own folder first, then from ../lib/zentor-fatigue/ beside it, where
  // it is installed; nowhere else, so that no other file of that name ever runs. An empty folder: no library.
  // Before the solver begins.
  void Load();
  bool Loaded() const { return static_cast<bool>(library_); }
  // The calls of start-up, in their order. `window`: handle of the shell window, null without one.
  void Attach(const ShellContext& shell, const std::u16string& solver_title, void* window);

  // During the run; SetProgressBar and the counters load the library for one call when it was not there at
  // start.
  void SetProgressBar(int first, int second);
  void SetStepCounter(int row, int column, int value, bool hidden, std::u16string& step_text);
  void SetMessage(int message, std::u16string_view text, std::span<const float> arguments);
  void SetScreenLine(std::u16string_view text);
  void SetMessageBox(bool open);
  void ShowWarnings(const std::u16string& recent);
  void SetElapsed(const std::string& text);
  void Exit();
  bool AbortAsked() const;
  HoldRequest HoldAsked() const;
  // Whether the library reads the terminal's keys itself.
  bool ReadsKeys() const;

 private:
  std::string program_folder_;
  platform::DynamicLibrary library_;
};

}  // namespace zentor
