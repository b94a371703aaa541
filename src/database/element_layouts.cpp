#include "database/element_layouts.h"

#include <algorithm>

namespace zentor {

namespace {

enum class Family { kNone, kLine, kDirect, kSolid, kLayeredSolid, kShell, kPlateShell, kThickShell };

Family FamilyOf(int type_code) {
  switch (type_code) {
    case 1:
    case 8:
      return Family::kLine;
    case 3:
    case 4:
    case 9:
    case 17:
      return Family::kDirect;
    case 2:
    case 42:
    case 45:
    case 72:
    case 92:
    case 98:
      return Family::kSolid;
    case 46:
      return Family::kLayeredSolid;
    case 43:
    case 44:
    case 63:
    case 64:
    case 94:
      return Family::kShell;
    case 90:
    case 91:
    case 93:
      return Family::kPlateShell;
    case 53:
    case 54:
      return Family::kThickShell;
    default:
      return Family::kNone;
  }
}

// A layer's block has block_per_node * nodes + block_fixed words; positions are those of the first layer.
struct LayoutRule {
  NodeData data = NodeData::kNone;
  int node_word = 0, node_stride = 0;
  int top_word = 0, bottom_word = 0, component_stride = 0;
  int block_per_node = 0, block_fixed = 0;
};

constexpr LayoutRule kLayeredSolidRule = {NodeData::kTensor, 29, 8, 30, 30, 8, 8, 22};

LayoutRule ShortRule(Family family) {
  switch (family) {
    case Family::kNone:
      return {};
    case Family::kLine:
      return {NodeData::kLine, 9, 0, 9, 9, 0, 0, 0};
    case Family::kDirect:
      return {NodeData::kDirect, 7, 12, 15, 15, 12, 0, 0};
    case Family::kSolid:
      return {NodeData::kTensor, 29, 8, 30, 30, 8, 0, 0};
    case Family::kLayeredSolid:
      return kLayeredSolidRule;
    case Family::kShell:
    case Family::kPlateShell:
    case Family::kThickShell:
      return {NodeData::kTensor, 59, 15, 60, 67, 15, 15, 44};
  }
  return {};
}

LayoutRule LongRule(Family family) {
  switch (family) {
    case Family::kNone:
      return {};
    case Family::kLine:
      return {NodeData::kLine, 10, 0, 10, 10, 0, 0, 0};
    case Family::kDirect:  // numbers and components stride differently
      return {NodeData::kDirect, 7, 17, 15, 15, 27, 0, 0};
    case Family::kSolid:
      return {NodeData::kTensor, 45, 9, 47, 47, 9, 0, 0};
    case Family::kLayeredSolid:
      return kLayeredSolidRule;
    case Family::kShell:  // one block serves every layer
      return {NodeData::kTensor, 90, 16, 92, 99, 16, 0, 0};
    case Family::kPlateShell:
      return {NodeData::kTensor, 59, 15, 61, 68, 15, 15, 44};
    case Family::kThickShell:
      return {NodeData::kTensor, 94, 18, 96, 103, 18, 18, 79};
  }
  return {};
}

int ComponentsOf(NodeData data) {
  switch (data) {
    case NodeData::kNone:
      return 0;
    case NodeData::kLine:
      return 1;
    case NodeData::kDirect:
      return 3;
    case NodeData::kTensor:
      return 6;
  }
  return 0;
}

}  // namespace

bool HasSurfaces(int type_code) {
  const Family family = FamilyOf(type_code);
  return family == Family::kShell || family == Family::kPlateShell || family == Family::kThickShell;
}

bool IsLayered(int type_code) {
  return FamilyOf(type_code) == Family::kLayeredSolid || HasSurfaces(type_code);
}

RecordLayout LayoutOf(int type_code, RecordForm form, int nodes, int layer, Surface surface) {
  const Family family = FamilyOf(type_code);
  const LayoutRule rule = form == RecordForm::kLong ? LongRule(family) : ShortRule(family);
  if (rule.data == NodeData::kNone) return {};

  const std::int64_t block = std::int64_t{rule.block_per_node} * nodes + rule.block_fixed;
  const std::int64_t layer_start = block * (layer - 1);
  RecordLayout layout;
  layout.data = rule.data;
  layout.components = ComponentsOf(rule.data);
  layout.node_stride = rule.node_stride;
  layout.component_stride = rule.component_stride;
  layout.node_word = layer_start + rule.node_word;
  layout.component_word = layer_start + (surface == Surface::kBottom ? rule.bottom_word : rule.top_word);
  const std::int64_t last = rule.data == NodeData::kLine ? 0 : nodes - 1;
  layout.words = std::max(layout.node_word + last * layout.node_stride + 1,
                          layout.component_word + last * layout.component_stride + layout.components);
  return layout;
}

}  // namespace zentor
