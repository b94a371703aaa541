#include "shell/run_shell.h"

#include <omp.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <new>
#include <string>

#include "fatigue/fatigue_driver.h"
#include "platform/system.h"
#include "platform/text.h"
#include "services/stop.h"
#include "shell/command_line.h"
#include "shell/last_resort.h"
#include "shell/master_control.h"
#include "shell/message_boxes.h"
#include "shell/progress_host.h"
#include "shell/run_supervisor.h"
#include "shell/shell_context.h"
#include "shell/shell_services.h"
#include "shell/start_up.h"
#include "shell/study_access.h"

namespace zentor {
namespace {

constexpr int kExitNoStudy = 0;
constexpr int kExitStopStatement = 0;
constexpr int kExitEndOfRun = 1;
constexpr int kOutOfMemory = 4914;

// Start-up failures come before any window or catalog exists. The process ends right behind them, so nobody
// is kept waiting with a box. One line; what paths and files hold must not steer a terminal.
void StartUpError(const std::string& title, const std::string& text) {
  std::string line = text;
  std::replace(line.begin(), line.end(), '\n', ' ');
  std::fprintf(stderr, "%s: %s\n", title.c_str(), platform::Printable(line).c_str());
}

// Without memory even for the words of a stop; the solver has closed its files.
void EndWithoutMemory(ShellContext& shell, ShellServices& services) {
  shell.memory_ran_out = true;
  try {
    EndRunIfOwner(services);
  } catch (const RunStopped&) {
    return;  // the end of the run has been settled
  } catch (const std::bad_alloc&) {
    // What it could not do any more stays undone.
  }
  shell.window->Quit(shell.ended ? kExitEndOfRun : kExitStopStatement);
}

// The solver thread's function; every stop unwinds to here.
void SolverThreadMain(ShellContext& shell, ShellServices& services) {
  if (shell.solver_threads > 0) omp_set_num_threads(shell.solver_threads);
  try {
    FatigueDriver(shell.files, services);
    services.EndOfRun();
  } catch (const RunStopped&) {
    // Whoever stopped the run has said why.
  } catch (const std::bad_alloc&) {
    return EndWithoutMemory(shell, services);
  }
  if (!shell.ended) shell.window->Quit(kExitStopStatement);
}

// The width of a digit, which the sibling program's screen is laid out by; 0: as usual.
int CharacterWidth(const ShellContext& shell) {
  return shell.sibling_program ? platform::DrawingSurface::AdvanceWidth(u'2') : 0;
}

// A message for which there is no memory is left out; the solver ends the run when it needs some, too.
int HandleMessages(platform::ShellWindow& window) {
  for (;;) {
    try {
      return window.Run();
    } catch (const std::bad_alloc&) {
      continue;
    }
  }
}

// Runs the solver thread and the message loop. The exit code of the process.
int Supervise(ShellContext& shell, ProgressHost& host) {
  ShellServices services(shell, host);
  RunSupervisor supervisor(shell, host, services);
  platform::ShellWindow window(
      shell.caption, [&](auto message, auto parameters) { supervisor.Handle(message, parameters); });
  platform::WorkThread solver([&] { SolverThreadMain(shell, services); });
  shell.window = &window;
  shell.solver = &solver;
  shell.screen.emplace(kScreenColumns, kScreenRows, CharacterWidth(shell));
  window.SetTimer(kElapsedTimer, kElapsedPeriod);
  window.SetTimer(kPollTimer, 0);
  host.Load();
  host.Attach(shell, shell.title, window.Handle());
  shell.screen->DrawFrame();
  window.ReadKeys(!shell.hidden && !host.ReadsKeys());
  const LastResort last_resort(shell.out_of_memory_line, [&] {
    services.FlushFiles();
    host.Exit();
  });
  platform::RaiseThreadPriority();
  solver.Start();
  const int exit_code = HandleMessages(window);
  if (!solver.Wait(kSolverEndLimit)) {
    host.Exit();  // ending the process unloads nothing, and the panel must not stay on the terminal
    platform::EndProcess(exit_code);
  }
  shell.window = nullptr;
  shell.solver = nullptr;
  return exit_code;
}

std::string OutOfMemoryLine(const MessageCatalog& catalog) {
  std::string text = platform::ToUtf8(FormatCatalogMessage(catalog, kOutOfMemory));
  std::replace(text.begin(), text.end(), '\n', ' ');
  return "zentor-fatigue: " + std::to_string(kOutOfMemory) + ": " + platform::Printable(text) + "\n";
}

int RunStudy(ShellContext& shell, std::int32_t language, const StudyAccess& access) {
  const std::string program = platform::ProgramPath();
  shell.program_folder = program.substr(0, program.find_last_of('/') + 1);
  CatalogLoad load = LoadMessageCatalog(program, language);
  if (load.status != CatalogStatus::kOk) {
    StartUpError("Installation error", platform::ToUtf8(CatalogErrorText(load)));
    if (load.status != CatalogStatus::kRepeatedNumber || access.Refused()) return kExitNoStudy;
    ProgressHost none("");
    ShellServices(shell, none).EndOfRun();
    return kExitEndOfRun;
  }
  if (const std::string damage = CatalogDamage(load); !damage.empty()) {
    StartUpError("Installation error", damage + "; messages without a text are shown empty");
  }
  shell.catalog = std::move(load.catalog);
  shell.sibling_program = load.sibling_program;
  ComposeCaption(shell);
  if (const std::u16string text = access.Text(shell.catalog); !text.empty()) {
    StartUpError(platform::ToUtf8(shell.title), shell.names.OwnFileName("") + ": " + platform::ToUtf8(text));
  }
  if (access.Refused()) return kExitNoStudy;
  shell.out_of_memory_line = OutOfMemoryLine(shell.catalog);
  int exit_code = kExitNoStudy;
  {
    ProgressHost host(shell.program_folder);
    exit_code = Supervise(shell, host);
  }
  if (shell.memory_ran_out) std::fputs(shell.out_of_memory_line.c_str(), stderr);
  return exit_code;
}

// The master control values of a run that is refused: only the language matters, and no file is created.
MasterControl MasterControlOfRefused(const ShellContext& shell) {
  try {
    return ReadMasterControl(shell.files, shell.names.OwnFileName(".MAS"), platform::OpenMode::kReadOnly);
  } catch (const platform::FileError&) {
    return {};
  }
}

int StartUp(const CommandLine& line) {
  platform::FileSystem& files = platform::NativeFileSystem();
  if (line.too_long) {
    StartUpError("Analysis", "at most nine arguments of 255 characters each are accepted");
    return kExitNoStudy;
  }
  platform::TrimOtherProcesses();
  const auto study = StudyNameOf(line, files);
  if (!study) {
    StartUpError("Analysis", "Unable to Access Study");
    std::fputs("usage: zentor-fatigue run STUDY [-silent]\n", stderr);
    return kExitNoStudy;
  }
  ShellContext shell(files, *study);
  shell.hidden = line.hidden;
  SettleCodePage(shell);
  const StudyAccess access(files, shell.names.OwnFileName(""));
  if (access.Refused()) return RunStudy(shell, MasterControlOfRefused(shell).language, access);
  MasterControl master;
  try {
    master = ReadMasterControl(files, shell.names.OwnFileName(".MAS"), platform::OpenMode::kReadWriteCreate);
  } catch (const platform::FileError& error) {
    StartUpError(
        "Analysis",
        "Unable to Open Master Control File.\n To define problem name, Use characters supported by O.S.");
    StartUpError("Analysis", error.what());
    return kExitNoStudy;
  }
  shell.edition = master.edition;
  SettleThreadCount(shell);
  shell.clock.StartAt(platform::SecondsSince1970() - master.seconds_spent);
  return RunStudy(shell, master.language, access);
}

}  // namespace

int wWinMain(std::u16string_view command_line) {
  platform::KeepStandardStreams();
  platform::LetFileSizeLimitFailWrites();
  try {
    return StartUp(ParseCommandLine(command_line));
  } catch (const std::bad_alloc&) {
    std::fputs("Analysis: the run cannot be started: not enough memory\n", stderr);
    return kExitNoStudy;
  } catch (const std::exception& error) {  // the system has no file or thread left for a run
    StartUpError("Analysis", std::string("the run cannot be started: ") + error.what());
    return kExitNoStudy;
  }
}

}  // namespace zentor
