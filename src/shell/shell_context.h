// The shell's record of one run, filled during start-up before the solver begins.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

#include "platform/files.h"
#include "platform/shell_window.h"
#include "platform/threads.h"
#include "shell/console_screen.h"
#include "shell/message_catalog.h"
#include "shell/run_clock.h"
#include "shell/study_names.h"
#include "shell/warning_store.h"

namespace zentor {

inline constexpr int kScreenColumns = 70;
inline constexpr int kScreenRows = 20;

// Two threads use it once the solver has begun: the shell thread and the solver thread. What both may change
// is atomic or guards itself; the rest is constant by then or belongs to the solver thread.
struct ShellContext {
  ShellContext(platform::FileSystem& file_system, std::u16string study)
      : files(file_system), names(file_system, std::move(study)), warnings(kScreenRows, kScreenColumns) {}

  platform::FileSystem& files;
  RunClock clock;          // goes on from the time already spent on the study
  bool hidden = false;     // "-silent", "-batch"
  std::u16string caption;  // title of the solver and the study's name
  std::u16string title;    // title of the message boxes
  MessageCatalog catalog;
  bool sibling_program = false;  // the program runs under the name of its sibling
  StudyNames names;              // solver thread
  std::string narrow_name;       // the study's name as the solver sees it, in `code_page`
  std::string code_page;         // empty when no code page holds the name: UTF-8
  WarningStore warnings;
  std::u16string
      step_text;       // the step counter's value, kept when the progress host asks for it; solver thread
  int marked_row = 0;  // row of the step counter marked last; solver thread
  std::string program_folder;  // where the program lies, with a slash at the end
  std::int32_t edition = 0;    // edition flag of ".MAS"
  int solver_threads = 0;      // threads of the evaluation, 0 for what the system suggests
  std::optional<ConsoleScreen> screen;
  platform::ShellWindow* window = nullptr;   // as long as the run lasts
  platform::WorkThread* solver = nullptr;    // as long as the run lasts
  std::mutex box_mutex;                      // held while a box is open
  std::atomic<bool> asking = false;          // a box is open
  std::atomic<int> run_mode = 0;             // 0 and 1: the run owns its end
  std::string out_of_memory_line;            // message 4914 on one line, made in advance
  std::atomic<bool> memory_ran_out = false;  // and the user could not be told before the end
  std::atomic<bool> ended = false;           // a thread has taken the end of the run upon it: exit code 1
};

}  // namespace zentor
