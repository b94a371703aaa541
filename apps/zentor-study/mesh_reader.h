// The model of a study, nodes and elements, from its tables.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "study_files.h"

namespace zentor::companion {

struct Mesh {
  std::vector<int> node_ids;                 // ascending
  std::vector<std::array<float, 3>> points;  // of node_ids
  std::vector<int> element_ids;              // ascending
  std::vector<int> materials;                // of element_ids, 0 none
  std::vector<int> type_codes;               // of element_ids, 0 while unknown
  std::vector<std::size_t> ends;             // of element_ids: one past its last place in connectivity
  std::vector<std::int32_t> connectivity;    // places in node_ids, counted from 0

  std::size_t ElementStart(std::size_t element) const { return element == 0 ? 0 : ends[element - 1]; }
  std::span<const std::int32_t> ElementNodes(std::size_t element) const {
    return {connectivity.data() + ElementStart(element), ends[element] - ElementStart(element)};
  }
};

// The nodes alone. Throws InputFault and FileError.
Mesh ReadNodes(StudyTables& tables);
// Nodes and elements. The type code of an element is that of its record in the stress file (".STE", else
// ".STN", else ".STP"), else that of its group. Throws InputFault when an element names a node that does not
// exist.
Mesh ReadMesh(StudyTables& tables);

// Place of a node in mesh.node_ids.
std::optional<std::size_t> FindNode(const Mesh& mesh, int node);

// Material number of the packed third field of an element.
int ElementMaterial(std::int32_t field3);

}  // namespace zentor::companion
