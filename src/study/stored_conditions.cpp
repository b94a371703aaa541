#include "study/stored_conditions.h"

#include <algorithm>
#include <array>
#include <bit>

#include "database/edit.h"
#include "study/definition_layout.h"
#include "study/study_messages.h"
#include "study/table_fault.h"

namespace zentor {
namespace {

constexpr std::size_t kFields = 18;
constexpr int kStressField = 8, kTemperatureField = 14, kLinearisedField = 15;
constexpr int kFirstFactorField = 8;  // of a location: stress concentration factors in X, Y, Z

// Read here and not from study.locations, which a variable-amplitude study leaves empty.
std::array<float, 3> ReadFactors(ModelDatabase& db, int location) {
  std::array<float, 3> factors{};
  DbGetReals(db, DbTable::kFtc, ftc::kLocationSelection + location, kFirstFactorField, factors);
  return factors;
}

// What the flags name must be numbers that can be computed with.
void CheckFinite(const RunContext& run, int entity, const StoredState& stored) {
  const auto check = [&](int field, float value) {
    CheckFieldFinite(run, DbTable::kFtc, entity, field, value);
  };
  for (std::size_t c = 0; stored.has_stress && c < stored.stress.size(); ++c) {
    check(kStressField + static_cast<int>(c), stored.stress[c]);
  }
  for (std::size_t c = 0; stored.has_linearised && c < stored.linearised.size(); ++c) {
    check(kLinearisedField + static_cast<int>(c), stored.linearised[c]);
  }
  if (stored.has_temperature) check(kTemperatureField, stored.temperature);
}

void ApplyTo(AppliedConditions& conditions, int k, const StoredState& stored,
             const std::array<float, 3>& factors, bool has_curve) {
  if (stored.has_stress) {
    conditions.stress_case[k] = kAppliedLoadCase;
    for (std::size_t c = 0; c < stored.stress.size(); ++c) {
      const double factor = c < factors.size() ? static_cast<double>(factors[c]) : 1.0;
      conditions.stress[k][c] = stored.stress[c] * factor;
    }
  }
  if (!has_curve) return;
  if (stored.has_linearised) {
    conditions.linearised_case[k] = kAppliedLoadCase;
    std::copy(stored.linearised.begin(), stored.linearised.end(), conditions.linearised[k].begin());
  }
  if (stored.has_temperature) {
    conditions.temperature_case[k] = kAppliedLoadCase;
    conditions.temperature[k] = stored.temperature;
  }
}

}  // namespace

StoredState ReadStoredState(ModelDatabase& db, int location, int loading) {
  std::array<std::int32_t, kFields> fields{};
  DbGetInts(db, DbTable::kFtc, ftc::StoredConditionEntity(location, loading), 1, fields);
  const auto real = [&fields](std::size_t field) { return std::bit_cast<float>(fields[field - 1]); };
  StoredState stored;
  stored.exists = fields[0] != 0;
  stored.has_stress = fields[1] == 1;
  stored.has_linearised = fields[2] == 1;
  stored.has_temperature = fields[3] == 1;
  for (std::size_t c = 0; c < stored.stress.size(); ++c) stored.stress[c] = real(kStressField + c);
  stored.temperature = real(kTemperatureField);
  for (std::size_t c = 0; c < stored.linearised.size(); ++c)
    stored.linearised[c] = real(kLinearisedField + c);
  return stored;
}

void ApplyStoredConditions(RunContext& run, StudyState& study) {
  AppliedConditions& conditions = study.conditions;
  conditions = AppliedConditions();
  for (int k = 1; k <= kMaxLoadings; ++k) {
    const int load_case = study.definition.loadings[k].load_case;
    conditions.stress_case[k] = conditions.linearised_case[k] = conditions.temperature_case[k] = load_case;
  }
  if (IsAllNodes(study.properties)) return;
  const int location = study.properties.ActivatedLocation;
  const std::array<float, 3> factors = ReadFactors(run.database, location);
  for (int k = 1; k <= kMaxLoadings; ++k) {
    const StoredState stored = ReadStoredState(run.database, location, k);
    CheckFinite(run, ftc::StoredConditionEntity(location, k), stored);
    ApplyTo(conditions, k, stored, factors, study.sm_t.count >= 2);
  }
}

void CheckStoredConditions(RunContext& run, const StudyState& study) {
  if (IsAllNodes(study.properties)) return;
  for (int k = 1; k <= kMaxLoadings; ++k) {
    if (study.definition.loadings[k].event == 0) continue;
    if (study.conditions.stress_case[k] != kStoredLoadCase) continue;
    TextRecordFile& listing = run.listing;
    listing.Blank(4);
    listing.Line("*** ERROR - For this location the stress conditions are ");
    listing.Line(Edit().Text("            not available for loading ").I(3, k).str());
    listing.Line("    (Note: -1 is assigned to the corresponding load case");
    listing.Line("           , however, no stress condition is stored, by");
    listing.Line("           using command FTSTR[EAD], for the activated ");
    listing.Line("           location and this loading)");
    listing.ListDirected("    STOP");
    StopWithNumber(run.services, message::kStoredConditionMissing, k);
  }
}

}  // namespace zentor
