#include "study/events_input.h"

#include <algorithm>
#include <array>

#include "study/definition_layout.h"
#include "study/study_messages.h"

namespace zentor {
namespace {

using LoadingFields = std::array<std::int32_t, kMaxLoadings>;  // field k + 1 of an entity at [k - 1]

LoadingFields ReadLoadingFields(ModelDatabase& db, int entity) {
  LoadingFields fields{};
  DbGetInts(db, DbTable::kFtc, entity, 2, fields);
  return fields;
}

void ReadLoadingsOf(RunContext& run, StudyState& study, int event) {
  const LoadingFields load_cases = ReadLoadingFields(run.database, ftc::kLoadCases + event);
  const LoadingFields members = ReadLoadingFields(run.database, ftc::kMembership + event);
  for (int k = 1; k <= kMaxLoadings; ++k) {
    const std::int32_t load_case = load_cases[k - 1];
    if (load_case <= 0 && load_case != kStoredLoadCase) continue;
    if (load_case == kStoredLoadCase && IsAllNodes(study.properties)) StopForStoredConditionInAllNodes(run);
    Loading& loading = study.definition.loadings[k];
    loading.load_case = load_case;
    loading.time_step = 1;
    if (members[k - 1] == k) loading.event = event;
  }
}

void ReadScaleFactors(ModelDatabase& db, EventTable& table) {
  std::array<float, kMaxLoadings> factors{};
  DbGetReals(db, DbTable::kFtc, ftc::kOptions, 2, factors);
  for (int k = 1; k <= kMaxLoadings; ++k) table.loadings[k].scale_factor = factors[k - 1];
}

}  // namespace

void ReadEventHeads(ModelDatabase& db, EventTable& table) {
  for (int j = 1; j <= kMaxConstantAmplitudeEvents; ++j) {
    if (DbGetInt(db, DbTable::kFtc, j, 1) <= 0) continue;
    Event& event = table.events[j];
    event.defined = true;
    event.entity = j;
    event.number = DbGetInt(db, DbTable::kFtc, j, 2);
    event.cycles = DbGetInt(db, DbTable::kFtc, j, 4);
    event.ratio = DbGetReal(db, DbTable::kFtc, j, 5);
    event.pairing_flag = DbGetInt(db, DbTable::kFtc, j, 6);
    ++table.event_count;
  }
}

void CountOwnedLoadings(EventTable& table) {
  for (int k = 1; k <= kMaxLoadings; ++k) {
    const int event = table.loadings[k].event;
    if (event == 0) continue;
    ++table.loading_count;
    table.highest_loading = k;
    table.highest_event = std::max(table.highest_event, event);
  }
}

void StopForStoredConditionInAllNodes(RunContext& run) {
  run.listing.Blank(2);
  run.listing.Line(" ERROR - invalid assignment (-1) to loadcase/timestep for");
  run.listing.Line("         all-nodes option");
  StopWithMessage(run.services, message::kStoredConditionInAllNodes);
}

void ReadEvents(RunContext& run, StudyState& study) {
  EventTable& table = study.definition;
  table = EventTable();
  ReadEventHeads(run.database, table);
  for (int j = 1; j <= kMaxConstantAmplitudeEvents; ++j) {
    if (DbGetInt(run.database, DbTable::kFtc, ftc::kMembership + j, 1) > 0) ReadLoadingsOf(run, study, j);
  }
  ReadScaleFactors(run.database, table);
  CountOwnedLoadings(table);
}

}  // namespace zentor
