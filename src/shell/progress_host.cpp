#include "shell/progress_host.h"

#include <array>
#include <type_traits>
#include <vector>

#include "platform/text.h"

namespace zentor {
namespace {

using platform::DynamicLibrary;

constexpr const char* kLibraryName = "libquorvel.so";
constexpr const char* kInstalledFolder = "../lib/zentor-fatigue/";
constexpr int kMessageStepSizeFirst = 10097;
constexpr int kMessageStepSizeLast = 10098;
constexpr int kCounterColumn = 65;
constexpr int kIterationRow = 20;
constexpr int kContactPointsRow = 21;
constexpr int kContactIterationRow = 22;
constexpr int kHeldByQuestion = 2;  // GetSuspendThreadStatus

DynamicLibrary LoadFrom(const std::string& folder) {
  if (folder.empty()) return {};
  for (const std::string& path : {folder, folder + kInstalledFolder}) {
    DynamicLibrary library(path + kLibraryName);
    if (library) return library;
  }
  return {};
}

// Calls an entry point when the library has it; its result, or a zero one.
template <typename R, typename... Args>
R Call(const DynamicLibrary& library, const char* name, Args... args) {
  const auto entry = library.Find<R (*)(Args...)>(name);
  if constexpr (std::is_void_v<R>) {
    if (entry != nullptr) entry(args...);
  } else {
    return entry != nullptr ? entry(args...) : R{};
  }
}

// The entry points' text arguments are ended by a zero and not changed.
const char16_t* Wide(const std::u16string& text) { return text.c_str(); }

void CallCounter(const DynamicLibrary& library, int row, int column, int value, bool iteration_too) {
  if (column != kCounterColumn) return;
  if (row == kContactPointsRow) Call<void>(library, "SetNonLinearContactPoints", value);
  if (row == kContactIterationRow) Call<void>(library, "SetNonLinearContactIterationNumber", value);
  if (row == kIterationRow && iteration_too) Call<void>(library, "SetNonLinearIterationNumber", value);
}

}  // namespace

void ProgressHost::Load() { library_ = LoadFrom(program_folder_); }

void ProgressHost::Attach(const ShellContext& shell, const std::u16string& solver_title, void* window) {
  if (!Loaded()) return;
  const std::string study = platform::ToUtf8(shell.names.Name(0));
  const MessageCatalog& catalog = shell.catalog;
  Call<void>(library_, "SetSolverType", Wide(solver_title));
  Call<void>(library_, "LoadZentorString", catalog.start.data(), catalog.end.data(), catalog.pool.data(),
             catalog.present.data());
  Call<void>(library_, "SetWindowHandle", window);
  Call<void>(library_, "SetSolverDirectory", study.c_str());
  Call<void>(library_, "SetZentorLiteSignalled", shell.edition != 0 ? 1 : 0);
  Call<void>(library_, "ShowWindowHidden", shell.hidden ? 1 : 0);
  for (const char* function : {"Create", "ProgressControl1", "ProgressControl2"}) {
    Call<void>(library_, "ExportedFunction", function);
  }
  Call<void>(library_, "SetWindowCaption", study.c_str());
}

void ProgressHost::SetProgressBar(int first, int second) {
  if (Loaded()) return Call<void>(library_, "SetProgressBar2", first, second);
  const DynamicLibrary once = LoadFrom(program_folder_);
  Call<void>(once, "ExportedFunction", "ProgressControl2");
  Call<void>(once, "SetProgressBar2", first, second);
}

void ProgressHost::SetStepCounter(int row, int column, int value, bool hidden, std::u16string& step_text) {
  if (!Loaded()) {
    const DynamicLibrary once = LoadFrom(program_folder_);
    CallCounter(once, row, column, value, false);
    return Call<void>(once, "SetScreenData", value);
  }
  if (hidden) return;
  CallCounter(library_, row, column, value, true);
  Call<void>(library_, "SetScreenData", value);
  if (Call<int>(library_, "GetStatusForTimeStepNumberToBeWrittenToBuffer") == 1) {
    step_text = platform::WidenBytes(std::to_string(value));
  }
}

void ProgressHost::SetMessage(int message, std::u16string_view text, std::span<const float> arguments) {
  const DynamicLibrary once = Loaded() ? DynamicLibrary() : LoadFrom(program_folder_);
  const DynamicLibrary& library = Loaded() ? library_ : once;
  if (message == kMessageStepSizeFirst || message == kMessageStepSizeLast) {
    std::vector<float> values(arguments.begin(), arguments.end());
    values.push_back(0.0F);
    return Call<void>(library, "SetNonLinearStepSize", static_cast<const float*>(values.data()));
  }
  const std::u16string terminated(text);
  Call<void>(library, "SetScreenMessage", Wide(terminated));
}

void ProgressHost::SetScreenLine(std::u16string_view text) {
  const std::u16string terminated(text);
  Call<void>(library_, "SetScreenData1", 0.0, Wide(terminated));
}

void ProgressHost::SetMessageBox(bool open) { Call<void>(library_, "SetMessageBoxSignalled", open ? 1 : 0); }

void ProgressHost::ShowWarnings(const std::u16string& recent) {
  Call<void>(library_, "ShowWarningMessage", Wide(recent));
}

void ProgressHost::SetElapsed(const std::string& text) {
  Call<void>(library_, "SetElapsedTime", text.c_str());
}

void ProgressHost::Exit() { Call<void>(library_, "SetExitWindow"); }

bool ProgressHost::AbortAsked() const { return Call<int>(library_, "GetSolverAbortSignaled") != 0; }

HoldRequest ProgressHost::HoldAsked() const {
  const int status = Call<int>(library_, "GetSuspendThreadStatus");
  if (status == kHeldByQuestion) return HoldRequest::kQuestion;
  return status != 0 ? HoldRequest::kHold : HoldRequest::kNone;
}

bool ProgressHost::ReadsKeys() const { return Call<int>(library_, "GetKeysRead") != 0; }

}  // namespace zentor
