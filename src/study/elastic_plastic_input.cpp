#include "study/elastic_plastic_input.h"

#include "study/definition_layout.h"
#include "study/table_fault.h"

namespace zentor {
namespace {

// Fields of entity ftc::kMaterialData.
constexpr int kPointCountField = 4;
constexpr int kMField = 5;
constexpr int kNField = 6;
constexpr int kDefinedField = 7;

}  // namespace

void ReadElasticPlasticData(RunContext& run, StudyState& study) {
  ModelDatabase& db = run.database;
  SmTCurve& curve = study.sm_t;
  curve = SmTCurve();
  curve.count = DbGetInt(db, DbTable::kFtc, ftc::kMaterialData, kPointCountField);
  if (curve.count < 0 || curve.count > kMaxSmTPoints) {
    ThrowFieldFault(run, DbTable::kFtc, ftc::kMaterialData, kPointCountField, curve.count, "0 to 10 points");
  }
  curve.m = DbGetReal(db, DbTable::kFtc, ftc::kMaterialData, kMField);
  curve.n = DbGetReal(db, DbTable::kFtc, ftc::kMaterialData, kNField);
  for (int k = 1; k <= curve.count; ++k) {
    curve.temperature[k] = DbGetReal(db, DbTable::kFtc, ftc::kSmTTemperatures, k + 1);
    curve.sm[k] = DbGetReal(db, DbTable::kFtc, ftc::kSmTStresses, k + 1);
    CheckFieldFinite(run, DbTable::kFtc, ftc::kSmTTemperatures, k + 1, curve.temperature[k]);
    CheckFieldFinite(run, DbTable::kFtc, ftc::kSmTStresses, k + 1, curve.sm[k]);
  }
  const bool defined = DbGetInt(db, DbTable::kFtc, ftc::kMaterialData, kDefinedField) != 0;
  study.readiness.EpParamsReady =
      curve.count >= 2 && defined && curve.m > 1.0 && curve.n > 0.0 && curve.n < 1.0;
}

void SetLinearizedReadiness(StudyState& study) {
  bool complete = true;
  for (int k = 1; k <= kMaxLoadings; ++k) {
    if (study.definition.loadings[k].event == 0) continue;
    const bool missing = study.conditions.linearised_case[k] == kStoredLoadCase ||
                         study.conditions.temperature_case[k] == kStoredLoadCase;
    complete = complete && !missing;
  }
  study.readiness.EpLinearizedReady = study.readiness.EpParamsReady && complete;
  study.readiness.EpTemperatureReady = study.readiness.EpLinearizedReady;
}

}  // namespace zentor
