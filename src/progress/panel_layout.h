// The lines of the progress window for a state and a size; nothing here knows of a terminal.
#pragma once

#include <string>
#include <vector>

#include "progress/panel_labels.h"
#include "progress/progress_state.h"

namespace zentor::progress {

enum class LineStyle { kPlain, kTitle, kStrong, kWarning, kQuestion, kFaint };

struct PanelLine {
  std::u32string text;
  LineStyle style = LineStyle::kPlain;
};

struct PanelSize {
  int columns = 80;
  int rows = 24;
  bool block_characters = true;  // the terminal shows U+2588; otherwise the bar is ASCII
};

// At most `rows` lines of at most `columns` columns. Where the room is short, what matters least goes first:
// blank lines, older messages, study, counters, warnings; the bar and an open question stay to the last.
std::vector<PanelLine> LayOutPanel(const ProgressState& state, const PanelLabels& labels,
                                   const PanelSize& size, double now);

// "Nodes 5000 / 27000", "Time left 00:00:18", "Nodes/s 1234": what is known of them. over: no more is to
// come, so no time is left and the rate is that of the whole run.
std::vector<std::u32string> ProgressFigures(const ProgressState& state, const PanelLabels& labels, double now,
                                            bool over);

}  // namespace zentor::progress
