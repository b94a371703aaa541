#include "stress/step_stresses.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>
#include <cstring>
#include <string>

#include "database/bytes.h"
#include "services/faults.h"
#include "stress/stress_record_reader.h"

namespace zentor {

using stress_format::kWordBytes;

namespace {

constexpr int kComponents = 6;
constexpr std::array<const char*, kComponents> kComponentNames = {"SX", "SY", "SZ", "TXY", "TXZ", "TYZ"};

std::ptrdiff_t WordOffset(int words) {
  return std::ptrdiff_t{words} * static_cast<std::ptrdiff_t>(kWordBytes);
}

// Calls visit(record) for every element that has stresses in the step, in ascending element number.
template <typename Visit>
void ForEachRecord(const StressResultFile& file, const StepSelection& selection, Visit&& visit) {
  const std::int64_t step_offset = file.StepOffset(selection.step);
  if (step_offset == 0) return;
  StressRecordReader reader(file, selection, step_offset);
  ElementRecord record;
  std::vector<std::int64_t> chunk(static_cast<std::size_t>(std::min(selection.element_count, 8192)));
  for (int first = 1; first <= selection.element_count; first += static_cast<int>(chunk.size())) {
    const auto rest = static_cast<std::size_t>(selection.element_count - first + 1);
    const std::span<std::int64_t> pointers = std::span(chunk).first(std::min(chunk.size(), rest));
    file.ElementPointers(first, pointers);
    for (std::size_t i = 0; i < pointers.size(); ++i) {
      if (pointers[i] > 0 && reader.Read(first + static_cast<int>(i), pointers[i], record)) visit(record);
    }
  }
}

// Node number at place j of a record.
[[noreturn]] void ThrowNodeOutside(const StressResultFile& file, const StepSelection& selection, int element,
                                   int place, float found, std::size_t nodes) {
  throw InputFault(file.path(),
                   "step " + std::to_string(selection.step) + ", element " + std::to_string(element) +
                       ", node " + std::to_string(place + 1) + " of its record",
                   std::to_string(found), "a node of the model, 1 to " + std::to_string(nodes));
}

class StepAdder {
 public:
  StepAdder(const StressResultFile& file, const StepSelection& selection, LineElements& lines,
            NodalSums nodal)
      : file_(file), selection_(selection), lines_(lines), nodal_(nodal) {}

  void operator()(const ElementRecord& record) {
    switch (record.layout->data) {
      case NodeData::kTensor:
        AddTensors(record);
        break;
      case NodeData::kDirect:
        AddDirect(record);
        break;
      case NodeData::kLine:
        AddLine(record);
        break;
      case NodeData::kNone:
        break;
    }
  }

 private:
  // Index of the node at place j, whose number is at p.
  std::size_t NodeAt(const ElementRecord& record, int place, const std::byte* p) const {
    const float number = LoadReal(p);
    const auto nodes = nodal_.counts.size();
    if (number >= 1.0F && number < 2147483648.0F) [[likely]] {
      const auto index = static_cast<std::size_t>(static_cast<std::int32_t>(number)) - 1;
      if (index < nodes) [[likely]]
        return index;
    }
    ThrowNodeOutside(file_, selection_, record.element, place, number, nodes);
  }

  void AddTensors(const ElementRecord& record) {
    const RecordLayout& layout = *record.layout;
    const std::byte* number = record.node_data;
    const std::byte* value = record.component_data;
    float* const sums = nodal_.sums.data();
    std::int32_t* const counts = nodal_.counts.data();
    for (int j = 0; j < record.nodes; ++j) {
      const std::size_t node = NodeAt(record, j, number);
      std::array<float, kComponents> stress;  // a copy, so that the sums below cannot alias the window
      std::memcpy(stress.data(), value, sizeof stress);
      float* sum = sums + node * kComponents;
      for (int c = 0; c < kComponents; ++c) sum[c] += stress[static_cast<std::size_t>(c)];
      ++counts[node];
      number += WordOffset(layout.node_stride);
      value += WordOffset(layout.component_stride);
    }
  }

