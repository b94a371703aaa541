// The model as a section's path sees it, and where on it a point lies.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "database/one_based.h"
#include "stress/section_geometry.h"
#include "stress/stress_result_file.h"
#include "study/run_context.h"
#include "study/study_state.h"

namespace zentor {

// Where a path point was found: at a node, or inside an element at `local`.
struct PointPlace {
  int element = 0;  // that holds the point, or whose corner it is
  int node = 0;     // 0 inside the element
  int corner_count = 0;
  std::array<int, 4> corners{};  // node numbers
  LocalPoint local;
};

// Elements and path coordinates of a plane or axisymmetric model, read from the tables when it is made. Type
// codes come from the stress file, for elements without a record from the number of nodes. Solver thread
// only; `run` and `study` must outlive it.
class SectionMesh {
 public:
  // Without a stress file that can be opened all type codes come from the numbers of nodes.
  SectionMesh(RunContext& run, const StudyState& study);

  // X and Y of a node's fields for paths, 0 for a node that does not exist. REQUIRES: 1 .. highest node.
  PlanePoint Coordinates(int node) const { return {nodes_[node][0], nodes_[node][1]}; }

  // Place of path point `number` (from 1): first the element `hint` (0: none) is tried, then every element in
  // order. Stops the run when an element that is tried is neither a 4-node nor a 3-node plane element, and
  // when no element holds the point; throws InputFault for an element with nodes outside the model and for
  // one that is too degenerate to find the point in it.
  PointPlace Locate(PlanePoint point, int number, int hint);

 private:
  struct Element {
    bool exists = false;
    bool checked = false;  // type and nodes have been found good
    int corner_count = 0;
    std::int32_t node_count = 0;
    std::array<std::int32_t, 4> corners{};
  };

  const Element& Checked(int id);
  std::optional<PointPlace> TryElement(int id, PlanePoint point, int number);
  InputFault Fault(const std::string& place, const std::string& found, const std::string& wanted) const;

  RunContext& run_;
  std::optional<StressResultFile> stresses_;
  OneBased<std::array<float, 2>> nodes_;
  OneBased<Element> elements_;
};

}  // namespace zentor
