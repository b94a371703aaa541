#include "shell/run_shell.h"

#include <omp.h>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>

#include "fatigue/fatigue_driver.h"
#include "platform/system.h"
#include "platform/text.h"
#include "services/stop.h"
#include "shell/command_line.h"
#include "shell/master_control.h"
#include "shell/progress_host.h"
#include "shell/shell_context.h"
#include "shell/shell_services.h"

namespace zentor {
namespace {

constexpr int kExitNoStudy = 0;
constexpr int kExitStopStatement = 0;
constexpr int kExitEndOfRun = 1;
constexpr int kSolverTitle = 919;
constexpr int kCaptionSecondPart = 932;
constexpr long kMostThreads = 1024;  // whatever the environment says

// Start-up failures come before any window or catalog exists; their texts are fixed.
void StartUpError(const std::string& title, const std::string& text) {
  std::string line = text;
  std::replace(line.begin(), line.end(), '\n', ' ');
  std::fprintf(stderr, "%s: %s\n", title.c_str(), line.c_str());
}

std::optional<std::u16string> StudyNameOf(const CommandLine& line, platform::FileSystem& files) {
  if (line.count > 2) return line.tokens[2];
  try {
    const auto file = files.Open("X.BAT", platform::OpenMode::kReadOnly);
    std::string bytes(256, '\0');
    bytes.resize(file->ReadAt(0, std::as_writable_bytes(std::span(bytes.data(), bytes.size()))));
    return StudyNameFromBatch(bytes);
  } catch (const platform::FileError&) {
    return std::nullopt;
  }
}

// The solver uses as many threads as the environment's processor count says, unless it already does. OpenMP
// has read the environment before this program starts, so the count is also told to it.
void SettleThreadCount() {
  const auto count = [](const char* name) {
    const auto text = platform::Environment(name);
    return text ? LeadingInteger(platform::ToWide(*text)) : 1;
  };
  const long processors = count("NUMBER_OF_PROCESSORS");
  if (processors > 1 && processors != count("OMP_NUM_THREADS")) {
    platform::SetEnvironment("OMP_NUM_THREADS", *platform::Environment("NUMBER_OF_PROCESSORS"));
    omp_set_num_threads(static_cast<int>(std::min(processors, kMostThreads)));
  }
}

// Title of the solver and the study's name, shortened in its middle to stay within the screen's width.
void ComposeCaption(ShellContext& shell) {
  shell.title = FormatCatalogMessage(shell.catalog, kSolverTitle);
  shell.caption = shell.title + FormatCatalogMessage(shell.catalog, kCaptionSecondPart);
  const std::u16string& name = shell.names.Name(0);
  const auto space =
      static_cast<std::ptrdiff_t>(kScreenColumns) - static_cast<std::ptrdiff_t>(shell.caption.size()) - 9;
  if (static_cast<std::ptrdiff_t>(name.size()) <= space) {
    shell.caption += name;
  } else {
    const auto tail = static_cast<std::size_t>(std::max<std::ptrdiff_t>(space - 6, 0));
    shell.caption += name.substr(0, 3) + u"..." + name.substr(name.size() - std::min(tail, name.size()));
  }
  if (!shell.caption.empty() && shell.caption.back() == u'\n') shell.caption.pop_back();
}

// Runs the solver; every stop unwinds to here.
void SolverThreadMain(ShellContext& shell, ProgressHost& host) {
  ShellServices services(shell, host);
  try {
    FatigueDriver(shell.files, services);
    services.EndOfRun();
  } catch (const RunStopped&) {
    return;
  }
}

int RunStudy(ShellContext& shell, std::int32_t language) {
  const std::string program = platform::ProgramPath();
  shell.program_folder = program.substr(0, program.find_last_of('/') + 1);
  CatalogLoad load = LoadMessageCatalog(program, language);
  if (load.status != CatalogStatus::kOk) {
    StartUpError("Installation error", platform::ToUtf8(CatalogErrorText(load)));
    if (load.status != CatalogStatus::kRepeatedNumber) return kExitNoStudy;
    ProgressHost none("");
    ShellServices(shell, none).EndOfRun();
    return kExitEndOfRun;
  }
  shell.catalog = std::move(load.catalog);
  ComposeCaption(shell);
  ProgressHost host(shell.program_folder);
  host.Attach(shell, shell.title, nullptr);
  SolverThreadMain(shell, host);
  return shell.ended ? kExitEndOfRun : kExitStopStatement;
}

}  // namespace

int wWinMain(std::u16string_view command_line) {
  platform::FileSystem& files = platform::NativeFileSystem();
  const CommandLine line = ParseCommandLine(command_line);
  if (line.too_long) {
    StartUpError("Analysis", "at most nine arguments of 255 characters each are accepted");
    return kExitNoStudy;
  }
  const auto study = StudyNameOf(line, files);
  if (!study) {
    StartUpError("Analysis", "Unable to Access Study");
    return kExitNoStudy;
  }
  ShellContext shell(files, *study);
  shell.hidden = line.hidden;
  MasterControl master;
  try {
    master = ReadMasterControl(files, shell.names.FileName(".MAS"), platform::OpenMode::kReadWriteCreate);
  } catch (const platform::FileError& error) {
    StartUpError(
        "Analysis",
        "Unable to Open Master Control File.\n To define problem name, Use characters supported by O.S.");
    StartUpError("Analysis", error.what());
    return kExitNoStudy;
  }
  shell.edition = master.edition;
  SettleThreadCount();
  shell.start_time = platform::SecondsSince1970() - master.seconds_spent;
  return RunStudy(shell, master.language);
}

}  // namespace zentor