  void AddDirect(const ElementRecord& record) {
    const RecordLayout& layout = *record.layout;
    for (int j = 0; j < record.nodes; ++j) {
      const std::size_t node = NodeAt(record, j, record.node_data + WordOffset(j * layout.node_stride));
      if (nodal_.counts[node] == 1) continue;
      const std::byte* value = record.component_data + WordOffset(j * layout.component_stride);
      for (int c = 0; c < layout.components; ++c) {
        nodal_.sums[node * kComponents + static_cast<std::size_t>(c)] += LoadReal(value + WordOffset(c));
      }
      ++nodal_.counts[node];
    }
  }

  // The one value counts as SX at the first node and as SY at the second.
  void AddLine(const ElementRecord& record) {
    const std::array<std::int32_t, 2> nodes = lines_.NodesOf(record.element);
    const float value = LoadReal(record.component_data);
    for (std::size_t end = 0; end < nodes.size(); ++end) {
      if (nodes[end] < 1 || static_cast<std::size_t>(nodes[end]) > nodal_.counts.size()) {
        throw InputFault(
            lines_.path(), "element " + std::to_string(record.element) + ", field " + std::to_string(6 + end),
            std::to_string(nodes[end]), "a node of the model, 1 to " + std::to_string(nodal_.counts.size()));
      }
      const std::size_t node = static_cast<std::size_t>(nodes[end]) - 1;
      if (nodal_.counts[node] == 1) continue;
      nodal_.sums[node * kComponents + end] += value;
      ++nodal_.counts[node];
    }
  }

  const StressResultFile& file_;
  const StepSelection& selection_;
  LineElements& lines_;
  NodalSums nodal_;
};

}  // namespace

std::array<std::int32_t, 2> LineElements::NodesOf(int element) {
  const std::lock_guard lock(mutex_);
  std::array<std::int32_t, 2> nodes{};
  DbGetInts(database_, DbTable::kEle, element, 6, nodes);
  return nodes;
}

std::string LineElements::path() const { return database_.units.services.StudyFileName(".ELE"); }

void AddStep(const StressResultFile& file, const StepSelection& selection, LineElements& lines,
             NodalSums nodal) {
  ForEachRecord(file, selection, StepAdder(file, selection, lines, nodal));
}

bool AverageNodes(NodalSums nodal) {
  bool finite = true;
  for (std::size_t node = 0; node < nodal.counts.size(); ++node) {
    if (nodal.counts[node] == 0) continue;
    const float factor = 1.0F / static_cast<float>(nodal.counts[node]);
    float* sum = nodal.sums.data() + node * kComponents;
    for (int c = 0; c < kComponents; ++c) {
      sum[c] *= factor;
      finite &= std::fabs(sum[c]) <= FLT_MAX;
    }
  }
  return finite;
}

void ThrowNotFinite(const StressResultFile& file, const StepSelection& selection, LineElements& lines,
                    int highest_node) {
  const auto fault = [&](int element, const std::string& node, const char* component, float found) {
    return InputFault(file.path(),
                      "step " + std::to_string(selection.step) + ", element " + std::to_string(element) +
                          ", node " + node + ", component " + component,
                      std::to_string(found), "a finite stress");
  };
  ForEachRecord(file, selection, [&](const ElementRecord& record) {
    const RecordLayout& layout = *record.layout;
    if (layout.data == NodeData::kLine) {
      const float value = LoadReal(record.component_data);
      const int first = lines.NodesOf(record.element)[0];
      if (!std::isfinite(value)) throw fault(record.element, std::to_string(first), "SX", value);
      return;
    }
    for (int j = 0; j < record.nodes; ++j) {
      const std::byte* number = record.node_data + WordOffset(j * layout.node_stride);
      for (int c = 0; c < layout.components; ++c) {
        const float value = LoadReal(record.component_data + WordOffset(j * layout.component_stride + c));
        if (std::isfinite(value)) continue;
        throw fault(record.element, std::to_string(TruncatedInteger(LoadReal(number)).value_or(0)),
                    kComponentNames[static_cast<std::size_t>(c)], value);
      }
    }
  });
  throw InputFault(file.path(), "step " + std::to_string(selection.step) + ", the sum of stresses at a node",
                   "beyond the range of single precision",
                   "finite sums at nodes 1 to " + std::to_string(highest_node));
}

}  // namespace zentor
