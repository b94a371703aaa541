#include <algorithm>

#include "study/definition_layout.h"
#include "study/events_input.h"

namespace zentor {
namespace {

int ZeroMeansOne(int value) { return value == 0 ? 1 : value; }

Event ReadEvent(ModelDatabase& db, int j, int number) {
  const auto integer = [&db, j](int field) { return DbGetInt(db, DbTable::kFtc, j, field); };
  const auto real = [&db, j](int field) { return DbGetReal(db, DbTable::kFtc, j, field); };
  Event event;
  event.defined = true;
  event.entity = j;
  event.number = number;
  event.curve = integer(3);
  event.cycles = event.repetitions = integer(4);
  event.scale_factor = real(5);
  event.start_point = ZeroMeansOne(integer(6));
  event.end_point = integer(7);
  event.start_time = real(8);
  event.history_setting = ZeroMeansOne(integer(9));
  return event;
}

Loading LoadingOf(ModelDatabase& db, const Event& event) {
  Loading loading;
  loading.load_case = DbGetInt(db, DbTable::kFtc, event.entity, 2);
  loading.time_step = DbGetInt(db, DbTable::kMas, 33, 45 + event.entity);
  loading.event = event.number;
  loading.scale_factor = event.scale_factor;
  return loading;
}

bool SameHistory(const Event& a, const Event& b) {
  return a.curve == b.curve && a.repetitions == b.repetitions && a.start_point == b.start_point &&
         ZeroMeansOne(a.end_point) == ZeroMeansOne(b.end_point) && a.start_time == b.start_time &&
         a.history_setting == b.history_setting;
}

}  // namespace

void ReadVariableAmplitudeEvents(RunContext& run, StudyState& study) {
  EventTable& table = study.definition;
  table = EventTable();
  for (int j = 1; j <= kMaxEvents; ++j) {
    const int load_case = DbGetInt(run.database, DbTable::kFtc, j, 2);
    if (load_case == 0) continue;
    if (load_case == kStoredLoadCase && IsAllNodes(study.properties)) StopForStoredConditionInAllNodes(run);
    const int c = ++table.event_count;
    table.events[c] = ReadEvent(run.database, j, c);
    table.loadings[c] = LoadingOf(run.database, table.events[c]);
    table.largest_time_step = std::max(table.largest_time_step, table.loadings[c].time_step);
    table.largest_curve = std::max(table.largest_curve, table.events[c].curve);
    if (c > 1 && table.events[c].start_time != table.events[c - 1].start_time) table.common_start = false;
  }
  CountOwnedLoadings(table);
}

bool EventsShareHistory(const EventTable& table) {
  for (int c = 2; c <= table.event_count; ++c) {
    if (!SameHistory(table.events[c - 1], table.events[c])) return false;
  }
  return true;
}

}  // namespace zentor
