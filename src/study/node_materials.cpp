#include <algorithm>
#include <array>
#include <span>
#include <vector>

#include "study/model_input.h"
#include "study/study_messages.h"
#include "study/table_fault.h"

namespace zentor {
namespace {

constexpr int kMaterialField = 3;   // low half: material + 10000 times a number that is not used here
constexpr int kNodeCountField = 5;  // the node numbers follow
constexpr int kFirstNodeField = kNodeCountField + 1;
constexpr int kMaterialModulus = 10000;
constexpr int kNodesAtOnce = 20;  // as many as the usual element has, read together with its other fields

// Fields 2 and on of an element's record.
class ElementRecord {
 public:
  ElementRecord(RunContext& run, int element) : run_(run), element_(element) {
    DbGetInts(run.database, DbTable::kEle, element, 2, fields_);
  }

  // Material number, 0 none. Throws InputFault when there is no such material.
  int Material(int material_count) const {
    const auto low_half = static_cast<std::int16_t>(Field(kMaterialField) & 0xFFFF);
    const int material = low_half % kMaterialModulus;
    if (material < 0 || material > material_count) {
      ThrowFieldFault(run_, DbTable::kEle, element_, kMaterialField, material,
                      "a material of 0 to " + std::to_string(material_count));
    }
    return material;
  }

  // Node numbers, in `more` when they do not fit into the record read first.
  std::span<const std::int32_t> Nodes(std::vector<std::int32_t>& more) const {
    const int count = Field(kNodeCountField);
    const int most = std::max(DbFieldCount(run_.database, DbTable::kEle) - kNodeCountField, 0);
    if (count < 0 || count > most) {
      ThrowFieldFault(run_, DbTable::kEle, element_, kNodeCountField, count,
                      "0 to " + std::to_string(most) + " nodes");
    }
    if (count <= kNodesAtOnce) return std::span(fields_).subspan(kFirstNodeField - 2, count);
    more.resize(count);
    DbGetInts(run_.database, DbTable::kEle, element_, kFirstNodeField, more);
    return more;
  }

 private:
  std::int32_t Field(int field) const { return fields_[field - 2]; }

  RunContext& run_;
  int element_;
  std::array<std::int32_t, kFirstNodeField - 2 + kNodesAtOnce> fields_{};
};

// A material of strength 0 never replaces another: its strength is not known.
bool Replaces(const OneBased<double>& strength, int candidate, int current) {
  return strength[candidate] > 0.0 && strength[candidate] < strength[current];
}

void CheckNode(RunContext& run, int element, int place, int node, int highest_node) {
  if (node > highest_node) StopWithNumber(run.services, message::kElementNodeUnknown, element);
  if (node < 0) {
    ThrowFieldFault(run, DbTable::kEle, element, kFirstNodeField + place, node,
                    "a node of 0 (none) to " + std::to_string(highest_node));
  }
}

void TakeElementMaterial(RunContext& run, const ModelSizes& sizes, Materials& materials, int element,
                         std::vector<std::int32_t>& more) {
  const ElementRecord record(run, element);
  const int material = record.Material(sizes.material_count);
  if (material == 0) return;
  int place = 0;
  for (const int node : record.Nodes(more)) {
    CheckNode(run, element, place++, node, sizes.highest_node);
    if (node == 0) continue;
    std::int32_t& current = materials.node_material[node];
    if (current == 0 || (current != material && Replaces(materials.strength, material, current)))
      current = material;
  }
}

}  // namespace

void ReadNodeMaterials(RunContext& run, StudyState& study) {
  const ModelSizes& sizes = study.sizes;
  if (sizes.material_count < 2) {
    study.materials.node_material.Assign(sizes.highest_node, 1);
    return;
  }
  study.materials.node_material.Assign(sizes.highest_node, 0);
  std::vector<std::int32_t> more;
  for (int element = 1; element <= sizes.highest_element; ++element) {
    TakeElementMaterial(run, sizes, study.materials, element, more);
  }
}

}  // namespace zentor
