#include "authoring/stress_file_writer.h"

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>

#include "database/bytes.h"
#include "database/element_layouts.h"
#include "database/stress_format.h"

namespace zentor {

using namespace stress_format;  // NOLINT(google-build-using-namespace): names of header and record words only

namespace {

constexpr std::size_t kBufferBytes = std::size_t{1} << 20U;

RecordForm FormOf(StressFileKind kind) {
  return kind == StressFileKind::kStn ? RecordForm::kLong : RecordForm::kShort;
}

std::size_t SurfacesOf(int type_code) { return HasSurfaces(type_code) ? 2 : 1; }

// Length of the record in words.
std::int64_t RecordWords(RecordForm form, const ElementStress& stress) {
  const int nodes = std::max(static_cast<int>(stress.nodes.size()), 1);
  std::int64_t words = kRecordHeadWords;
  for (const Surface surface : {Surface::kTop, Surface::kBottom}) {
    words = std::max(words, LayoutOf(stress.type_code, form, nodes, stress.layers, surface).words);
  }
  return words;
}

void StoreRealAt(std::byte* record, std::int64_t word, float value) {
  StoreReal(record + word * static_cast<std::int64_t>(kWordBytes), value);
}

// The values of one layer and surface. values: shape (nodes, 6), or the one value of a line element.
void StoreSurface(std::byte* record, const RecordLayout& layout, std::span<const std::int32_t> nodes,
                  const float* values) {
  if (layout.data == NodeData::kLine) {
    StoreRealAt(record, layout.component_word, values[0]);
    return;
  }
  for (std::size_t j = 0; j < nodes.size(); ++j) {
    const auto place = static_cast<std::int64_t>(j);
    StoreRealAt(record, layout.node_word + place * layout.node_stride, static_cast<float>(nodes[j]));
    for (int c = 0; c < layout.components; ++c) {
      StoreRealAt(record, layout.component_word + place * layout.component_stride + c,
                  values[j * 6 + static_cast<std::size_t>(c)]);
    }
  }
}

// record: zeroed, RecordWords long.
void StoreRecord(std::byte* record, RecordForm form, const ElementStress& stress, std::int64_t words) {
  const int nodes = static_cast<int>(stress.nodes.size());
  StoreRealAt(record, kElementNumber, static_cast<float>(stress.element));
  StoreRealAt(record, kRecordLength, static_cast<float>(words));
  StoreRealAt(record, kTypeCode, static_cast<float>(stress.type_code));
  StoreRealAt(record, kNodeCount, static_cast<float>(nodes));
  StoreRealAt(record, kLayerCount, static_cast<float>(stress.layers));
  const float* values = stress.values.data();
  const std::size_t surfaces = SurfacesOf(stress.type_code);
  for (int layer = 1; layer <= stress.layers; ++layer) {
    for (std::size_t surface = 0; surface < surfaces; ++surface) {
      const RecordLayout layout = LayoutOf(stress.type_code, form, std::max(nodes, 1), layer,
                                           surface == 0 ? Surface::kTop : Surface::kBottom);
      if (layout.data == NodeData::kNone) return;
      StoreSurface(record, layout, stress.nodes, values);
      values += stress.nodes.size() * 6;
    }
  }
}

[[noreturn]] void Refuse(const ElementStress& stress, const std::string& reason) {
  throw std::invalid_argument("stresses of element " + std::to_string(stress.element) + ": " + reason);
}

void CheckElement(const ElementStress& stress, const StressFilePlan& plan) {
  if (stress.element < 1 || stress.element > plan.highest_element) {
    Refuse(stress, "element numbers go from 1 to " + std::to_string(plan.highest_element));
  }
  if (stress.layers < 1) Refuse(stress, std::to_string(stress.layers) + " layers, at least 1 is needed");
  const auto nodes = static_cast<int>(stress.nodes.size());
  if (nodes > kMaxElementNodes) Refuse(stress, "more than " + std::to_string(kMaxElementNodes) + " nodes");
  const std::size_t wanted = StressValueCount(stress.type_code, nodes, stress.layers);
  if (stress.values.size() != wanted) {
    Refuse(stress, std::to_string(stress.values.size()) + " values, expected " + std::to_string(wanted));
  }
  for (const std::int32_t node : stress.nodes) {
    if (node < 1 || node > kMaxModelNumber) {
      Refuse(stress, "node number " + std::to_string(node) + " cannot be stored");
    }
  }
}

}  // namespace

std::size_t StressValueCount(int type_code, int nodes, int layers) {
  switch (LayoutOf(type_code, RecordForm::kShort, 1, 1, Surface::kTop).data) {
    case NodeData::kNone:
      return 0;
    case NodeData::kLine:
      return 1;
    case NodeData::kDirect:
    case NodeData::kTensor:
      break;
  }
  return static_cast<std::size_t>(layers) * SurfacesOf(type_code) * static_cast<std::size_t>(nodes) * 6;
}

StressFileWriter::StressFileWriter(platform::FileSystem& files, const std::string& path,
                                   const StressFilePlan& plan)
    : path_(path), plan_(plan) {
  if (plan.pointer_width < 0 || plan.pointer_width > 2 || plan.steps < 0 || plan.highest_element < 0 ||
      plan.highest_element > kMaxModelNumber) {
    throw std::invalid_argument(path + ": a stress file cannot be laid out that way");
  }
  plan_.step_capacity = std::max(plan.step_capacity, plan.steps);
  const std::size_t width = plan.pointer_width == 2 ? 2 : 1;
  element_pointers_.resize(static_cast<std::size_t>(plan.highest_element));
  record_words_.resize(element_pointers_.size());
  next_start_ =
      (kHeaderWords + (static_cast<std::size_t>(plan_.step_capacity) + element_pointers_.size()) * width) *
      kWordBytes;
  buffer_.reserve(kBufferBytes);
  file_ = files.Open(path, platform::OpenMode::kReplace);
}

void StressFileWriter::SkipStep() { NextStep(); }

void StressFileWriter::BeginStep() {
  NextStep();
  step_offsets_.back() = static_cast<std::int64_t>(next_start_);
  step_start_ = next_start_;
  step_open_ = true;
}

void StressFileWriter::NextStep() {
  if (static_cast<int>(step_offsets_.size()) == plan_.steps) {
    throw std::invalid_argument(path_ + ": more than the planned " + std::to_string(plan_.steps) + " steps");
  }
  EndStep();
  step_offsets_.push_back(0);
}

void StressFileWriter::EndStep() {
  if (step_open_) {
    // The last word of the block is written even when its element is left out, so that every pointer lies in
    // the file.
    next_start_ = step_start_ + static_cast<std::uint64_t>(block_words_) * kWordBytes;
    Flush();
    if (file_->Size() < next_start_)
      file_->WriteAt(next_start_ - kWordBytes, std::array<std::byte, kWordBytes>{});
    layout_fixed_ = layout_fixed_ || block_words_ > 0;
  }
  step_open_ = false;
}

void StressFileWriter::PlaceRecord(const ElementStress& stress, std::int64_t words) {
  const auto index = static_cast<std::size_t>(stress.element) - 1;
  if (!layout_fixed_) {
    if (element_pointers_[index] != 0) Refuse(stress, "given twice");
    element_pointers_[index] = block_words_ + 1;
    record_words_[index] = static_cast<std::int32_t>(words);
    block_words_ += words;
  } else if (element_pointers_[index] == 0) {
    Refuse(stress, "not in the first step");
  } else if (record_words_[index] != words) {
    Refuse(stress, "more or fewer values than in the first step");
  }
}

void StressFileWriter::Add(const ElementStress& stress) {
  if (!step_open_) throw std::invalid_argument(path_ + ": no step has been started");
  CheckElement(stress, plan_);
  const RecordForm form = FormOf(plan_.kind);
  const std::int64_t words = RecordWords(form, stress);
  PlaceRecord(stress, words);
  const std::int64_t first = element_pointers_[static_cast<std::size_t>(stress.element) - 1] - 1;
  const std::span<std::byte> record = Buffered(step_start_ + static_cast<std::uint64_t>(first) * kWordBytes,
                                               static_cast<std::size_t>(words) * kWordBytes);
  StoreRecord(record.data(), form, stress, words);
}

// Zeroed bytes for a piece of the file, which must follow the piece before it to stay in the same buffer.
std::span<std::byte> StressFileWriter::Buffered(std::uint64_t offset, std::size_t bytes) {
  if (offset != buffer_start_ + buffer_.size() || buffer_.size() + bytes > kBufferBytes) Flush();
  if (buffer_.empty()) buffer_start_ = offset;
  buffer_.resize(buffer_.size() + bytes);
  return std::span(buffer_).last(bytes);
}

void StressFileWriter::Flush() {
  if (!buffer_.empty()) file_->WriteAt(buffer_start_, buffer_);
  buffer_.clear();
}

std::vector<std::byte> StressFileWriter::Pointers(std::span<const std::int64_t> pointers,
                                                  std::size_t count) const {
  const std::size_t bytes = plan_.pointer_width == 2 ? 2 * kWordBytes : kWordBytes;
  std::vector<std::byte> table(count * bytes);
  for (std::size_t i = 0; i < pointers.size(); ++i) {
    if (plan_.pointer_width == 2) {
      StoreInt64(&table[i * bytes], pointers[i]);
    } else if (pointers[i] > std::numeric_limits<std::int32_t>::max()) {
      throw std::length_error(path_ + ": the stresses need pointers of two words");
    } else {
      StoreInt(&table[i * bytes], static_cast<std::int32_t>(pointers[i]));
    }
  }
  return table;
}

void StressFileWriter::Finish() {
  EndStep();
  const std::vector<std::byte> steps = Pointers(step_offsets_, static_cast<std::size_t>(plan_.step_capacity));
  const std::uint64_t table = kHeaderWords * kWordBytes;
  file_->WriteAt(table, steps);
  file_->WriteAt(table + steps.size(), Pointers(element_pointers_, element_pointers_.size()));

  const auto step_count = static_cast<std::int32_t>(step_offsets_.size());
  std::array<std::int32_t, kHeaderWords> header{};
  header[kStepTableStart] = static_cast<std::int32_t>(kHeaderWords);
  header[kStepCapacity] = plan_.step_capacity;
  header[kElementCount] = plan_.highest_element;
  header[kStepCount] = step_count;
  if (plan_.kind == StressFileKind::kStp) header[kLaterStepCount] = step_count;
  header[kPointerWidth] = plan_.pointer_width;
  std::array<std::byte, kHeaderWords * kWordBytes> bytes;
  for (std::size_t word = 0; word < header.size(); ++word) StoreInt(&bytes[word * kWordBytes], header[word]);
  file_->WriteAt(0, bytes);
}

}  // namespace zentor
