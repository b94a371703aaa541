#include "stress/section_mesh.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "database/edit.h"
#include "stress/section_stop.h"
#include "study/stress_results.h"

namespace zentor {
namespace {

// Fields of the tables.
constexpr int kPathCoordinates = 6;  // of a node: X and Y of paths
constexpr int kNodeCountField = 5;   // of an element; its nodes follow
constexpr std::size_t kElementFields = 9;

constexpr int kPlane4 = 42;  // type codes
constexpr int kPlane3 = 2;

int TypeByNodeCount(int node_count) {
  if (node_count == 4) return kPlane4;
  return node_count == 3 ? kPlane3 : 0;
}

std::string Shown(PlanePoint point) {
  char text[64];
  std::snprintf(text, sizeof text, "X=%.7g, Y=%.7g", point.x, point.y);
  return text;
}

std::optional<StressResultFile> OpenStresses(RunContext& run, const StudyState& study) {
  const StressKind kind =
      study.stress_kind == StressKind::kNone ? FindStressKind(run.services, 0) : study.stress_kind;
  if (kind == StressKind::kNone) return std::nullopt;
  return OpenStressResultFile(run, kind);
}

[[noreturn]] void StopUnsuitable(RunContext& run, int element) {
  StopSection(run,
              {"ERROR - Not suitable to apply the simplified elastic-plastic",
               "        formulation (use only PLANE2D or TRIANG elements"},
              "; element " + std::to_string(element) + " is of another type)");
}

[[noreturn]] void StopOutside(RunContext& run, PlanePoint point, int number) {
  Edit line;
  line.Text(" ERROR - Point").I(3, number).Text(" (X=").F(10, 2, point.x);
  line.Text("  Y=").F(10, 2, point.y).Text(")  of the section,");
  StopSection(run, {line.str(), "         is not defined"}, " (" + Shown(point) + " lies in no element)");
}

}  // namespace

SectionMesh::SectionMesh(RunContext& run, const StudyState& study)
    : run_(run), stresses_(OpenStresses(run, study)) {
  nodes_.Assign(static_cast<std::size_t>(study.sizes.highest_node));
  for (int n = 1; n <= nodes_.size(); ++n) {
    DbGetReals(run.database, DbTable::kNod, n, kPathCoordinates, nodes_[n]);
  }
  elements_.Assign(static_cast<std::size_t>(study.sizes.highest_element));
  for (int e = 1; e <= elements_.size(); ++e) {
    std::array<std::int32_t, kElementFields> fields{};
    DbGetInts(run.database, DbTable::kEle, e, 1, fields);
    Element& element = elements_[e];
    element.exists = fields[0] != 0;
    element.node_count = fields[kNodeCountField - 1];
    std::copy(fields.begin() + kNodeCountField, fields.end(), element.corners.begin());
  }
}

InputFault SectionMesh::Fault(const std::string& place, const std::string& found,
                              const std::string& wanted) const {
  return {run_.database.paths[static_cast<std::size_t>(DbTable::kEle) - 1], place, found, wanted};
}

const SectionMesh::Element& SectionMesh::Checked(int id) {
  Element& element = elements_[id];
  if (element.checked) return element;
  std::optional<int> type;
  if (stresses_) type = ElementTypeCode(*stresses_, id);
  if (!type) type = TypeByNodeCount(element.node_count);
  if (*type != kPlane4 && *type != kPlane3) StopUnsuitable(run_, id);
  element.corner_count = *type == kPlane4 ? 4 : 3;

  const std::string place = "element " + std::to_string(id);
  if (element.node_count < element.corner_count) {
    throw Fault(
        place + ", number of nodes", std::to_string(element.node_count),
        "at least " + std::to_string(element.corner_count) + " for type code " + std::to_string(*type));
  }
  for (std::size_t i = 0; i < static_cast<std::size_t>(element.corner_count); ++i) {
    const int node = element.corners[i];
    if (nodes_.Holds(node) && DbSlotOf(run_.database, DbTable::kNod, node) != 0) continue;
    throw Fault(place + ", node " + std::to_string(i + 1), std::to_string(node), "a node of the model");
  }
  element.checked = true;
  return element;
}

std::optional<PointPlace> SectionMesh::TryElement(int id, PlanePoint point, int number) {
  if (!elements_.Holds(id) || !elements_[id].exists) return std::nullopt;
  const Element& element = Checked(id);
  ElementCorners corners{element.corner_count, {}};
  PointPlace place;
  place.element = id;
  place.corner_count = element.corner_count;
  for (std::size_t i = 0; i < static_cast<std::size_t>(element.corner_count); ++i) {
    place.corners[i] = element.corners[i];
    corners.points[i] = Coordinates(element.corners[i]);
  }
  if (const auto corner = CornerAt(corners, point)) {
    place.node = place.corners[*corner];
    return place;
  }
  if (!LiesInside(corners, point)) return std::nullopt;
  const std::optional<LocalPoint> local = FindLocal(corners, point);
  if (!local) {
    throw Fault("element " + std::to_string(id), "too degenerate",
                "a shape in which point " + std::to_string(number) + " of the section (" + Shown(point) +
                    ") has a place");
  }
  place.local = *local;
  return place;
}

PointPlace SectionMesh::Locate(PlanePoint point, int number, int hint) {
  if (const auto place = TryElement(hint, point, number)) return *place;
  for (int id = 1; id <= elements_.size(); ++id) {
    if (const auto place = TryElement(id, point, number)) return *place;
  }
  StopOutside(run_, point, number);
}

}  // namespace zentor
