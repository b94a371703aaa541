#include "stress/step_stresses.h"

#include <algorithm>
#include <array>
#include <bit>
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

// Calls visit(record) for every element that has stresses in the step, in ascending element number, as long
// as keep_going(), which is asked now and then.
template <typename Gate, typename Visit>
void ForEachRecord(const StressResultFile& file, const StepSelection& selection, Gate&& keep_going,
                   Visit&& visit) {
  const std::int64_t step_offset = file.StepOffset(selection.step);
  if (step_offset == 0) return;
  StressRecordReader reader(file, selection, step_offset);
  ElementRecord record;
  std::vector<std::int64_t> chunk(static_cast<std::size_t>(std::min(selection.element_count, 8192)));
  for (int first = 1; first <= selection.element_count; first += static_cast<int>(chunk.size())) {
    if (!keep_going()) return;
    const auto rest = static_cast<std::size_t>(selection.element_count) - static_cast<std::size_t>(first) + 1;
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

// sum[c] += value[c] for the six components. All loads come before all stores, so that the compiler may make
// two vector additions of them whether or not the two overlap.
inline void AddSix(float* sum, const std::byte* value) {
  float v[kComponents];
  for (int c = 0; c < kComponents; ++c) std::memcpy(&v[c], value + c * sizeof(float), sizeof(float));
  const float s0 = sum[0] + v[0], s1 = sum[1] + v[1], s2 = sum[2] + v[2], s3 = sum[3] + v[3];
  const float s4 = sum[4] + v[4], s5 = sum[5] + v[5];
  sum[0] = s0;
  sum[1] = s1;
  sum[2] = s2;
  sum[3] = s3;
  sum[4] = s4;
  sum[5] = s5;
}

void MultiplyByInverse(std::span<const std::int32_t> counts, std::span<float> sums) {
  // Most counts are small; a table saves the division. Sums without contributions are 0 and stay so.
  static constexpr auto kInverse = [] {
    std::array<float, 64> inverse{1.0F};
    for (std::size_t c = 1; c < inverse.size(); ++c) inverse[c] = 1.0F / static_cast<float>(c);
    return inverse;
  }();
  for (std::size_t node = 0; node < counts.size(); ++node) {
    const auto count = static_cast<std::uint32_t>(counts[node]);
    const float factor = count < kInverse.size() ? kInverse[count] : 1.0F / static_cast<float>(count);
    for (std::size_t c = 0; c < kComponents; ++c) sums[node * kComponents + c] *= factor;
  }
}

bool AllFinite(std::span<const float> values) {
  std::uint32_t special = 0;
  for (const float value : values) {
    special |= static_cast<std::uint32_t>((std::bit_cast<std::uint32_t>(value) & 0x7F800000U) == 0x7F800000U);
  }
  return special == 0;
}

class StepAdder {
 public:
  StepAdder(const StressResultFile& file, const StepSelection& selection, LineElements& lines,
            NodalSums nodal)
      : file_(file), selection_(selection), lines_(lines), nodal_(nodal) {
    // The smallest real above the highest node number.
    const double nodes = static_cast<double>(nodal.counts.size());
    node_limit_ = static_cast<float>(nodes);
    if (node_limit_ <= nodes) node_limit_ = std::nextafter(node_limit_, FLT_MAX);
  }

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
    if (!(number >= 1.0F && number < node_limit_)) [[unlikely]] {
      ThrowNodeOutside(file_, selection_, record.element, place, number, nodal_.counts.size());
    }
    return static_cast<std::size_t>(static_cast<std::int32_t>(number)) - 1;
  }

  void AddTensors(const ElementRecord& record) {
    const RecordLayout& layout = *record.layout;
    const std::byte* number = record.node_data;
    const std::byte* value = record.component_data;
    float* const sums = nodal_.sums.data();
    std::int32_t* const counts = nodal_.counts.data();
    const std::ptrdiff_t number_stride = WordOffset(layout.node_stride);
    const std::ptrdiff_t value_stride = WordOffset(layout.component_stride);
    for (int j = 0; j < record.nodes; ++j) {
      const std::size_t node = NodeAt(record, j, number);
      AddSix(sums + node * kComponents, value);
      ++counts[node];
      number += number_stride;
      value += value_stride;
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
  float node_limit_;
};

}  // namespace

std::array<std::int32_t, 2> LineElements::NodesOf(int element) {
  const std::lock_guard lock(mutex_);
  std::array<std::int32_t, 2> nodes{};
  DbGetInts(database_, DbTable::kEle, element, 6, nodes);
  return nodes;
}

bool LineElements::KeepGoing() const { return database_.units.services.KeepGoing(); }

std::string LineElements::path() const { return database_.units.services.StudyFileName(".ELE"); }

void AddStep(const StressResultFile& file, const StepSelection& selection, LineElements& lines,
             NodalSums nodal) {
  ForEachRecord(
      file, selection, [&lines] { return lines.KeepGoing(); }, StepAdder(file, selection, lines, nodal));
}

bool AverageNodes(NodalSums nodal) {
  constexpr std::size_t kBlock = 1024;  // nodes that stay in the fastest cache between the two loops
  bool finite = true;
  for (std::size_t first = 0; first < nodal.counts.size(); first += kBlock) {
    const std::size_t nodes = std::min(kBlock, nodal.counts.size() - first);
    const std::span<float> sums = nodal.sums.subspan(first * kComponents, nodes * kComponents);
    MultiplyByInverse(nodal.counts.subspan(first, nodes), sums);
    finite = finite && AllFinite(sums);
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
  const auto to_the_end = [] { return true; };
  ForEachRecord(file, selection, to_the_end, [&](const ElementRecord& record) {
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
