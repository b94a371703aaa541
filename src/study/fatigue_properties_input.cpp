#include "study/fatigue_properties_input.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "study/definition_layout.h"
#include "study/study_messages.h"
#include "study/table_fault.h"

namespace zentor {
namespace {

constexpr int kMaxBins = 200;
constexpr int kDefaultBins = 25;
constexpr float kSmallestReductionFactor = 1e-16F;
constexpr int kMatrixNodeEntries = 40;

FatigueProperties ReadFromDefinition(ModelDatabase& db) {
  const auto integer = [&db](int field) { return DbGetInt(db, DbTable::kFtc, ftc::kOptions, field); };
  const auto real = [&db](int field) { return DbGetReal(db, DbTable::kFtc, ftc::kOptions, field); };
  FatigueProperties p;
  p.StudyType = kListedStudyType;
  p.AlternatingStressType = integer(2);
  p.EventInteraction = integer(3);
  p.FatigueStrengthReductionFactor = real(4);
  p.SnCurveOption = integer(6);
  p.SharedHistory = integer(7);
  p.MeanStressCorrection = integer(8);
  p.RangeBinCount = integer(9);
  p.MeanBinCount = integer(10);
  p.LoadAmplitudeType = integer(11);
  p.InfiniteLifeValue = real(12);
  p.FilterPercent = static_cast<float>(integer(13));
  p.SurfaceOnly = integer(14);
  return p;
}

FatigueProperties ReadFromMaster(ModelDatabase& db) {
  const auto integer = [&db](int entity, int field) { return DbGetInt(db, DbTable::kMas, entity, field); };
  const auto real = [&db](int entity, int field) { return DbGetReal(db, DbTable::kMas, entity, field); };
  FatigueProperties p;
  p.StudyType = integer(3, 48);
  p.AlternatingStressType = integer(32, 72);
  p.EventInteraction = integer(33, 2);
  p.FatigueStrengthReductionFactor = real(33, 3);
  p.SnCurveOption = integer(3, 72);
  p.SharedHistory = integer(33, 6);
  p.MeanStressCorrection = integer(32, 73);
  p.RangeBinCount = integer(33, 8);
  p.MeanBinCount = integer(33, 9);
  p.LoadAmplitudeType = integer(33, 7);
  p.InfiniteLifeValue = real(33, 11);
  p.FilterPercent = static_cast<float>(integer(33, 12));
  p.SnInterpolationDefault = integer(32, 80);
  return p;
}

void CheckUsable(RunContext& run, const StudyState& study) {
  const FatigueProperties& p = study.properties;
  const int location = p.ActivatedLocation;
  if (location < kAllNodes || location > kMaxLocations) {
    ThrowFieldFault(run, DbTable::kFtc, ftc::kLocationSelection, 3, location, "a location of 1 to 50, or -1");
  }
  const std::string options = run.services.StudyFileName(study.has_study_list ? ".FTC" : ".MAS");
  if (!std::isfinite(p.FatigueStrengthReductionFactor)) {
    throw InputFault(options, "fatigue strength reduction factor",
                     std::to_string(p.FatigueStrengthReductionFactor), "a finite number");
  }
  for (const int bins : {p.RangeBinCount, p.MeanBinCount}) {
    if (IsVariableAmplitude(p) && bins < 0) {
      throw InputFault(options, "number of bins", std::to_string(bins), "0 to 200");
    }
  }
}

}  // namespace

FatigueProperties ReadFatigueProperties(RunContext& run, bool has_study_list) {
  ModelDatabase& db = run.database;
  FatigueProperties p = has_study_list ? ReadFromDefinition(db) : ReadFromMaster(db);
  p.PointerWidth = DbGetInt(db, DbTable::kMas, 33, 21) == 1 ? 2 : 1;
  p.ShellLayer = DbGetInt(db, DbTable::kMas, 3, 71);
  if (IsMultiStudy(p)) {
    p.ShellSurface = DbGetInt(db, DbTable::kFtc, ftc::kOptions, 7);
    p.ActivatedLocation = kAllNodes;
  } else {
    p.ShellSurface = DbGetInt(db, DbTable::kMas, 3, 70);
    p.ActivatedLocation = DbGetInt(db, DbTable::kFtc, ftc::kLocationSelection, 3);
  }
  return p;
}

void CheckFatigueProperties(RunContext& run, StudyState& study) {
  FatigueProperties& p = study.properties;
  if (std::max(p.RangeBinCount, p.MeanBinCount) > kMaxBins)
    StopWithMessage(run.services, message::kTooManyBins);
  CheckUsable(run, study);
  if (p.RangeBinCount == 0) p.RangeBinCount = kDefaultBins;
  if (p.MeanBinCount == 0) p.MeanBinCount = p.RangeBinCount;
  if (p.FatigueStrengthReductionFactor < kSmallestReductionFactor) p.FatigueStrengthReductionFactor = 1.0F;
}

std::vector<int> ReadMatrixNodes(RunContext& run) {
  std::array<std::int32_t, kMatrixNodeEntries> entries{};
  DbGetInts(run.database, DbTable::kFtc, ftc::kMatrixNodes, 2, entries);
  std::vector<int> nodes;
  std::copy_if(entries.begin(), entries.end(), std::back_inserter(nodes), [](int node) { return node > 0; });
  return nodes;
}

}  // namespace zentor
