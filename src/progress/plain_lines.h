// Progress where there is no terminal: plain lines, few enough for a log.
#pragma once

#include <optional>
#include <string>

#include "progress/panel_labels.h"
#include "progress/progress_state.h"

namespace zentor::progress {

// "Evaluating all nodes: 18 %, Nodes 5000 / 27000, Time left 00:00:18, Nodes/s 1234, Elapsed 00:00:04,
// Warnings 2"
std::string PlainLine(const ProgressState& state, const PanelLabels& labels, double now);

// The last line of a run: "Zentor Fatigue, Study bracket: 100 %, Nodes 27000 / 27000, ..."
std::string ClosingLine(const ProgressState& state, const PanelLabels& labels, double now);

// Chooses when a line is due: no sooner than a second after the one before (the first a second after the
// start), and only when something but the time has changed or a minute has passed.
class PlainLines {
 public:
  explicit PlainLines(double start) : last_time_(start) {}
  std::optional<std::string> Next(const ProgressState& state, const PanelLabels& labels, double now);

 private:
  double last_time_;
  std::string last_content_;  // of the line before, without its times
};

}  // namespace zentor::progress
