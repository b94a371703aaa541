#include "mesh_reader.h"

#include <algorithm>

#include "authoring/study_tables.h"
#include "services/faults.h"
#include "stress_file.h"

namespace zentor::companion {

namespace {

void ReadElement(StudyTables& tables, int id, int field_count, const std::vector<std::int32_t>& place,
                 Mesh& mesh) {
  std::array<std::int32_t, 4> head{};
  tables.Ints(DbTable::kEle, id, 2, head);
  const int count = head[element_table::kNodeCount - 2];
  const auto fault = [&](const std::string& what, int found, const std::string& wanted) {
    throw InputFault(tables.Path(".ELE"), "element " + std::to_string(id) + ", " + what,
                     std::to_string(found), wanted);
  };
  const int room = std::max(0, field_count - element_table::kFirstNode + 1);
  if (count < 0 || count > room) fault("number of nodes", count, "0 to " + std::to_string(room));
  std::vector<std::int32_t> nodes(static_cast<std::size_t>(count));
  tables.Ints(DbTable::kEle, id, element_table::kFirstNode, nodes);
  for (const std::int32_t node : nodes) {
    if (node < 1 || node >= static_cast<std::int64_t>(place.size()) ||
        place[static_cast<std::size_t>(node)] < 0) {
      fault("node number", node, "a node of the model");
    }
    mesh.connectivity.push_back(place[static_cast<std::size_t>(node)]);
  }
  mesh.element_ids.push_back(id);
  mesh.materials.push_back(ElementMaterial(head[element_table::kMaterial - 2]));
  mesh.type_codes.push_back(tables.Int(DbTable::kEgr, head[0], group_table::kTypeCode));
  mesh.ends.push_back(mesh.connectivity.size());
}

}  // namespace

int ElementMaterial(std::int32_t field3) {
  return static_cast<std::int16_t>(static_cast<std::uint32_t>(field3) & 0xFFFFU) % 10000;
}

Mesh ReadNodes(StudyTables& tables) {
  Mesh mesh;
  const int highest = tables.MaxId(DbTable::kNod);
  mesh.node_ids.reserve(static_cast<std::size_t>(tables.Count(DbTable::kNod)));
  for (int id = 1; id <= highest; ++id) {
    if (!tables.Has(DbTable::kNod, id)) continue;
    std::array<float, 3> point{};
    tables.Reals(DbTable::kNod, id, 2, point);
    mesh.node_ids.push_back(id);
    mesh.points.push_back(point);
  }
  return mesh;
}

Mesh ReadMesh(StudyTables& tables) {
  Mesh mesh = ReadNodes(tables);
  const auto highest_node = static_cast<std::size_t>(mesh.node_ids.empty() ? 0 : mesh.node_ids.back());
  std::vector<std::int32_t> place(highest_node + 1, -1);
  for (std::size_t i = 0; i < mesh.node_ids.size(); ++i) {
    place[static_cast<std::size_t>(mesh.node_ids[i])] = static_cast<std::int32_t>(i);
  }
  const int highest = tables.MaxId(DbTable::kEle);
  const TableFile* table = tables.Find(DbTable::kEle);
  for (int id = 1; id <= highest; ++id) {
    if (tables.Has(DbTable::kEle, id)) ReadElement(tables, id, table->geometry().field_count, place, mesh);
  }
  for (const Extension extension : {".STE", ".STN", ".STP"}) {
    if (!tables.HasFile(extension)) continue;
    const auto stored = StressFile(tables.Path(extension)).TypeCodes(mesh.element_ids);
    for (std::size_t i = 0; i < stored.size(); ++i) {
      if (stored[i] != 0) mesh.type_codes[i] = stored[i];
    }
    break;
  }
  return mesh;
}

std::optional<std::size_t> FindNode(const Mesh& mesh, int node) {
  const auto found = std::lower_bound(mesh.node_ids.begin(), mesh.node_ids.end(), node);
  if (found == mesh.node_ids.end() || *found != node) return std::nullopt;
  return static_cast<std::size_t>(found - mesh.node_ids.begin());
}

}  // namespace zentor::companion
