// What the solver's own functions need to read a study on the companion's behalf: files that nothing can
// change, and services that show nothing.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/files.h"
#include "services/solver_services.h"

namespace zentor::companion {

// Existing files are read as ReadOnlyFiles reads them; files that are created or emptied live in memory and
// take the place of those on the disk. Nothing on the disk changes.
class MemoryOverlay final : public platform::FileSystem {
 public:
  std::unique_ptr<platform::RandomAccessFile> Open(const std::string& path, platform::OpenMode mode) override;
  bool Exists(const std::string& path) override;
  void Remove(const std::string& path) override;
  void Rename(const std::string& from, const std::string& to) override;
  void CreateFolder(const std::string&) override {}
  void RemoveFolder(const std::string&) override {}

 private:
  using Content = std::shared_ptr<std::vector<std::byte>>;
  std::unordered_map<std::string, Content> created_;  // null: removed
};

// A study by its base path, no second study. Messages are not shown; the last box is kept as the reason of a
// stop.
class ReadingServices final : public SolverServices {
 public:
  ReadingServices(std::string base, platform::FileSystem& files) : base_(std::move(base)), files_(files) {}

  // Why the solver's functions stopped; empty when no box was asked for.
  const std::string& reason() const { return reason_; }

  void ScreenText(std::string_view, int, int, int, int, int) override {}
  void ClearScreenArea(int, int, int, int) override {}
  void ShowMessage(int, std::span<const float>, Severity) override {}
  void RecordWarning(int, std::span<const float>) override {}
  Answer AskUser(int message, std::span<const float> arguments, BoxStyle style) override;
  Answer AskUserText(std::string_view text, BoxStyle style) override;
  void WarningBox(std::string_view, BoxStyle) override {}
  void NoteToBatchUser(std::string_view) override {}
  void StepCounter(int, int, int, int) override {}
  void ProgressBar(int, int) override {}
  Date GetDate() override { return {}; }
  ClockTime GetTime() override { return {}; }
  std::uint64_t LargestBlock() override;
  void Beep() override {}
  std::string StudyFileName(Extension extension) override { return base_ + std::string(extension); }
  bool StudyFileExists(Extension extension) override { return files_.Exists(StudyFileName(extension)); }
  bool StudyFileExistsIn(Extension extension, int buffer) override;
  std::string GetStudyName() override { return base_; }
  void SelectSecondStudyName(int) override {}
  std::string SecondStudyName() override { return {}; }
  void SetRunMode(int) override {}
  int RunMode() const override { return -1; }
  void SetFlushHook(std::function<void()>) override {}
  void EndOfRun() override {}

 private:
  std::string base_;
  platform::FileSystem& files_;
  std::string reason_;
};

}  // namespace zentor::companion
