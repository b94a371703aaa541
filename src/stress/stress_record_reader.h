// Element records of one step of a stress file, read through a window that moves over the file.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>

#include "stress/step_stresses.h"
#include "stress/stress_result_file.h"

namespace zentor {

// A stretch of a file in memory. Reads in ascending order widen the window step by step, so that a step block
// is streamed in large pieces; a jump narrows it, so that scattered records cost no more than a page each.
class FileWindow {
 public:
  static constexpr std::size_t kLargest = std::size_t{1} << 18U;
  static constexpr std::size_t kSmallest = std::size_t{1} << 12U;

  explicit FileWindow(const StressResultFile& file);
  // The bytes at offset, valid until the next call. REQUIRES: bytes <= kLargest, all of them inside the file.
  const std::byte* At(std::uint64_t offset, std::size_t bytes) {
    if (offset >= start_ && offset + bytes <= end_) [[likely]] {
      return buffer_.get() + (offset - start_);
    }
    return Move(offset, bytes);
  }

 private:
  const std::byte* Move(std::uint64_t offset, std::size_t bytes);

  const StressResultFile& file_;
  std::unique_ptr<std::byte[]> buffer_;
  std::uint64_t start_ = 0, end_ = 0;
  std::size_t length_ = kSmallest;
};

// The stress data of one element. Positions are those of the layout; pointers hold until the next record is
// read.
struct ElementRecord {
  int element = 0;
  int nodes = 0;
  const RecordLayout* layout = nullptr;
  const std::byte* node_data = nullptr;       // number of the first node
  const std::byte* component_data = nullptr;  // first component of the first node
};

class StressRecordReader {
 public:
  // step_offset > 0.
  StressRecordReader(const StressResultFile& file, const StepSelection& selection, std::int64_t step_offset);
  // Reads the record at a pointer > 0. False when it belongs to another element or has no stresses.
  bool Read(int element, std::int64_t pointer, ElementRecord& record);

 private:
  bool ReadHead(int element, std::uint64_t offset);
  void CheckHead(int element, const std::byte* head, std::uint64_t file_words);
  void FindLayout(int element, int type_code, float node_count);
  InputFault Fault(int element, const char* what, float found, const std::string& wanted) const;

  const StressResultFile& file_;
  StepSelection selection_;
  std::int64_t step_offset_;
  FileWindow window_;
  // Of the record that was accepted last; most records have a head like the one before, and then need only
  // its length to fit into the file. The length is beyond every file until there is one.
  std::array<std::byte, 3 * stress_format::kWordBytes> like_{};  // words 1 to 3
  float like_layers_ = 0.0F;
  std::uint64_t like_length_ = std::numeric_limits<std::uint64_t>::max();  // words
  int nodes_ = 0;
  RecordLayout layout_;
};

}  // namespace zentor
