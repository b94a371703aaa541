// The shell's record of one run, filled during start-up before the solver begins.
#pragma once

#include <cstdint>
#include <string>

#include "platform/files.h"
#include "shell/message_catalog.h"
#include "shell/study_names.h"
#include "shell/warning_store.h"

namespace zentor {

inline constexpr int kScreenColumns = 70;
inline constexpr int kScreenRows = 20;

struct ShellContext {
  ShellContext(platform::FileSystem& file_system, std::u16string study)
      : files(file_system), names(file_system, std::move(study)), warnings(kScreenRows) {}

  platform::FileSystem& files;
  std::int64_t start_time = 0;  // seconds since 1970, less the time already spent on the study
  bool hidden = false;          // "-silent", "-batch"
  std::u16string caption;       // title of the solver and the study's name
  std::u16string title;         // title of the message boxes
  MessageCatalog catalog;
  StudyNames names;
  WarningStore warnings;
  std::u16string step_text;    // the step counter's value, kept when the progress host asks for it
  std::string program_folder;  // where the program lies, with a slash at the end
  std::int32_t edition = 0;    // edition flag of ".MAS"
  bool ended = false;          // the end of the run has been settled: exit code 1
};

}  // namespace zentor
