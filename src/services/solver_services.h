// What the solver asks of the shell: messages, questions, progress, study paths, the end of the run.
// The solver sees the shell only through this interface, so a run can be driven in a window, in a batch
// program or in a test without a changed line. All calls come from the solver thread unless said otherwise.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace zentor {

// Study files are named by a dot and three upper-case letters after the study name, e.g. ".STE".
using Extension = std::string_view;

struct Date {
  int year, month, day;  // year in full, month 1 to 12
};
struct ClockTime {
  int hour, minute, second, hundredths;  // hundredths always 0
};

// Styles of a message box; the numbers are those of the message definitions.
enum class BoxStyle : int {
  kOk = 1,
  kError = 2,
  kOkCancel = 3,
  kRetryCancel = 4,
  kYesNoSuspended = 5,
  kYesNo = 6,
  kWarning = 7,
  kYesNoWarning = 8,
  kYesNoQuestion = 15,
  kYesNoCancelQuestion = 16,
  kOkCancelWarning = 23,
  kRetryCancelWarning = 24,
  kOkCancelQuestion = 33,
};

enum class Answer : int { kAbort = 1, kCancel = 2, kIgnore = 3, kNo = 4, kOk = 5, kRetry = 6, kYes = 7 };

// Severity of ShowMessage.
enum class Severity : int { kInformation = 1, kWarning = 2 };

class SolverServices {
 public:
  virtual ~SolverServices() = default;

  // A gate between two pieces of work. Waits while the run is held (the user suspends it, or is being asked
  // something); false once the run is being ended. Costs one relaxed load in the normal case. Called by the
  // solver thread and by the threads that work for it, never with a lock held.
  virtual bool KeepGoing() { return true; }

  // Text at (row, column), 1-based, on the text screen; nothing in a hidden run.
  virtual void ScreenText(std::string_view text, int count, int row, int column, int text_colour,
                          int background_colour) = 0;
  virtual void ClearScreenArea(int first_row, int first_column, int last_row, int last_column) = 0;

  // Formats a catalog message for the progress window; severity kWarning also records it as a warning, which
  // a hidden run writes to standard error.
  virtual void ShowMessage(int message, std::span<const float> arguments, Severity severity) = 0;
  // Records a catalog message as a warning and shows it nowhere: for what the user is told in another way.
  virtual void RecordWarning(int message, std::span<const float> arguments) = 0;
  // Asks in a message box. kOk when no box is shown (hidden run).
  virtual Answer AskUser(int message, std::span<const float> arguments, BoxStyle style) = 0;
  // As AskUser with a text of the caller's own, which is also recorded as a warning.
  virtual Answer AskUserText(std::string_view text, BoxStyle style) = 0;
  // Records the text as a warning and shows it: kOk without icon, any other style with the error icon.
  virtual void WarningBox(std::string_view text, BoxStyle style) = 0;
  // A line for whoever reads standard error in a hidden run, where no box can be shown; nothing otherwise.
  virtual void NoteToBatchUser(std::string_view text) = 0;
  virtual void StepCounter(int colour_kind, int row, int column, int value) = 0;
  virtual void ProgressBar(int first, int second) = 0;

  virtual Date GetDate() = 0;
  virtual ClockTime GetTime() = 0;
  // The largest block that can be allocated, in bytes: the available memory, lowered in steps of 1 MiB.
  virtual std::uint64_t LargestBlock() = 0;
  virtual void Beep() = 0;

  // Path (UTF-8) of the study file with that extension, under the selected study name.
  virtual std::string StudyFileName(Extension extension) = 0;
  // Throws FileError when the system cannot tell, as StudyFileExistsIn does.
  virtual bool StudyFileExists(Extension extension) = 0;
  // Selects name buffer 0 (the study) or 1 (the second study), then as StudyFileExists; other numbers: false.
  virtual bool StudyFileExistsIn(Extension extension, int buffer) = 0;
  // Selects name buffer 0 and returns the study name in the solver's code page (UTF-8 when none holds it).
  virtual std::string GetStudyName() = 0;
  // Fills name buffer 1 from line k (1-based) of ".FTS"; nothing when k is 0 or ".FTS" is missing. A relative
  // name is looked for from the current directory first, then from the study's folder.
  virtual void SelectSecondStudyName(int line) = 0;
  // The name in buffer 1 (base path without extension), as UTF-8.
  virtual std::string SecondStudyName() = 0;

  // The run mode of the study (0 or 1: the run owns its end); 0 until the study input has read it.
  virtual void SetRunMode(int run_mode) = 0;
  virtual int RunMode() const = 0;
  // Called first by EndOfRun, from whichever thread ends the run: flushes every file the solver has open.
  virtual void SetFlushHook(std::function<void()> flush) = 0;
  // Appends the summary to ".LOG", closes the progress window and settles the exit code 1. Runs once.
  virtual void EndOfRun() = 0;
};

}  // namespace zentor
