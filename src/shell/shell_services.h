// The solver's services as the program provides them.
#pragma once

#include "services/solver_services.h"
#include "shell/progress_host.h"
#include "shell/shell_context.h"

namespace zentor {

// A hidden run has no screen and no message boxes: every question is answered OK, and what a box would have
// said goes to standard error as one line, since nobody would see it otherwise.
//
// Every service is a gate: it waits while the run is held. Once the run is being ended, services that speak
// to the user leave by the stop statement; queries and progress figures return, because the solver asks for
// them in the midst of writing results. Called by the solver thread; EndOfRun, Beep and RunMode also by the
// shell thread.
class ShellServices final : public SolverServices {
 public:
  ShellServices(ShellContext& shell, ProgressHost& host) : shell_(shell), host_(host) {}

  bool KeepGoing() override;
  void ScreenText(std::string_view text, int count, int row, int column, int text_colour,
                  int background_colour) override;
  void ClearScreenArea(int first_row, int first_column, int last_row, int last_column) override;
  void ShowMessage(int message, std::span<const float> arguments, Severity severity) override;
  void RecordWarning(int message, std::span<const float> arguments) override;
  Answer AskUser(int message, std::span<const float> arguments, BoxStyle style) override;
  Answer AskUserText(std::string_view text, BoxStyle style) override;
  void WarningBox(std::string_view text, BoxStyle style) override;
  void NoteToBatchUser(std::string_view text) override;
  void StepCounter(int colour_kind, int row, int column, int value) override;
  void ProgressBar(int first, int second) override;
  Date GetDate() override;
  ClockTime GetTime() override;
  std::uint64_t LargestBlock() override;
  void Beep() override;
  std::string StudyFileName(Extension extension) override;
  bool StudyFileExists(Extension extension) override;
  bool StudyFileExistsIn(Extension extension, int buffer) override;
  std::string GetStudyName() override;
  void SelectSecondStudyName(int line) override;
  std::string SecondStudyName() override;
  void SetRunMode(int run_mode) override { shell_.run_mode = run_mode; }
  int RunMode() const override { return shell_.run_mode; }
  void SetFlushHook(std::function<void()> flush) override { flush_ = std::move(flush); }
  void EndOfRun() override;
  // Flushes what the solver has open, as EndOfRun does. Any thread; nothing on one that must not touch the
  // files.
  void FlushFiles();

 private:
  bool OnSolverThread() const;
  void DrawOnScreen(std::u16string_view text, int row, int column, int text_colour, int background_colour);
  void MarkRow(int row, int colour);
  void Record(std::u16string_view warning);

  ShellContext& shell_;
  ProgressHost& host_;
  std::function<void()> flush_;  // solver thread
};

}  // namespace zentor
