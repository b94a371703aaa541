// How the sections stop a run for which no catalog message exists.
#pragma once

#include <initializer_list>
#include <string>

#include "services/stop.h"
#include "study/run_context.h"

namespace zentor {

// The lines go to the listing and, with the note behind them, into an error box; then the run ends.
[[noreturn]] inline void StopSection(RunContext& run, std::initializer_list<std::string> lines,
                                     const std::string& note = {}) {
  std::string text;
  for (const std::string& line : lines) {
    run.listing.Line(line);
    text += (text.empty() ? "" : "\n") + line;
  }
  run.services.AskUserText(text + note, BoxStyle::kError);
  EndRunIfOwner(run.services);
  StopStatement();
}

}  // namespace zentor
