// Ways to stop a run. A stop unwinds to the solver thread's function; files close by their destructors.
#pragma once

#include <span>

#include "services/solver_services.h"

namespace zentor {

// Thrown by the stop statement; caught by the solver thread's function and by nothing else.
struct RunStopped {};

// The stop statement: ends the solver. The process's exit code is 0 unless EndOfRun has run before.
[[noreturn]] inline void StopStatement() { throw RunStopped{}; }

// A gate on the solver thread: held while the run is held, left by the stop statement when it is ended.
inline void PassGate(SolverServices& services) {
  if (!services.KeepGoing()) StopStatement();
}

inline void EndRunIfOwner(SolverServices& services) {
  if (services.RunMode() == 0 || services.RunMode() == 1) services.EndOfRun();
}

[[noreturn]] inline void BeepAndStop(SolverServices& services) {
  services.Beep();
  EndRunIfOwner(services);
  StopStatement();
}

// The user's abort.
[[noreturn]] inline void AbortRun(SolverServices& services) {
  services.Beep();
  EndRunIfOwner(services);
  StopStatement();
}

// The error that the solver reports: an error box, the end of the run when it owns it, the stop statement.
[[noreturn]] inline void StopWithMessage(SolverServices& services, int message,
                                         std::span<const float> arguments = {}) {
  services.AskUser(message, arguments, BoxStyle::kError);
  EndRunIfOwner(services);
  StopStatement();
}

// The same, with the sound of BeepAndStop before the end.
[[noreturn]] inline void StopWithMessageAndBeep(SolverServices& services, int message,
                                                std::span<const float> arguments = {}) {
  services.AskUser(message, arguments, BoxStyle::kError);
  BeepAndStop(services);
}

}  // namespace zentor
