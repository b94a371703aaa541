#include "fatigue/usage_table.h"

#include <array>

namespace zentor {
namespace {

constexpr int kUsageTableFull = 9105;  // message
constexpr int kEntityBeforeUsage = 2604;
constexpr int kNodesPerEntity = 40;
constexpr int kLocationSelection = 103;  // entity of the location selection and the result status
constexpr int kFirstUsageEntityField = 6;
constexpr int kUsageStatusField = 7;

void WarnOnce(FatigueRun& run, int node) {
  if (run.usage_table_warned) return;
  run.usage_table_warned = true;
  const std::array<float, 1> arguments = {static_cast<float>(node)};
  run.context.services.ShowMessage(kUsageTableFull, arguments, Severity::kWarning);
  run.context.services.AskUser(kUsageTableFull, arguments, BoxStyle::kWarning);
}

}  // namespace

void StoreNodeUsage(FatigueRun& run, int node, double usage) {
  if (IsMultiStudy(run.study.properties)) return;
  ModelDatabase& db = run.context.database;
  const int entity = kEntityBeforeUsage + 1 + (node - 1) / kNodesPerEntity;
  const int field = 2 + (node - 1) % kNodesPerEntity;
  const bool stored = DbPutInt(db, DbTable::kFtc, entity, 1, 1) &&
                      DbPutReal(db, DbTable::kFtc, entity, field, static_cast<float>(usage));
  if (!stored) WarnOnce(run, node);
}

void MarkUsageComplete(FatigueRun& run) {
  if (IsMultiStudy(run.study.properties)) return;
  DbPutInt(run.context.database, DbTable::kFtc, kLocationSelection, kFirstUsageEntityField,
           kEntityBeforeUsage);
  DbPutInt(run.context.database, DbTable::kFtc, kLocationSelection, kUsageStatusField, 1);
}

void MarkUsageMissing(FatigueRun& run) {
  if (IsMultiStudy(run.study.properties)) return;
  DbPutInt(run.context.database, DbTable::kFtc, kLocationSelection, kUsageStatusField, -1);
}

}  // namespace zentor
