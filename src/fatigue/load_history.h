// Load histories: the curves of ".FLH" (docs/formats/flh.md) and the stretch of them that belongs to each
// event.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "database/one_based.h"
#include "study/run_context.h"
#include "study/study_state.h"

namespace zentor {

// The loaded curves, one after another. With a shared history a curve is already reduced to its reversals.
struct LoadHistory {
  std::vector<float> values;   // entry i, counted from 1, is values[i - 1]
  std::vector<float> times;    // as values; empty when the file holds none or with a shared history
  bool has_times = false;      // the file holds times
  OneBased<int> curve_start;   // per curve of the file: entry of its first value, 0 while it is not loaded
  OneBased<int> curve_points;  // per curve: values stored, 0 while it is not loaded
  // While the file is open.
  int unit = 0;
  std::string path;

  // The stretch of an event whose first and last entry are set.
  std::span<const float> ValuesOf(const Event& event) const {
    return std::span(values).subspan(static_cast<std::size_t>(event.first - 1),
                                     static_cast<std::size_t>(event.last - event.first + 1));
  }
};

// Opens ".FLH" and reads its header. Stops the run with message 9016 when the file is missing; throws
// InputFault when the number of curves does not fit into the file.
void OpenHistoryFile(RunContext& run, LoadHistory& history);

// Loads curve k unless it is loaded already and returns the number of values stored for it. Stops the run
// with message 9052 (argument: k) for a curve that is absent or has fewer than two points; throws InputFault
// for a curve outside the file, values or times that are not finite, times that go back. With a shared
// history the curve is reduced to its reversals, Event::first and last of every event on it are set from its
// start and end point, and the run stops with 9078 (argument: k when all values are equal, else the event) or
// 9079 (argument: the event) when too little is left.
int LoadCurve(RunContext& run, StudyState& study, int k, LoadHistory& history);

// Opens the file, loads the curve of every event in event order, sets Event::first and last of every event
// and closes the file. Stops the run with message 9052 (argument: the curve) for a start or end point outside
// the curve or an end before the start.
void LoadEventHistories(RunContext& run, StudyState& study, LoadHistory& history);

}  // namespace zentor
