#include "shell/run_supervisor.h"

#include <new>

#include "services/stop.h"
#include "shell/elapsed_time.h"
#include "shell/message_boxes.h"

namespace zentor {

using platform::MessageParameters;
using platform::WindowMessage;

namespace {

constexpr int kExitEndOfRun = 1;
constexpr int kExitStopStatement = 0;
constexpr int kAskAbort = 901;
constexpr int kAskAbortFromHost = 902;
constexpr int kSymbolDescriptions = 905;
constexpr std::uint64_t kAbortCommand = 890;
constexpr std::uint64_t kSymbolsCommand = 892;
constexpr std::uint64_t kCommandBits = 0xFFFF;

}  // namespace

RunSupervisor::RunSupervisor(ShellContext& shell, ProgressHost& host, ShellServices& services)
    : shell_(shell), host_(host), services_(services) {}

RunState RunSupervisor::State() const {
  if (aborting_) return RunState::kAborting;
  if (shell_.ended) return RunState::kFinishing;
  if (shell_.asking) return RunState::kAsking;
  return suspended_ ? RunState::kHeldByHost : RunState::kRunning;
}

void RunSupervisor::Handle(WindowMessage message, MessageParameters parameters) {
  switch (message) {
    case WindowMessage::kDestroy:
      return OnDestroy();
    case WindowMessage::kClose:
      return Abort();
    case WindowMessage::kActivate:
    case WindowMessage::kPaint:
    case WindowMessage::kActivateApp:
      return RepaintScreen();
    case WindowMessage::kCommand:
    case WindowMessage::kSetFont:
      return OnCommand(parameters.first & kCommandBits);
    case WindowMessage::kKeyDown:
      if (parameters.first == platform::kEscapeKey) AskWhetherToAbort(kAskAbort, false);
      return;
    case WindowMessage::kTimer:
      return OnTimer(parameters.first);
    case WindowMessage::kUserMessage2:
      return OnEndOfRun();
    case WindowMessage::kNone:
    case WindowMessage::kCreate:
    case WindowMessage::kCopy:
      return;
  }
}

void RunSupervisor::OnCommand(std::uint64_t command) {
  if (command == kAbortCommand) AskWhetherToAbort(kAskAbortFromHost, true);
  if (command == kSymbolsCommand) {
    AskInBox(shell_, host_, u"Symbol_Descriptions", FormatCatalogMessage(shell_.catalog, kSymbolDescriptions),
             BoxStyle::kOk);
  }
}

void RunSupervisor::OnTimer(std::uint64_t timer) {
  if (!host_.Loaded()) return;
  if (timer == kElapsedTimer) ShowElapsed(shell_, host_);
  if (timer == kPollTimer) PollHost();
}

void RunSupervisor::PollHost() {
  if (!abort_handled_ && host_.AbortAsked()) {
    abort_handled_ = true;
    shell_.window->StopTimer(kPollTimer);
    return Abort();
  }
  const HoldRequest request = host_.HoldAsked();
  SetHostAsking(request == HoldRequest::kQuestion);
  const bool asked = request != HoldRequest::kNone;
  if (asked == suspended_) return;
  suspended_ = asked;
  if (asked) {
    shell_.solver->Suspend();
  } else {
    shell_.solver->Resume();
  }
}

// The host's question takes no time of the run, as a box of the shell's own takes none.
void RunSupervisor::SetHostAsking(bool asking) {
  if (asking == host_asking_) return;
  host_asking_ = asking;
  if (asking) {
    shell_.clock.Stop();
  } else {
    shell_.clock.Continue();
  }
}

void RunSupervisor::AskWhetherToAbort(int question, bool repaint) {
  shell_.solver->Suspend();
  const Answer answer =
      AskInBox(shell_, host_, FormatCatalogMessage(shell_.catalog, question), BoxStyle::kYesNo, Answer::kNo);
  const bool abort = answer == Answer::kYes;
  const bool ended = aborting_ || shell_.ended;  // meanwhile, by the host's request or by itself
  if (!abort && !ended && repaint) RepaintScreen();
  shell_.solver->Resume();
  if (abort && !ended) Abort();
}

void RunSupervisor::RepaintScreen() {
  if (!shell_.hidden && shell_.screen) shell_.screen->Repaint();
  ShowElapsed(shell_, host_);
}

// Ends the solver, so that its files are closed, then takes a way to stop the run on this thread.
template <typename Stop>
void RunSupervisor::EndSolverWith(Stop stop) {
  aborting_ = true;
  SetHostAsking(false);
  if (suspended_.exchange(false)) shell_.solver->Resume();
  shell_.solver->Terminate();
  shell_.window->CloseBoxes();
  shell_.window->HandleSent(kSolverEndLimit, [this] { return shell_.solver->Ended(); });
  try {
    stop(services_);
  } catch (const RunStopped&) {
    if (!shell_.ended) shell_.window->Quit(kExitStopStatement);
  } catch (const std::bad_alloc&) {
    shell_.memory_ran_out = true;
    shell_.window->Quit(kExitEndOfRun);
  }
}

void RunSupervisor::Abort() {
  EndSolverWith([](SolverServices& services) { AbortRun(services); });
}

void RunSupervisor::OnDestroy() {
  shell_.window->StopTimer(kElapsedTimer);
  shell_.window->StopTimer(kPollTimer);
  EndSolverWith([](SolverServices& services) { BeepAndStop(services); });
}

void RunSupervisor::OnEndOfRun() {
  shell_.solver->Terminate();
  shell_.window->CloseBoxes();
  shell_.window->Quit(kExitEndOfRun);
}

}  // namespace zentor
