#include "study/locations_input.h"

#include <array>
#include <bit>

#include "study/definition_layout.h"

namespace zentor {
namespace {

constexpr std::size_t kLocationFields = 11;

// The fields of a location, as the table numbers them; nothing when it is not defined.
Location ReadLocation(ModelDatabase& db, int l) {
  std::array<std::int32_t, kLocationFields> fields{};
  DbGetInts(db, DbTable::kFtc, ftc::kLocationSelection + l, 1, fields);
  const auto integer = [&fields](std::size_t field) { return fields[field - 1]; };
  const auto real = [&fields](std::size_t field) { return std::bit_cast<float>(fields[field - 1]); };
  if (integer(1) == 0) return {};
  Location location;
  location.defined = true;
  location.node = integer(3);
  location.setting = integer(4);
  location.section = integer(5);
  location.path_points = integer(6);
  location.radius = real(7);
  location.scf = {real(8), real(9), real(10)};
  location.bending_flag = integer(11);
  return location;
}

void ReadNode(ModelDatabase& db, Location& location) {
  if (location.node <= 0 || DbGetInt(db, DbTable::kNod, location.node, 1) == 0) return;
  location.node_exists = true;
  for (int i = 0; i < 3; ++i) location.coordinates[i] = DbGetReal(db, DbTable::kNod, location.node, 2 + i);
  location.coordinate_system = DbGetInt(db, DbTable::kNod, location.node, 5);
}

}  // namespace

void ReadLocations(RunContext& run, StudyState& study) {
  for (int l = 1; l <= kMaxLocations; ++l) {
    study.locations[l] = ReadLocation(run.database, l);
    ReadNode(run.database, study.locations[l]);
  }
}

void ReadActivatedLocation(RunContext& run, StudyState& study) {
  const int l = study.properties.ActivatedLocation;
  if (!study.locations.Holds(l)) return;
  const Location location = ReadLocation(run.database, l);
  study.location_node = location.node;
  study.location_section = location.section;
  if (location.section <= 0) return;
  study.locations[l].path_points = location.path_points;
  study.locations[l].radius = location.radius;
  study.locations[l].bending_flag = location.bending_flag;
}

}  // namespace zentor
