// Element stress files ".STE", ".STN" and ".STP" for people and for mesh export
// (docs/formats/stress-files.md). The run has a reader of its own, which streams whole load cases; this one
// fetches single records.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "binary_file.h"
#include "database/stress_format.h"

namespace zentor::companion {

using StressHeader = std::array<std::int32_t, stress_format::kHeaderWords>;

class StressFile {
 public:
  // Reads header and pointer tables. The extension of the path decides how the steps are counted. Throws
  // InputFault and FileError, as every function here.
  explicit StressFile(const std::string& path);

  const StressHeader& header() const { return header_; }
  int step_count() const { return static_cast<int>(steps_.size()); }
  int element_count() const {
    return static_cast<int>(elements_.size());
  }  // entries of the element pointer table
  int pointer_words() const { return pointer_words_; }
  std::int64_t StepPointer(int step) const { return steps_[static_cast<std::size_t>(step) - 1]; }
  std::int64_t ElementPointer(int element) const { return elements_[static_cast<std::size_t>(element) - 1]; }
  bool HasStep(int step) const { return step >= 1 && step <= step_count() && StepPointer(step) > 0; }

  // The words of an element's record, from its number on; nothing when the step or the element has no data or
  // the record belongs to another element.
  std::optional<std::vector<float>> Record(int step, int element);
  // The type code of each element, from the first step that has data; 0 for elements without.
  std::vector<int> TypeCodes(std::span<const int> element_ids);

 private:
  std::vector<std::int64_t> ReadPointers(std::uint64_t offset, int count, const std::string& place);
  std::optional<std::uint64_t> RecordOffset(int step, int element) const;

  BinaryFile file_;
  StressHeader header_{};
  int pointer_words_ = 1;
  std::vector<std::int64_t> steps_, elements_;
};

}  // namespace zentor::companion
