// The histories of events that act together, merged onto one time axis.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "database/one_based.h"
#include "fatigue/load_history.h"

namespace zentor {

// P combined points of E events. One column per event, so that sums over events run along the points.
struct CombinedLoadTable {
  std::size_t points = 0;              // P
  OneBased<std::vector<float>> loads;  // loads[e] has P values: the load of event e at every combined point

  int events() const { return loads.size(); }
};

// One event as the merging sees it. `times` may be changed: points of equal time are moved apart.
struct EventHistory {
  std::span<const float> values;
  std::span<float> times;  // as values, not falling
  double start_time = 0.0;
  int repetitions = 1;
};

enum class CombineStatus : int {
  kDone,
  kMemory,             // more than the allowed entries (message 9055)
  kEqualTimes,         // an interpolation between equal times (message 9056)
  kTimeNotIncreasing,  // unrolled repetitions (message 9057)
};

struct CombineResult {
  CombineStatus status = CombineStatus::kDone;
  int event = 0;          // of kEqualTimes
  bool unrolled = false;  // every repetition is a part of the table; otherwise the table is one repetition
};

// Merges the histories (1 or more, each of at least one point) by rising time; an event's load between its
// points is linear, before its first and after its last point it is 0. Repetitions are unrolled unless the
// events end together and repeat alike. Never holds more than max_entries values (P * E). Calls pass_gate now
// and then, which may throw.
CombineResult CombineHistories(
    std::span<EventHistory> events, std::uint64_t max_entries, CombinedLoadTable& table,
    const std::function<void()>& pass_gate = [] {});

// Builds the table of the study's loaded events and frees the times of the store; after unrolling every
// event's repetitions are 1. Stops the run with message 9054 when the file held no times, else as
// CombineHistories says; throws InputFault for a start time that is not finite.
void BuildCombinedLoadTable(RunContext& run, StudyState& study, LoadHistory& history,
                            CombinedLoadTable& table);

}  // namespace zentor
