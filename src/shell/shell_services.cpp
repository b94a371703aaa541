#include "shell/shell_services.h"

#include <algorithm>
#include <cstdio>

#include "platform/system.h"
#include "platform/text.h"
#include "shell/run_summary.h"

namespace zentor {
namespace {

constexpr std::uint64_t kMebibyte = 1U << 20U;

// One line for a text that may hold line feeds.
std::string OneLine(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  std::replace(text.begin(), text.end(), '\r', ' ');
  return text;
}

void ToStandardError(const std::string& text) { std::fprintf(stderr, "zentor-fatigue: %s\n", text.c_str()); }

}  // namespace

void ShellServices::ScreenText(std::string_view, int, int, int, int, int) {}

void ShellServices::ClearScreenArea(int, int, int, int) {}

void ShellServices::ShowMessage(int message, std::span<const float> arguments, Severity severity) {
  const std::u16string text = FormatCatalogMessage(shell_.catalog, message, arguments);
  if (severity == Severity::kWarning) RecordWarning(text);
  if (!shell_.hidden) host_.SetMessage(message, text, arguments);
}

Answer ShellServices::AskUser(int message, std::span<const float> arguments, BoxStyle style) {
  const std::string text = platform::ToUtf8(FormatCatalogMessage(shell_.catalog, message, arguments));
  if (style == BoxStyle::kError) ToStandardError(std::to_string(message) + ": " + OneLine(text));
  return Answer::kOk;
}

Answer ShellServices::AskUserText(std::string_view text, BoxStyle style) {
  RecordWarning(platform::ToWide(text));
  if (style == BoxStyle::kError) ToStandardError(OneLine(std::string(text)));
  return Answer::kOk;
}

void ShellServices::WarningBox(std::string_view text, BoxStyle) {
  RecordWarning(platform::ToWide(text));
  ToStandardError("warning: " + OneLine(std::string(text)));
}

void ShellServices::NoteToBatchUser(std::string_view text) { ToStandardError(OneLine(std::string(text))); }

void ShellServices::StepCounter(int, int row, int column, int value) {
  host_.SetStepCounter(row, column, value, shell_.hidden, shell_.step_text);
}

void ShellServices::ProgressBar(int first, int second) { host_.SetProgressBar(first, second); }

Date ShellServices::GetDate() {
  const platform::LocalTime now = platform::LocalTimeNow();
  return {now.year, now.month, now.day};
}

ClockTime ShellServices::GetTime() {
  const platform::LocalTime now = platform::LocalTimeNow();
  return {now.hour, now.minute, now.second, 0};
}

std::uint64_t ShellServices::LargestBlock() {
  std::uint64_t size = platform::AvailableMemory();
  while (size > kMebibyte && !platform::CanAllocate(size)) size -= kMebibyte;
  return size;
}

void ShellServices::Beep() { platform::SystemSound(); }

std::string ShellServices::StudyFileName(Extension extension) { return shell_.names.FileName(extension); }

bool ShellServices::StudyFileExists(Extension extension) {
  return shell_.files.Exists(shell_.names.FileName(extension));
}

bool ShellServices::StudyFileExistsIn(Extension extension, int buffer) {
  if (buffer != 0 && buffer != 1) return false;
  shell_.names.Select(buffer);
  return StudyFileExists(extension);
}

std::string ShellServices::GetStudyName() {
  shell_.names.Select(0);
  return platform::ToUtf8(shell_.names.Name(0));
}

void ShellServices::SelectSecondStudyName(int line) { shell_.names.ReadSecond(line); }

std::string ShellServices::SecondStudyName() { return platform::ToUtf8(shell_.names.Name(1)); }

void ShellServices::RecordWarning(std::u16string_view text) {
  shell_.warnings.Record(text, shell_.step_text, CurrentElapsedText(shell_));
  if (host_.Loaded()) host_.ShowWarnings(shell_.warnings.RecentText());
}

void ShellServices::EndOfRun() {
  if (shell_.ended) return;
  shell_.ended = true;
  try {
    if (flush_) flush_();
  } catch (const std::exception& error) {
    ToStandardError(error.what());
  }
  if (!WriteRunSummary(shell_))
    ToStandardError(shell_.names.FileName(".LOG") + ": cannot write the run summary");
  if (host_.Loaded()) host_.Exit();
}

}  // namespace zentor
