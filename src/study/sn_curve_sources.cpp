#include <algorithm>
#include <utility>

#include "study/definition_layout.h"
#include "study/model_input.h"
#include "study/sn_curves_input.h"
#include "study/table_fault.h"

namespace zentor {
namespace {

void CheckPointCount(RunContext& run, DbTable table, int entity, int field, int count, int room) {
  const int most = std::max(room, 0);
  if (count < 0 || count > most) {
    ThrowFieldFault(run, table, entity, field, count, "0 to " + std::to_string(most) + " points");
  }
}

// Fields of entity ftc::kMaterialData for slot c.
constexpr int CountField(int c) { return c + 7; }
constexpr int RatioField(int c) { return c + 17; }
constexpr int SetField(int c) { return c + 27; }

SnCurveSource ReadSlot(RunContext& run, int c, int interpolation) {
  ModelDatabase& db = run.database;
  const int count = DbGetInt(db, DbTable::kFtc, ftc::kMaterialData, CountField(c));
  CheckPointCount(run, DbTable::kFtc, ftc::kMaterialData, CountField(c), count,
                  DbFieldCount(db, DbTable::kFtc) - 1);
  SnCurveSource curve;
  curve.number = c;
  curve.set = DbGetInt(db, DbTable::kFtc, ftc::kMaterialData, SetField(c));
  curve.ratio = DbGetReal(db, DbTable::kFtc, ftc::kMaterialData, RatioField(c));
  curve.interpolation = interpolation;
  curve.cycles.resize(count);
  curve.stresses.resize(count);
  DbGetReals(db, DbTable::kFtc, ftc::kCurveCycles + 2 * c, 2, curve.cycles);
  DbGetReals(db, DbTable::kFtc, ftc::kCurveStresses + 2 * c, 2, curve.stresses);
  return curve;
}

constexpr int kEntityCountField = 10;  // the points follow: cycles, stress, cycles, ...

SnCurveSource ReadEntity(RunContext& run, int id) {
  ModelDatabase& db = run.database;
  const int count = DbGetInt(db, DbTable::kSnc, id, kEntityCountField);
  CheckPointCount(run, DbTable::kSnc, id, kEntityCountField, count,
                  (DbFieldCount(db, DbTable::kSnc) - kEntityCountField) / 2);
  SnCurveSource curve;
  curve.number = id;
  curve.set = DbGetInt(db, DbTable::kSnc, id, 2);
  curve.ratio = DbGetReal(db, DbTable::kSnc, id, 3);
  curve.interpolation = DbGetInt(db, DbTable::kSnc, id, 4);
  std::vector<float> points(2 * static_cast<std::size_t>(count));
  DbGetReals(db, DbTable::kSnc, id, kEntityCountField + 1, points);
  for (std::size_t i = 0; i < points.size(); i += 2) {
    curve.cycles.push_back(points[i]);
    curve.stresses.push_back(points[i + 1]);
  }
  return curve;
}

bool HasKnownSet(const SnCurveSource& curve, const StudyState& study) {
  return curve.set >= 1 && curve.set <= MaterialSetCount(study);
}

}  // namespace

std::vector<SnCurveSource> ReadSnCurveSources(RunContext& run, const StudyState& study) {
  ModelDatabase& db = run.database;
  std::vector<SnCurveSource> curves;
  const auto keep = [&curves, &study](SnCurveSource curve, std::size_t fewest_points) {
    if (HasKnownSet(curve, study) && curve.cycles.size() >= fewest_points) curves.push_back(std::move(curve));
  };
  if (study.has_study_list) {
    for (int id = 1; id <= DbMaxId(db, DbTable::kSnc); ++id) {
      if (DbGetInt(db, DbTable::kSnc, id, 1) > 0) keep(ReadEntity(run, id), 1);
    }
  } else {
    const int interpolation = study.properties.SnInterpolationDefault;
    for (int c = 1; c <= ftc::kCurveSlots; ++c) keep(ReadSlot(run, c, interpolation), 2);
  }
  return curves;
}

std::vector<SnCurveSource> ReadOnePointSlots(RunContext& run, const StudyState& study) {
  std::vector<SnCurveSource> slots;
  if (study.has_study_list) return slots;
  for (int c = 1; c <= ftc::kCurveSlots; ++c) {
    SnCurveSource slot = ReadSlot(run, c, study.properties.SnInterpolationDefault);
    if (HasKnownSet(slot, study) && slot.cycles.size() == 1) slots.push_back(std::move(slot));
  }
  return slots;
}

}  // namespace zentor
