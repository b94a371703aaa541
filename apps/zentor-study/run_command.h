// Runs the solver on a study and tells how it went.
#pragma once

#include <optional>
#include <string>

#include "run_summary.h"

namespace zentor::companion {

// What becomes of a run in which a stress lies above its S-N curve.
enum class AboveCurve {
  kStop,  // it stops there
  kGoOn,  // it goes on with the fewest cycles of the curve
  kAsk,   // the solver asks, in the terminal
};

struct RunOptions {
  std::string study;   // base path
  std::string solver;  // path of the solver; empty: beside this program, else in PATH
  std::optional<int> threads;
  bool quiet = false;  // no progress
  bool json = false;
  AboveCurve above_curve = AboveCurve::kStop;
};

// Path of the solver. Throws CommandFailure when there is none.
std::string FindSolver();
// Runs the study to its end. Throws CommandFailure when the study cannot be run at all.
RunSummary RunStudy(const RunOptions& options);

}  // namespace zentor::companion
