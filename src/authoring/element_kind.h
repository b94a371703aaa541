// Element kinds that a study can be built from: their names in CSV tables, node orders and type codes.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zentor {

// What an element's stresses look like: one value per node, or values per layer and side.
enum class StressShape : std::uint8_t { kLine, kContinuum, kLayered, kShell };

struct ElementKind {
  std::string_view name;  // e.g. "tet10"
  int node_count;
  int type_code;  // of the element's records in a stress file and of its element group
  StressShape shape;
  int vtk_cell;  // cell type of the visualization toolkit's files; node orders agree
  // Faces as places in the node list, counted from 0; corners first. A face of a plane element, shell or
  // layered element is the element itself.
  std::span<const std::span<const std::uint8_t>> faces;
};

// All kinds. Name, and the pair (type code, node count), are unique.
std::span<const ElementKind> ElementKinds();
const ElementKind* FindElementKind(std::string_view name);          // null when unknown
const ElementKind* FindElementKind(int type_code, int node_count);  // null when unknown
// "hex8, hex20, ...", for messages.
std::string ElementKindNames();

}  // namespace zentor
