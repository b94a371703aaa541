// Sections: straight paths through the wall of a plane or axisymmetric model between two locations, and the
// linearised stresses at a location that lies at one end of one. What is computed: docs/sections.md.
#pragma once

#include <optional>
#include <vector>

#include "stress/nodal_stress_store.h"
#include "stress/section_linearisation.h"
#include "stress/section_mesh.h"
#include "study/run_context.h"
#include "study/study_state.h"

namespace zentor {

inline constexpr int kMostPathPoints = 65;

// The section of a location. Point 1 of its path is the end with the smaller X, at equal X the end whose
// location has the lower number.
struct Section {
  int number = 0;
  int first_node = 0, last_node = 0;  // at point 1 and at the last point
  PlanePoint first, last;
  bool location_first = true;  // the location lies at point 1
  int path_points = 0;
  double radius = 0.0;  // of curvature of the meridian, 0: straight
  bool no_path_bending = false;
};

// The section of a location of the study, with the settings of that location: nothing when the location is
// not one of the first two of its section, when one of their nodes does not exist and when both have one
// node. Throws InputFault for settings that cannot be used and for ends that coincide.
std::optional<Section> FindSection(RunContext& run, const StudyState& study, int location);

// The points of a section's path with their places in the model.
struct SectionPath {
  std::vector<double> x, y;
  std::vector<PointPlace> places;
};

// Stops the run when the study has no stress file of any kind and as SectionMesh::Locate does.
SectionPath LocatePath(RunContext& run, const StudyState& study, const Section& section);

// Stresses of a slot at the points of a path: of the node, or interpolated between the element's corners.
std::vector<PlaneComponents> PointStresses(const NodalStressStore& store, int slot, const SectionPath& path);

// Membrane and bending parts; the straight form for radius 0, the curved one otherwise.
SectionStress LineariseSection(RunContext& run, const Section& section, const SectionPath& path,
                               std::span<const PlaneComponents> stresses);

// The linearised stresses of the activated location under every loading with a load case of its own,
// unscaled, into study.conditions.linearised. False when the location has no section. Messages 9034 to 9036
// for every load case; stops the run as LocatePath does, and when the store lacks a load case.
bool FormSectionStresses(RunContext& run, const NodalStressStore& store, StudyState& study);

}  // namespace zentor
