#include "shell/shell_services.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "platform/system.h"
#include "platform/text.h"
#include "services/stop.h"
#include "shell/elapsed_time.h"
#include "shell/message_boxes.h"
#include "shell/run_summary.h"

namespace zentor {
namespace {

constexpr std::uint64_t kMebibyte = 1U << 20U;
constexpr int kMarkColumn = 73;
constexpr std::size_t kCounterWidth = 7;

// One line for a text that may hold line feeds.
std::string OneLine(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  std::replace(text.begin(), text.end(), '\r', ' ');
  return text;
}

void ToStandardError(const std::string& text) {
  std::fprintf(stderr, "zentor-fatigue: %s\n", platform::Printable(text).c_str());
}

int CounterColour(int kind) {
  switch (kind) {
    case 2:
      return 3;
    case 3:
      return 8;
    case 4:
      return 7;
    default:
      return kScreenTextColour;
  }
}

// The number right-aligned in six columns, or its digits alone from a million on, with a blank behind a short
// one.
std::u16string CounterText(int value) {
  std::array<char, 16> digits{};
  std::snprintf(digits.data(), digits.size(), value < 1'000'000 ? "%6d" : "%d", value);
  std::u16string text = platform::WidenBytes(digits.data());
  text.resize(std::max(text.size(), kCounterWidth), u' ');
  return text;
}

}  // namespace

bool ShellServices::OnSolverThread() const { return shell_.solver != nullptr && shell_.solver->IsCurrent(); }

bool ShellServices::KeepGoing() { return shell_.solver == nullptr || shell_.solver->Gate().Pass(); }

void ShellServices::DrawOnScreen(std::u16string_view text, int row, int column, int text_colour,
                                 int background_colour) {
  if (shell_.hidden || !shell_.screen) return;
  shell_.screen->DrawCells(text, row, column, text_colour, background_colour);
  // The solver does not run ahead of what the shell thread still has to paint.
  if (shell_.window != nullptr) shell_.window->Send(platform::WindowMessage::kCopy);
}

void ShellServices::ScreenText(std::string_view text, int count, int row, int column, int text_colour,
                               int background_colour) {
  PassGate(*this);
  if (shell_.hidden || count <= 0) return;
  const std::u16string wide = platform::WidenBytes(text.substr(0, static_cast<std::size_t>(count)));
  if (host_.Loaded()) host_.SetScreenLine(wide);
  DrawOnScreen(wide, row, column, text_colour, background_colour);
}

void ShellServices::ClearScreenArea(int first_row, int first_column, int last_row, int last_column) {
  PassGate(*this);
  if (shell_.hidden || !shell_.screen) return;
  const auto wait_for_shell = [this] {
    if (shell_.window != nullptr) shell_.window->Send(platform::WindowMessage::kCopy);
  };
  wait_for_shell();
  shell_.screen->ClearArea(first_row, first_column, last_row, last_column);
  wait_for_shell();
}

void ShellServices::ShowMessage(int message, std::span<const float> arguments, Severity severity) {
  PassGate(*this);
  const std::u16string text = FormatCatalogMessage(shell_.catalog, message, arguments);
  if (severity == Severity::kWarning) {
    Record(text);
    if (shell_.hidden) {
      ToStandardError("warning: " + std::to_string(message) + ": " + OneLine(platform::ToUtf8(text)));
    }
  }
  if (!shell_.hidden) host_.SetMessage(message, text, arguments);
}

void ShellServices::RecordWarning(int message, std::span<const float> arguments) {
  PassGate(*this);
  Record(FormatCatalogMessage(shell_.catalog, message, arguments));
}

Answer ShellServices::AskUser(int message, std::span<const float> arguments, BoxStyle style) {
  PassGate(*this);
  const std::u16string text = FormatCatalogMessage(shell_.catalog, message, arguments);
  if (shell_.hidden && (style == BoxStyle::kError || style == BoxStyle::kWarning)) {
    ToStandardError(std::to_string(message) + ": " + OneLine(platform::ToUtf8(text)));
  }
  return AskInBox(shell_, host_, text, style);
}

Answer ShellServices::AskUserText(std::string_view text, BoxStyle style) {
  PassGate(*this);
  const std::u16string wide = platform::ToWide(text);
  Record(wide);
  if (shell_.hidden && style == BoxStyle::kError) ToStandardError(OneLine(std::string(text)));
  return AskInBox(shell_, host_, wide, style);
}

void ShellServices::WarningBox(std::string_view text, BoxStyle style) {
  PassGate(*this);
  const std::u16string wide = platform::ToWide(text);
  Record(wide);
  if (shell_.hidden) ToStandardError("warning: " + OneLine(std::string(text)));
  AskInBox(shell_, host_, wide, style == BoxStyle::kOk ? BoxStyle::kOk : BoxStyle::kError);
}

void ShellServices::NoteToBatchUser(std::string_view text) {
  if (shell_.hidden) ToStandardError(OneLine(std::string(text)));
}

void ShellServices::MarkRow(int row, int colour) {
  if (!shell_.sibling_program || row == shell_.marked_row) return;
  DrawOnScreen(u"    ", shell_.marked_row, kMarkColumn, colour, kScreenBackground);
  DrawOnScreen(u"<---", row, kMarkColumn, colour, kScreenBackground);
  shell_.marked_row = row;
}

void ShellServices::StepCounter(int colour_kind, int row, int column, int value) {
  KeepGoing();
  host_.SetStepCounter(row, column, value, shell_.hidden, shell_.step_text);
  if (shell_.hidden) return;
  const int colour = CounterColour(colour_kind);
  MarkRow(row, colour);
  DrawOnScreen(CounterText(value), row, column, colour, kScreenBackground);
}

void ShellServices::ProgressBar(int first, int second) {
  KeepGoing();
  host_.SetProgressBar(first, second);
}

Date ShellServices::GetDate() {
  const platform::LocalTime now = platform::LocalTimeNow();
  return {now.year, now.month, now.day};
}

ClockTime ShellServices::GetTime() {
  const platform::LocalTime now = platform::LocalTimeNow();
  return {now.hour, now.minute, now.second, 0};
}

std::uint64_t ShellServices::LargestBlock() {
  KeepGoing();
  std::uint64_t size = platform::AvailableMemory();
  while (size > kMebibyte && !platform::CanAllocate(size)) size -= kMebibyte;
  return size;
}

void ShellServices::Beep() { platform::SystemSound(); }

std::string ShellServices::StudyFileName(Extension extension) { return shell_.names.FileName(extension); }

bool ShellServices::StudyFileExists(Extension extension) {
  KeepGoing();
  return shell_.files.Exists(shell_.names.FileName(extension));
}

bool ShellServices::StudyFileExistsIn(Extension extension, int buffer) {
  if (buffer != 0 && buffer != 1) return false;
  shell_.names.Select(buffer);
  return StudyFileExists(extension);
}

std::string ShellServices::GetStudyName() {
  KeepGoing();
  shell_.names.Select(0);
  return shell_.narrow_name;
}

void ShellServices::SelectSecondStudyName(int line) {
  KeepGoing();
  shell_.names.ReadSecond(line);
}

std::string ShellServices::SecondStudyName() { return platform::ToUtf8(shell_.names.Name(1)); }

void ShellServices::Record(std::u16string_view text) {
  shell_.warnings.Record(text, shell_.step_text, ShowElapsed(shell_, host_));
  if (host_.Loaded()) host_.ShowWarnings(shell_.warnings.RecentText());
}

// The files belong to the solver thread. The shell thread comes here only behind the solver's end, which has
// closed them, or when the solver could not be ended, and must leave them alone then.
void ShellServices::FlushFiles() {
  if (shell_.solver != nullptr && !OnSolverThread()) return;
  try {
    if (flush_) flush_();
  } catch (const std::exception& error) {
    ToStandardError(error.what());
  }
}

void ShellServices::EndOfRun() {
  if (shell_.ended.exchange(true)) return;
  FlushFiles();
  for (const std::string& failure : WriteRunSummary(shell_, ShowElapsed(shell_, host_))) {
    ToStandardError("the run summary is not complete: " + failure);
  }
  if (shell_.window != nullptr) {
    shell_.window->StopTimer(kPollTimer);
    shell_.window->StopTimer(kElapsedTimer);
  }
  if (host_.Loaded()) host_.Exit();
  if (shell_.window != nullptr) shell_.window->Send(platform::WindowMessage::kUserMessage2);
  if (OnSolverThread()) StopStatement();
}

}  // namespace zentor
