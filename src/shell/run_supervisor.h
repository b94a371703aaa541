// The shell thread's hold on a run: what the window's messages do to the solver thread.
#pragma once

#include <atomic>
#include <cstdint>

#include "platform/shell_window.h"
#include "shell/progress_host.h"
#include "shell/shell_context.h"
#include "shell/shell_services.h"

namespace zentor {

enum class RunState {
  kRunning,
  kHeldByHost,  // the progress host holds the solver
  kAsking,      // a box is open
  kAborting,    // the user ends the run
  kFinishing,   // the solver ends the run
};

// How long the shell waits for the solver thread to close its files and end once it has been asked to, in
// milliseconds. A solver that is somewhere without a gate for longer is left behind: the run summary is
// written, and the files of the study are what they would be had the process been killed.
inline constexpr int kSolverEndLimit = 5000;

// All members but State belong to the shell thread, which is the window's.
//
// Suspending counts: the supervisor resumes the solver exactly once for each time it suspended it. A
// suspended solver waits at its next gate, where it holds no lock, so the shell thread can do anything
// meanwhile. It may also still wait for the shell thread to handle a message it has sent; wherever the shell
// waits for the solver it handles such messages.
class RunSupervisor {
 public:
  RunSupervisor(ShellContext& shell, ProgressHost& host, ShellServices& services);

  // The window's procedure.
  void Handle(platform::WindowMessage message, platform::MessageParameters parameters);
  RunState State() const;

 private:
  void OnCommand(std::uint64_t command);
  void OnTimer(std::uint64_t timer);
  void OnDestroy();
  void OnEndOfRun();
  void PollHost();
  void SetHostAsking(bool asking);
  void AskWhetherToAbort(int question, bool repaint);
  void RepaintScreen();
  void Abort();
  template <typename Stop>
  void EndSolverWith(Stop stop);

  ShellContext& shell_;
  ProgressHost& host_;
  ShellServices& services_;
  std::atomic<bool> suspended_ = false;  // on the host's request
  std::atomic<bool> aborting_ = false;
  bool abort_handled_ = false;  // the host's request
  bool host_asking_ = false;    // the host asks the user whether to abort
};

}  // namespace zentor
