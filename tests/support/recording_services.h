// The solver's services for tests: study files under one base path, nothing shown, everything recorded.
#pragma once

#include <algorithm>
#include <cstdint>
#include <exception>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/files.h"
#include "services/solver_services.h"

namespace zentor::test {

class RecordingServices : public SolverServices {
 public:
  // study: base path of the study, without extension.
  explicit RecordingServices(std::string study) { names_[0] = std::move(study); }

  struct Shown {
    int message;
    std::vector<float> arguments;
    Severity severity;
  };
  struct Asked {  // AskUser: message > 0 and the text among the arguments, if any; AskUserText: message 0
    int message;
    std::vector<float> arguments;
    std::string text;
    BoxStyle style;
  };
  // What was called, in order of calls.
  std::vector<Shown> shown;
  std::vector<Asked> asked;
  std::vector<std::string> warning_boxes;
  std::vector<std::string> notes;             // NoteToBatchUser
  std::vector<std::pair<int, int>> progress;  // arguments of ProgressBar
  int beeps = 0;
  int ends_of_run = 0;

  // What the services answer.
  Answer answer = Answer::kOk;
  Date date = {2011, 3, 9};
  ClockTime time = {14, 5, 7, 0};
  std::uint64_t largest_block = std::uint64_t{1} << 30U;
  platform::FileSystem* files = &platform::NativeFileSystem();
  std::vector<std::string> second_studies;  // base path of line k of ".FTS" at [k - 1]

  bool Showed(int message) const { return Holds(shown, message); }
  bool WasAsked(int message) const { return Holds(asked, message); }

  bool KeepGoing() override { return true; }
  void ScreenText(std::string_view, int, int, int, int, int) override {}
  void ClearScreenArea(int, int, int, int) override {}
  void ShowMessage(int message, std::span<const float> arguments, Severity severity) override {
    shown.push_back({message, {arguments.begin(), arguments.end()}, severity});
  }
  void RecordWarning(int message, std::span<const float> arguments) override {
    shown.push_back({message, {arguments.begin(), arguments.end()}, Severity::kWarning});
  }
  Answer AskUser(int message, std::span<const float> arguments, BoxStyle style) override {
    asked.push_back({message, {arguments.begin(), arguments.end()}, {}, style});
    if (!arguments.empty() && arguments.back() == 0.0F) {
      for (const float code : arguments.first(arguments.size() - 1))
        asked.back().text += static_cast<char>(code);
    }
    return answer;
  }
  Answer AskUserText(std::string_view text, BoxStyle style) override {
    asked.push_back({0, {}, std::string(text), style});
    return answer;
  }
  void WarningBox(std::string_view text, BoxStyle) override { warning_boxes.emplace_back(text); }
  void NoteToBatchUser(std::string_view text) override { notes.emplace_back(text); }
  void StepCounter(int, int, int, int) override {}
  void ProgressBar(int first, int second) override { progress.emplace_back(first, second); }

  Date GetDate() override { return date; }
  ClockTime GetTime() override { return time; }
  std::uint64_t LargestBlock() override { return largest_block; }
  void Beep() override { ++beeps; }

  std::string StudyFileName(Extension extension) override {
    return names_[selected_] + std::string(extension);
  }
  bool StudyFileExists(Extension extension) override { return files->Exists(StudyFileName(extension)); }
  bool StudyFileExistsIn(Extension extension, int buffer) override {
    if (buffer != 0 && buffer != 1) return false;
    selected_ = static_cast<std::size_t>(buffer);
    return StudyFileExists(extension);
  }
  std::string GetStudyName() override {
    selected_ = 0;
    return names_[0];
  }
  void SelectSecondStudyName(int line) override {
    if (line < 1 || line > static_cast<int>(second_studies.size())) return;
    names_[1] = second_studies[static_cast<std::size_t>(line) - 1];
  }
  std::string SecondStudyName() override { return names_[1]; }

  void SetRunMode(int run_mode) override { run_mode_ = run_mode; }
  int RunMode() const override { return run_mode_; }
  void SetFlushHook(std::function<void()> flush) override { flush_ = std::move(flush); }
  // A disk that refuses what is flushed does not keep the run from ending, as in the program.
  void EndOfRun() override {
    if (++ends_of_run > 1 || !flush_) return;
    try {
      flush_();
    } catch (const std::exception&) {  // nothing more to do
    }
  }

 private:
  static bool Holds(const auto& calls, int message) {
    return std::any_of(calls.begin(), calls.end(), [&](const auto& call) { return call.message == message; });
  }

  std::string names_[2];
  std::size_t selected_ = 0;
  int run_mode_ = 0;
  std::function<void()> flush_;
};

}  // namespace zentor::test
