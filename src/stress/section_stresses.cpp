#include "stress/section_stresses.h"

#include <array>
#include <cmath>
#include <string>
#include <utility>

#include "stress/section_stop.h"
#include "study/definition_layout.h"
#include "study/section_ends.h"
#include "study/stress_results.h"
#include "study/table_fault.h"

namespace zentor {
namespace {

constexpr int kLocationMessage = 9034;
constexpr int kLoadingMessage = 9035;
constexpr int kLoadCaseMessage = 9036;

constexpr int kPathX = 6, kPathY = 7;                  // fields of a node
constexpr int kPathPointsField = 6, kRadiusField = 7;  // fields of a location

void CheckSettings(RunContext& run, const Location& settings, int location) {
  const int entity = ftc::kLocationSelection + location;
  if (settings.path_points < 2 || settings.path_points > kMostPathPoints) {
    ThrowFieldFault(run, DbTable::kFtc, entity, kPathPointsField, settings.path_points,
                    "2 to " + std::to_string(kMostPathPoints) + " points on the section's path");
  }
  if (!std::isfinite(settings.radius)) {
    throw InputFault(run.database.paths[static_cast<std::size_t>(DbTable::kFtc) - 1],
                     "entity " + std::to_string(entity) + ", field " + std::to_string(kRadiusField),
                     std::to_string(settings.radius), "a finite radius of curvature");
  }
}

PlanePoint PathCoordinates(RunContext& run, int node) {
  return {DbGetReal(run.database, DbTable::kNod, node, kPathX),
          DbGetReal(run.database, DbTable::kNod, node, kPathY)};
}

void CheckEnds(const RunContext& run, const Section& section) {
  const double dx = section.last.x - section.first.x;
  const double dy = section.last.y - section.first.y;
  if (dx * dx + dy * dy > 0.0 && std::isfinite(dx) && std::isfinite(dy)) return;
  throw InputFault(run.database.paths[static_cast<std::size_t>(DbTable::kNod) - 1],
                   "distance of nodes " + std::to_string(section.first_node) + " and " +
                       std::to_string(section.last_node) + ", the ends of section " +
                       std::to_string(section.number) + ",",
                   std::to_string(std::hypot(dx, dy)), "more than 0");
}

PlaneComponents NodeStress(const NodalStressStore& store, int node, int slot) {
  const StressTensor stress = store.NodalStress(node, slot);
  return {stress[0], stress[1], stress[2], stress[3]};
}

PlaneComponents StressAt(const NodalStressStore& store, int slot, const PointPlace& place) {
  if (place.node != 0) return NodeStress(store, place.node, slot);
  std::array<PlaneComponents, 4> corners{};
  for (std::size_t i = 0; i < static_cast<std::size_t>(place.corner_count); ++i) {
    corners[i] = NodeStress(store, place.corners[i], slot);
  }
  PlaneComponents stress{};
  for (std::size_t c = 0; c < stress.size(); ++c) {
    stress[c] = Interpolate(place.corner_count, place.local,
                            {corners[0][c], corners[1][c], corners[2][c], corners[3][c]});
  }
  return stress;
}

void Show(RunContext& run, int message, int number) {
  const std::array<float, 1> arguments = {static_cast<float>(number)};
  run.services.ShowMessage(message, arguments, Severity::kInformation);
}

bool HasOwnStresses(int load_case) { return load_case > 0 && load_case != kZeroLoadCase; }

// The first loading that takes part with the same load case, the loading itself at the latest.
int FirstWithLoadCase(const AppliedConditions& conditions, int loading) {
  int k = 1;
  while (conditions.linearised_case[k] != conditions.linearised_case[loading]) ++k;
  return k;
}

// A loading whose stresses are stored owns no slot; another one of its load case may.
int SlotOfLoadCase(RunContext& run, const StudyState& study, const NodalStressStore& store, int loading,
                   int load_case) {
  for (int k = 1; k <= kMaxLoadings; ++k) {
    const bool same = study.conditions.stress_case[k] == load_case &&
                      study.definition.loadings[k].time_step == study.definition.loadings[loading].time_step;
    if (same && store.SlotOf(k) > 0) return store.SlotOf(k);
  }
  return RequireSlot(run, study.properties, store, loading, load_case);
}

}  // namespace

std::optional<Section> FindSection(RunContext& run, const StudyState& study, int location) {
  if (!study.locations.Holds(location)) return std::nullopt;
  const Location& settings = study.locations[location];
  if (settings.section < 1 || settings.section > kMaxSections) return std::nullopt;
  const SectionEnds ends = FindSectionEnds(study, settings.section);
  if (ends.second == 0 || (location != ends.first && location != ends.second)) return std::nullopt;
  const Location& first = study.locations[ends.first];
  const Location& second = study.locations[ends.second];
  if (!first.node_exists || !second.node_exists || first.node == second.node) return std::nullopt;

  CheckSettings(run, settings, location);
  Section section;
  section.number = settings.section;
  section.first_node = first.node;
  section.last_node = second.node;
  section.first = PathCoordinates(run, first.node);
  section.last = PathCoordinates(run, second.node);
  section.location_first = location == ends.first;
  if (section.last.x < section.first.x) {
    std::swap(section.first_node, section.last_node);
    std::swap(section.first, section.last);
    section.location_first = !section.location_first;
  }
  CheckEnds(run, section);
  section.path_points = settings.path_points;
  section.radius = settings.radius;
  section.no_path_bending = settings.bending_flag == 1;
  return section;
}

SectionPath LocatePath(RunContext& run, const StudyState& study, const Section& section) {
  if (FindStressKind(run.services, 0) == StressKind::kNone) {
    StopSection(run, {"  ERROR - No stress file"});
  }
  SectionMesh mesh(run, study);
  SectionPath path;
  int hint = 0;
  for (const PlanePoint& point : PathPoints(section.first, section.last, section.path_points)) {
    path.x.push_back(point.x);
    path.y.push_back(point.y);
    path.places.push_back(mesh.Locate(point, static_cast<int>(path.x.size()), hint));
    hint = path.places.back().element;
  }
  return path;
}

std::vector<PlaneComponents> PointStresses(const NodalStressStore& store, int slot, const SectionPath& path) {
  std::vector<PlaneComponents> stresses;
  for (const PointPlace& place : path.places) stresses.push_back(StressAt(store, slot, place));
  return stresses;
}

SectionStress LineariseSection(RunContext& run, const Section& section, const SectionPath& path,
                               std::span<const PlaneComponents> stresses) {
  const PathStresses input{path.x, path.y, stresses};
  if (section.radius == 0.0) return LineariseStraight(input);
  const std::optional<SectionStress> curved = LineariseCurved(input, section.radius, section.no_path_bending);
  if (curved) return *curved;
  run.listing.Line("  ERROR - RHO is zero");
  return {};
}

bool FormSectionStresses(RunContext& run, const NodalStressStore& store, StudyState& study) {
  const int location = study.properties.ActivatedLocation;
  const std::optional<Section> section = FindSection(run, study, location);
  if (!section) return false;
  std::optional<SectionPath> path;
  AppliedConditions& conditions = study.conditions;
  for (int k = 1; k <= kMaxLoadings; ++k) {
    const int load_case = conditions.linearised_case[k];
    if (!HasOwnStresses(load_case)) continue;
    if (const int earlier = FirstWithLoadCase(conditions, k); earlier < k) {
      conditions.linearised[k] = conditions.linearised[earlier];
      continue;
    }
    Show(run, kLocationMessage, location);
    Show(run, kLoadingMessage, k);
    Show(run, kLoadCaseMessage, load_case);
    if (!path) path = LocatePath(run, study, *section);
    const int slot = SlotOfLoadCase(run, study, store, k, load_case);
    const std::vector<PlaneComponents> stresses = PointStresses(store, slot, *path);
    conditions.linearised[k] =
        EndStress(LineariseSection(run, *section, *path, stresses), section->location_first);
  }
  return true;
}

}  // namespace zentor
