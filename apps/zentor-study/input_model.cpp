#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "authoring/element_kind.h"
#include "input_context.h"
#include "input_surface.h"
#include "row_source.h"

namespace zentor::companion {

namespace {

constexpr std::array<Choice, 3> kSystemKinds = {{{"cartesian", 0}, {"cylindrical", 1}, {"spherical", 2}}};

template <typename Entity>
void SortByNumber(std::vector<Entity>& entities) {
  const auto ascending = [](const Entity& a, const Entity& b) { return a.number < b.number; };
  if (std::is_sorted(entities.begin(), entities.end(), ascending)) return;
  std::sort(entities.begin(), entities.end(), ascending);
}

void ReadNodes(InputContext& context, TableReader& table) {
  enum : std::size_t { kNode, kX, kY, kZ, kSystem };
  constexpr std::array<Column, 5> kColumns = {{{"node"}, {"x"}, {"y"}, {"z"}, {"cs", false}}};
  const auto rows = OpenRows(table, "nodes", context.folder, {kColumns}, context.files);
  if (!rows) return;
  std::vector<AuthoredNode>& nodes = context.study.model.nodes;
  NumberSet numbers;
  const auto read = [&] {
    AuthoredNode node;
    node.number = rows->Integer(kNode, {1, kMaxModelNumber});
    if (!numbers.Insert(node.number)) {
      rows->Fail(fmt::format("node {} is defined twice, expected every node once", node.number));
    }
    node.xyz = {rows->Real(kX, kAnyReal), rows->Real(kY, kAnyReal), rows->Real(kZ, kAnyReal)};
    if (rows->Has(kSystem)) node.coordinate_system = rows->Integer(kSystem, {0, 9999});
    nodes.push_back(node);
  };
  if (ReadRows(*rows, *context.errors, read) && nodes.empty()) {
    table.ReportText("nodes", "names a table without rows, expected at least one node");
  }
  SortByNumber(nodes);
}

// The kind named in the row. Tables repeat one kind over millions of rows.
const ElementKind& KindOf(const RowSource& rows, std::size_t column, const ElementKind* last) {
  const std::string_view name = rows.Text(column);
  if (last != nullptr && last->name == name) return *last;
  const ElementKind* kind = FindElementKind(name);
  if (kind != nullptr) return *kind;
  std::vector<std::string_view> names;
  for (const ElementKind& one : ElementKinds()) names.push_back(one.name);
  rows.Fail(
      fmt::format("kind is '{}', expected one of {}{}", name, ElementKindNames(), DidYouMean(name, names)));
}

// Nodes of the element in the row; whether they exist is told where the nodes table is sound.
void ReadElementNodes(const InputContext& context, const RowSource& rows, const ElementKind& kind,
                      int element, bool nodes_known, std::vector<std::int32_t>& nodes) {
  const std::size_t count = rows.TailCount();
  if (count != static_cast<std::size_t>(kind.node_count)) {
    rows.Fail(fmt::format("element {} of kind {} has {} nodes, expected {}", element, kind.name, count,
                          kind.node_count));
  }
  nodes.clear();
  for (std::size_t i = 0; i < count; ++i) {
    const int node = rows.TailInteger(i, {1, kMaxModelNumber});
    if (nodes_known && context.index.Node(node) == ModelIndex::kNone) {
      rows.Fail(fmt::format("element {} has node {}, expected a node of the nodes table", element, node));
    }
    if (std::find(nodes.begin(), nodes.end(), node) != nodes.end()) {
      rows.Fail(fmt::format("element {} has node {} twice, expected different nodes", element, node));
    }
    nodes.push_back(node);
  }
}

// Elements of one kind are one group; groups are numbered in order of appearance.
int GroupOf(StudyModel& model, const ElementKind& kind, std::vector<const ElementKind*>& kinds) {
  const auto found = std::find(kinds.begin(), kinds.end(), &kind);
  if (found != kinds.end()) return static_cast<int>(found - kinds.begin()) + 1;
  kinds.push_back(&kind);
  model.groups.push_back({static_cast<int>(kinds.size()), kind.type_code});
  return static_cast<int>(kinds.size());
}

void ReadElements(InputContext& context, TableReader& table, bool nodes_known) {
  enum : std::size_t { kElement, kKind, kMaterial };
  constexpr std::array<Column, 3> kColumns = {{{"element"}, {"kind"}, {"material", false}}};
  const int default_material = table.Integer("material", {1, kMaxMaterialNumber}, 1);
  const auto rows = OpenRows(table, "elements", context.folder, {kColumns, "n"}, context.files);
  if (!rows) return;
  StudyModel& model = context.study.model;
  std::vector<const ElementKind*> kinds;
  const ElementKind* kind = nullptr;
  NumberSet numbers;
  std::vector<std::int32_t> nodes;
  const auto read = [&] {
    AuthoredElement element;
    element.number = rows->Integer(kElement, {1, kMaxModelNumber});
    if (!numbers.Insert(element.number)) {
      rows->Fail(fmt::format("element {} is defined twice, expected every element once", element.number));
    }
    kind = &KindOf(*rows, kKind, kind);
    element.type_code = static_cast<std::int16_t>(kind->type_code);
    element.material =
        rows->Has(kMaterial) ? rows->Integer(kMaterial, {1, kMaxMaterialNumber}) : default_material;
    ReadElementNodes(context, *rows, *kind, element.number, nodes_known, nodes);
    element.node_count = kind->node_count;
    element.first_node = static_cast<std::uint32_t>(model.element_nodes.size());
    element.group = static_cast<std::int16_t>(GroupOf(model, *kind, kinds));
    model.element_nodes.insert(model.element_nodes.end(), nodes.begin(), nodes.end());
    model.elements.push_back(element);
  };
  if (ReadRows(*rows, *context.errors, read) && model.elements.empty()) {
    table.ReportText("elements", "names a table without rows, expected at least one element");
  }
  SortByNumber(model.elements);
}

void ReadCoordinateSystems(InputContext& context, TableReader& table) {
  std::vector<int> taken;
  const auto point = [](TableReader& system, std::string_view key) {
    const std::vector<float> values = system.Reals(key, 3, kAnyReal);
    return std::array<float, 3>{values[0], values[1], values[2]};
  };
  for (TableReader& entry : table.Tables("coordinate_system")) {
    CoordinateSystem system;
    system.number = EntityNumber(entry, taken.size(), 9999, taken);
    system.kind = entry.Option("kind", kSystemKinds, 0);
    system.origin = point(entry, "origin");
    system.on_x = point(entry, "on_x");
    system.in_plane = point(entry, "in_plane");
    entry.Finish();
    context.study.model.coordinate_systems.push_back(system);
  }
}

}  // namespace

void ReadModel(InputContext& context, TableReader& root) {
  std::optional<TableReader> table = root.Table("model");
  if (!table) {
    if (!root.Has("model")) root.ReportMissing("model", "a table [model] with 'nodes' and 'elements'");
    return;
  }
  const ErrorWatch watch(*context.errors);
  ReadNodes(context, *table);
  context.index.Build(context.study.model);
  ReadElements(context, *table, watch.Clean());
  context.index.Build(context.study.model);
  ReadCoordinateSystems(context, *table);
  ReadSurface(context, *table, watch.Clean());
  table->Finish();
}

void ReadMaterials(InputContext& context, TableReader& root) {
  const ErrorWatch watch(*context.errors);
  std::vector<int> taken;
  for (TableReader& table : root.Tables("material")) {
    AuthoredMaterial material;
    material.number = EntityNumber(table, taken.size(), kMaxMaterialNumber, taken);
    table.Text("name", "");
    material.modulus = table.Real("modulus", kPositive, 0.0F);
    material.yield_strength = table.Real("yield_strength", kPositive, 0.0F);
    material.ultimate_strength = table.Real("ultimate_strength", kPositive, 0.0F);
    table.Finish();
    context.study.materials.push_back(material);
  }
  if (taken.empty() || !watch.Clean() || !context.Sound({Part::kModel})) return;
  for (const AuthoredElement& element : context.study.model.elements) {
    if (std::find(taken.begin(), taken.end(), element.material) != taken.end()) continue;
    return root.ReportText("material", fmt::format("has no number {}, which element {} is made of",
                                                   element.material, element.number));
  }
}

}  // namespace zentor::companion
