// Where the stresses of an element's nodes lie in its record of a stress file, by element type code and form
// of the record (docs/formats/stress-files.md). Shared by the reader and the writer.
#pragma once

#include <cstdint>

namespace zentor {

enum class NodeData : std::uint8_t {
  kNone,    // the element has no stress contribution
  kLine,    // one value for both nodes of a line element; the nodes are those of the model
  kDirect,  // per node: its number and SX, SY, SZ
  kTensor,  // per node: its number and all six components
};

// The two forms of element records: that of ".STE" and ".STP", and that of ".STN".
enum class RecordForm : std::uint8_t { kShort, kLong };

// Word positions, counted from the start of the record, of the requested layer and surface. The node at
// place j (from 0) has its number at node_word + j node_stride and its first component at component_word +
// j component_stride.
struct RecordLayout {
  NodeData data = NodeData::kNone;
  int components = 0;
  int node_stride = 0;
  int component_stride = 0;
  std::int64_t node_word = 0;
  std::int64_t component_word = 0;
  std::int64_t words = 0;  // the shortest record that holds all of it

  std::int64_t first_word() const { return node_word < component_word ? node_word : component_word; }
};

// Which of the two sets of values of a shell layer.
enum class Surface : std::uint8_t { kTop, kBottom };
inline Surface SurfaceOf(int shell_surface) { return shell_surface == 2 ? Surface::kBottom : Surface::kTop; }

// Whether records of that type have layers, which a requested layer must not exceed.
bool IsLayered(int type_code);
// Whether a record of that type keeps the two surfaces of a layer apart.
bool HasSurfaces(int type_code);

// nodes: 1 .. stress_format::kMaxElementNodes; layer >= 1. kNone for every type without contribution.
RecordLayout LayoutOf(int type_code, RecordForm form, int nodes, int layer, Surface surface);

}  // namespace zentor
