#include <algorithm>
#include <array>

#include "study/definition_layout.h"
#include "study/events_input.h"
#include "study/study_messages.h"

namespace zentor {
namespace {

// The entries of one event: entry k selects line step[k - 1] of the study list.
struct EventEntries {
  std::array<std::int32_t, kMaxLoadings> step{};
  std::array<float, kMaxLoadings> scale{};
};

EventEntries ReadEntries(ModelDatabase& db, int event) {
  EventEntries entries;
  DbGetInts(db, DbTable::kFtc, ftc::kLoadCases + event, 2, entries.step);
  DbGetReals(db, DbTable::kFtc, ftc::kMembership + event, 2, entries.scale);
  return entries;
}

class LoadingList {
 public:
  LoadingList(RunContext& run, EventTable& table) : run_(run), table_(table) {}

  void Add(const Loading& loading) {
    if (++count_ > kMaxLoadings) StopWithMessage(run_.services, message::kTooManyLoadings);
    table_.loadings[count_] = loading;
    table_.largest_time_step = std::max(table_.largest_time_step, loading.time_step);
  }

 private:
  RunContext& run_;
  EventTable& table_;
  int count_ = 0;
};

void AddLoadingsOf(RunContext& run, const EventTable& table, int j, int stored_number,
                   LoadingList& loadings) {
  const EventEntries entries = ReadEntries(run.database, j);
  const Event& event = table.events[j];
  for (int k = 1; k <= kMaxLoadings; ++k) {
    const int step = entries.step[k - 1];
    // Only the first entry of an event can take its load case from the event itself.
    const int own_case = k == 1 ? stored_number : 0;
    if (step <= 0 && own_case <= 0) continue;
    Loading loading;
    loading.load_case = step <= 0 || own_case > 1 ? own_case : step;
    loading.time_step = step;
    loading.event = j;
    loading.scale_factor = entries.scale[k - 1];
    loadings.Add(loading);
    if (event.pairing_flag != 0) continue;
    loading.scale_factor *= static_cast<double>(event.ratio);
    return loadings.Add(loading);
  }
}

}  // namespace

void ReadMultiStudyEvents(RunContext& run, StudyState& study) {
  EventTable& table = study.definition;
  table = EventTable();
  ReadEventHeads(run.database, table);
  LoadingList loadings(run, table);
  for (int j = 1; j <= kMaxConstantAmplitudeEvents; ++j) {
    AddLoadingsOf(run, table, j, DbGetInt(run.database, DbTable::kFtc, j, 2), loadings);
  }
  CountOwnedLoadings(table);
}

}  // namespace zentor
