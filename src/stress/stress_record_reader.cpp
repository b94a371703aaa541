#include "stress/stress_record_reader.h"

#include <algorithm>
#include <string>

#include "database/bytes.h"
#include "services/faults.h"

namespace zentor {

using namespace stress_format;  // NOLINT(google-build-using-namespace): names of record words only

FileWindow::FileWindow(const StressResultFile& file)
    : file_(file), buffer_(std::make_unique_for_overwrite<std::byte[]>(kLargest)) {}

const std::byte* FileWindow::Move(std::uint64_t offset, std::size_t bytes) {
  const bool onward = offset >= start_ && offset <= end_ + length_;
  length_ = onward ? std::min(2 * length_, kLargest) : kSmallest;
  const std::uint64_t rest = file_.size() - offset;
  const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(std::max(length_, bytes), rest));
  start_ = end_ = offset;
  file_.ReadAt(offset, {buffer_.get(), count});
  end_ = offset + count;
  return buffer_.get();
}

StressRecordReader::StressRecordReader(const StressResultFile& file, const StepSelection& selection,
                                       std::int64_t step_offset)
    : file_(file), selection_(selection), step_offset_(step_offset), window_(file) {}

InputFault StressRecordReader::Fault(int element, const char* what, float found,
                                     const std::string& wanted) const {
  return {file_.path(),
          "step " + std::to_string(selection_.step) + ", element " + std::to_string(element) + ", " + what,
          std::to_string(found), wanted};
}

bool StressRecordReader::Read(int element, std::int64_t pointer, ElementRecord& record) {
  const std::uint64_t offset = file_.RecordOffset(element, step_offset_, pointer);
  if (!ReadHead(element, offset) || layout_.data == NodeData::kNone) return false;

  const std::int64_t first = layout_.first_word();
  const std::byte* data = window_.At(offset + static_cast<std::uint64_t>(first) * kWordBytes,
                                     static_cast<std::size_t>(layout_.words - first) * kWordBytes);
  record.element = element;
  record.nodes = nodes_;
  record.layout = &layout_;
  record.node_data = data + (layout_.node_word - first) * static_cast<std::int64_t>(kWordBytes);
  record.component_data = data + (layout_.component_word - first) * static_cast<std::int64_t>(kWordBytes);
  return true;
}

// Reads the first words of the record and proves that the stresses of its layout lie inside it and the record
// inside the file. False when the record is of another element.
bool StressRecordReader::ReadHead(int element, std::uint64_t offset) {
  const std::uint64_t file_words = (file_.size() - offset) / kWordBytes;  // at least 2
  const std::size_t head_words = std::min<std::uint64_t>(kRecordHeadWords, file_words);
  const std::byte* head = window_.At(offset, head_words * kWordBytes);
  if (TruncatedInteger(LoadReal(head)) != element) return false;

  const float length = LoadReal(head + kRecordLength * kWordBytes);
  if (!(length >= static_cast<float>(kRecordHeadWords) && length <= static_cast<float>(file_words)) ||
      static_cast<std::uint64_t>(length) > file_words) {
    throw Fault(element, "word 1 (record length)", length,
                std::to_string(kRecordHeadWords) + " to " + std::to_string(file_words) + " words");
  }
  const float type_code = LoadReal(head + kTypeCode * kWordBytes);
  const float node_count = LoadReal(head + kNodeCount * kWordBytes);
  if (type_code != type_code_ || node_count != node_count_) FindLayout(element, type_code, node_count);
  if (layered_) {
    const float layers = LoadReal(head + kLayerCount * kWordBytes);
    if (TruncatedInteger(layers).value_or(0) < selection_.layer) throw LayerNotStored{element};
  }
  if (layout_.words > static_cast<std::int64_t>(length)) {
    throw Fault(element, "word 1 (record length)", length,
                "at least " + std::to_string(layout_.words) + " words for " + std::to_string(nodes_) +
                    " nodes of type " + std::to_string(static_cast<int>(type_code)));
  }
  return true;
}

void StressRecordReader::FindLayout(int element, float type_code, float node_count) {
  const std::optional<int> type = TruncatedInteger(type_code);
  if (!type) throw Fault(element, "word 2 (element type code)", type_code, "an integer");
  layout_ = LayoutOf(*type, FormOf(file_.kind()), 1, selection_.layer, selection_.surface);
  nodes_ = 0;
  if (layout_.data == NodeData::kDirect || layout_.data == NodeData::kTensor) {
    nodes_ = TruncatedInteger(node_count).value_or(-1);
    if (nodes_ < 1 || nodes_ > kMaxElementNodes) {
      throw Fault(element, "word 3 (number of nodes)", node_count,
                  "1 to " + std::to_string(kMaxElementNodes));
    }
    layout_ = LayoutOf(*type, FormOf(file_.kind()), nodes_, selection_.layer, selection_.surface);
  }
  layered_ = IsLayered(*type);
  type_code_ = type_code;
  node_count_ = node_count;
}

}  // namespace zentor
