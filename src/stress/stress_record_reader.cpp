#include "stress/stress_record_reader.h"

#include <algorithm>
#include <cstring>
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

// Reads the first words of the record. False when it is of another element.
bool StressRecordReader::ReadHead(int element, std::uint64_t offset) {
  const std::uint64_t file_words = (file_.size() - offset) / kWordBytes;  // at least 2
  const std::size_t head_words = std::min<std::uint64_t>(kRecordHeadWords, file_words);
  const std::byte* head = window_.At(offset, head_words * kWordBytes);
  if (TruncatedInteger(LoadReal(head)) != element) return false;
  const bool alike = like_length_ <= file_words &&
                     std::memcmp(head + kRecordLength * kWordBytes, like_.data(), like_.size()) == 0 &&
                     LoadReal(head + kLayerCount * kWordBytes) == like_layers_;
  if (!alike) CheckHead(element, head, file_words);
  return true;
}

// Proves that the record lies inside the file and the stresses of its layer inside the record. file_words:
// from the start of the record to the end of the file.
void StressRecordReader::CheckHead(int element, const std::byte* head, std::uint64_t file_words) {
  const float length = LoadReal(head + kRecordLength * kWordBytes);
  if (!(length >= static_cast<float>(kRecordHeadWords) && length <= static_cast<float>(file_words)) ||
      static_cast<std::uint64_t>(length) > file_words) {
    throw Fault(element, "word 1 (record length)", length,
                std::to_string(kRecordHeadWords) + " to " + std::to_string(file_words) + " words");
  }
  const float code = LoadReal(head + kTypeCode * kWordBytes);
  const std::optional<int> type = TruncatedInteger(code);
  if (!type) throw Fault(element, "word 2 (element type code)", code, "an integer");
  FindLayout(element, *type, LoadReal(head + kNodeCount * kWordBytes));
  const float layers = LoadReal(head + kLayerCount * kWordBytes);
  if (IsLayered(*type) && TruncatedInteger(layers).value_or(0) < selection_.layer) {
    throw LayerNotStored{element};
  }
  if (layout_.words > static_cast<std::int64_t>(length)) {
    throw Fault(element, "word 1 (record length)", length,
                "at least " + std::to_string(layout_.words) + " words for " + std::to_string(nodes_) +
                    " nodes of type " + std::to_string(*type));
  }
  std::memcpy(like_.data(), head + kRecordLength * kWordBytes, like_.size());
  like_layers_ = layers;
  like_length_ = static_cast<std::uint64_t>(length);
}

void StressRecordReader::FindLayout(int element, int type_code, float node_count) {
  layout_ = LayoutOf(type_code, FormOf(file_.kind()), 1, selection_.layer, selection_.surface);
  nodes_ = 0;
  if (layout_.data != NodeData::kDirect && layout_.data != NodeData::kTensor) return;
  nodes_ = TruncatedInteger(node_count).value_or(-1);
  if (nodes_ < 1 || nodes_ > kMaxElementNodes) {
    throw Fault(element, "word 3 (number of nodes)", node_count, "1 to " + std::to_string(kMaxElementNodes));
  }
  layout_ = LayoutOf(type_code, FormOf(file_.kind()), nodes_, selection_.layer, selection_.surface);
}

}  // namespace zentor
