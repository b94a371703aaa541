// A small axisymmetric wall with linear stress fields, as a study on disk.
#pragma once

#include <functional>
#include <string>

#include "authoring/element_kind.h"
#include "authoring/study_definition.h"

namespace zentor::test {

// Nodes 1 .. 15 at X = 10 .. 14 (fastest) and Y = 0, 1, 2; node 16 apart from the wall at (20, 0). Elements 1
// .. 4: 4-node, the lower row; 5 .. 12: 3-node, two for each cell of the upper row.
struct SectionWall {
  // SX, SY, SZ, TXY at a node of the model.
  using Field = std::function<std::array<float, 4>(float x, float y)>;

  SectionWall() {
    study.title = "wall";
    for (int j = 0; j < 3; ++j) {
      for (int i = 0; i < 5; ++i) AddNode(10.0F + static_cast<float>(i), static_cast<float>(j));
    }
    AddNode(20.0F, 0.0F);
    for (int i = 1; i <= 4; ++i) AddElement("quad4", {i, i + 1, i + 6, i + 5});
    for (int i = 6; i <= 9; ++i) {
      AddElement("tria3", {i, i + 1, i + 6});
      AddElement("tria3", {i, i + 6, i + 5});
    }
    study.materials.push_back({.number = 1, .modulus = 190000.0F});
  }

  void AddNode(float x, float y) {
    const auto number = static_cast<std::int32_t>(study.model.nodes.size()) + 1;
    study.model.nodes.push_back({.number = number, .xyz = {x, y, 0.0F}});
  }
  void AddElement(std::string_view kind, const std::vector<int>& nodes) {
    StudyModel& model = study.model;
    const auto code = static_cast<std::int16_t>(FindElementKind(kind)->type_code);
    model.elements.push_back({.number = static_cast<std::int32_t>(model.elements.size()) + 1,
                              .type_code = code,
                              .node_count = static_cast<std::int32_t>(nodes.size()),
                              .first_node = static_cast<std::uint32_t>(model.element_nodes.size())});
    model.element_nodes.insert(model.element_nodes.end(), nodes.begin(), nodes.end());
  }
  // After the elements.
  void AddCase(const Field& field, float temperature = 0.0F) {
    StressCase added;
    added.number = static_cast<int>(study.stress_cases.size()) + 1;
    added.name = std::to_string(added.number);
    added.fields.resize(1);
    for (const std::int32_t node : study.model.element_nodes) {
      const auto& at = study.model.nodes[static_cast<std::size_t>(node) - 1].xyz;
      const auto [sx, sy, sz, txy] = field(at[0], at[1]);
      for (const float value : {sx, sy, sz, txy, 0.0F, 0.0F}) added.fields[0].values.push_back(value);
    }
    study.stress_cases.push_back(added);
    study.temperatures.push_back(
        {.stress_case = added.number, .values = std::vector<float>(study.model.nodes.size(), temperature)});
  }
  // Loadings are numbered in the order of the calls.
  void AddEvent(int cycles, const std::vector<std::pair<int, float>>& cases_and_scales) {
    AuthoredEvent event;
    event.number = static_cast<int>(study.events.size()) + 1;
    event.cycles = cycles;
    for (const auto& [stress_case, scale] : cases_and_scales) {
      event.loadings.push_back({.number = ++loadings, .stress_case = stress_case, .scale = scale});
    }
    study.events.push_back(event);
  }
  void AddLocation(int node, int section, int path_points = 17, float radius = 0.0F) {
    study.locations.push_back({.number = static_cast<int>(study.locations.size()) + 1,
                               .node = node,
                               .section = section,
                               .path_points = path_points,
                               .radius = radius});
  }

  StudyDefinition study;
  int loadings = 0;
};

}  // namespace zentor::test
