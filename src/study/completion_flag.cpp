#include "study/completion_flag.h"

#include <exception>

#include "study/definition.h"

namespace zentor {
namespace {

constexpr int kOptions = 60;  // options (multi-study layout) or scale factors (ordinary layout)
constexpr int kFlagField = 15;
constexpr int kSharingLoading = kFlagField - 1;
constexpr int kMembershipBase = 60;  // entity 60 + j: loadings that belong to event j

bool SharingLoadingIsUsed(RunContext& run) {
  for (int j = 1; j <= kMaxConstantAmplitudeEvents; ++j) {
    const int entity = kMembershipBase + j;
    const bool has_loadings = DbGetInt(run.database, DbTable::kFtc, entity, 1) > 0;
    if (has_loadings && DbGetInt(run.database, DbTable::kFtc, entity, kFlagField) == kSharingLoading)
      return true;
  }
  return false;
}

}  // namespace

void SetCompletionFlag(RunContext& run, const FatigueProperties& properties, std::int32_t value) {
  if (!IsMultiStudy(properties) && SharingLoadingIsUsed(run)) return;
  DbPutInt(run.database, DbTable::kFtc, kOptions, kFlagField, value);
}

void ForgetEarlierCompletion(RunContext& run, bool has_study_list) {
  FatigueProperties properties;
  properties.StudyType = has_study_list ? kListedStudyType : 0;
  try {
    SetCompletionFlag(run, properties, 0);
    DbCloseTable(run.database, DbTable::kFtc, CloseMode::kWriteHeader);
  } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): the caller has the fault to report
  }
}

}  // namespace zentor
