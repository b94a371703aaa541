#include "study/model_input.h"

#include <string>

#include "services/faults.h"
#include "study/study_messages.h"

namespace zentor {
namespace {

// Fields of a material; the field behind each is not 0 when the property is given as a temperature curve.
constexpr int kModulusField = 2;
constexpr int kYieldField = 80;
constexpr int kUltimateField = 86;
constexpr double kSmallestStrength = 1e-10;
constexpr int kSetsWithoutMaterials = 10;
constexpr int kHighestStressNumber = 1 << 24U;  // single precision: whole numbers above it fall together

double ReadStrength(RunContext& run, int material, int correction) {
  const int field = correction == kSoderberg ? kYieldField : kUltimateField;
  const double strength = DbGetReal(run.database, DbTable::kMat, material, field);
  const bool needed = correction >= kSoderberg && correction <= kGerber;
  if (needed && !(strength >= kSmallestStrength)) {
    StopWithNumber(run.services, message::kFirstStrengthMissing + correction - kSoderberg, material);
  }
  if (DbGetInt(run.database, DbTable::kMat, material, field + 1) != 0) {
    StopWithNumber(run.services,
                   field == kYieldField ? message::kYieldStrengthIsCurve : message::kTensileStrengthIsCurve,
                   material);
  }
  return strength;
}

double ReadModulus(RunContext& run, int material) {
  if (DbGetInt(run.database, DbTable::kMat, material, kModulusField + 1) != 0) {
    StopWithNumber(run.services, message::kModulusIsCurve, material);
  }
  return DbGetReal(run.database, DbTable::kMat, material, kModulusField);
}

}  // namespace

ModelSizes ReadModelSizes(ModelDatabase& db) {
  ModelSizes sizes;
  sizes.highest_node = DbMaxId(db, DbTable::kNod);
  sizes.node_count = DbCount(db, DbTable::kNod);
  sizes.highest_element = DbMaxId(db, DbTable::kEle);
  sizes.element_count = DbCount(db, DbTable::kEle);
  sizes.material_count = DbMaxId(db, DbTable::kMat);
  return sizes;
}

void CheckStressNumbers(const RunContext& run, const ModelSizes& sizes) {
  const auto check = [&run](DbTable table, const char* what, int number) {
    if (number <= kHighestStressNumber) return;
    throw InputFault(
        run.database.paths[static_cast<std::size_t>(table) - 1], what, std::to_string(number),
        "at most " + std::to_string(kHighestStressNumber) + ", the numbers that stress results can hold");
  };
  check(DbTable::kNod, "highest node number", sizes.highest_node);
  check(DbTable::kEle, "highest element number", sizes.highest_element);
}

void CheckModelSizes(RunContext& run, const ModelSizes& sizes) {
  if (sizes.node_count > sizes.highest_node || sizes.element_count > sizes.highest_element) {
    StopWithMessage(run.services, message::kModelSizesInconsistent);
  }
}

void ReadMaterials(RunContext& run, StudyState& study) {
  const int count = study.sizes.material_count;
  study.materials.strength.Assign(count);
  for (int m = 1; m <= count; ++m) {
    study.materials.strength[m] = ReadStrength(run, m, study.properties.MeanStressCorrection);
  }
  if (!UsesBuiltInCurve(study.properties)) return;
  study.materials.modulus.Assign(count);
  for (int m = 1; m <= count; ++m) study.materials.modulus[m] = ReadModulus(run, m);
}

int MaterialSetCount(const StudyState& study) {
  if (UsesBuiltInCurve(study.properties)) return 1;
  return study.sizes.material_count > 0 ? study.sizes.material_count : kSetsWithoutMaterials;
}

}  // namespace zentor
