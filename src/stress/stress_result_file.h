// A stress result file (".STE", ".STN", ".STP"): header, pointer tables, element records. The bytes are
// described in docs/formats/stress-files.md.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "database/element_layouts.h"
#include "database/stress_format.h"
#include "services/faults.h"
#include "study/run_context.h"
#include "study/study_state.h"

namespace zentor {

Extension StressExtension(StressKind kind);  // REQUIRES: not kNone
inline RecordForm FormOf(StressKind kind) {
  return kind == StressKind::kStn ? RecordForm::kLong : RecordForm::kShort;
}

// An open stress result file whose header and table extents have been checked against its length. Closed by
// its destructor. Reading is safe from several threads at once; opening and closing are for the solver
// thread.
class StressResultFile {
 public:
  // Takes over the open unit. Throws InputFault when the header cannot be true.
  StressResultFile(FileUnits& units, int unit, StressKind kind);
  StressResultFile(StressResultFile&& other) noexcept;
  StressResultFile& operator=(StressResultFile&&) = delete;
  ~StressResultFile();

  StressKind kind() const { return kind_; }
  const std::string& path() const { return path_; }
  std::uint64_t size() const { return size_; }
  std::int32_t HeaderWord(std::size_t word) const { return header_[word]; }
  int pointer_width() const { return width_; }    // words: 1 or 2
  int step_count() const { return step_count_; }  // load cases or time steps
  int element_count() const { return HeaderWord(stress_format::kElementCount); }

  // Byte offset of the block of step 1 .. step_count(); 0 when nothing is stored for it. Throws InputFault
  // when the block would start beyond the end of the file.
  std::int64_t StepOffset(int step) const;
  // Word indices (from 1) of the records of elements first, first + 1, ... inside every step's block; zero or
  // negative: no record. REQUIRES: all of them within 1 .. element_count().
  void ElementPointers(int first, std::span<std::int64_t> out) const;
  // Byte offset of a record; throws InputFault when its first two words are not inside the file.
  // REQUIRES: step_offset > 0 and inside the file, pointer > 0.
  std::uint64_t RecordOffset(int element, std::int64_t step_offset, std::int64_t pointer) const {
    const std::uint64_t rest = (size_ - static_cast<std::uint64_t>(step_offset)) / stress_format::kWordBytes;
    const std::uint64_t word = static_cast<std::uint64_t>(pointer) - 1;
    if (word >= rest || rest - word < 2) ThrowRecordOutside(element, step_offset, pointer);
    return static_cast<std::uint64_t>(step_offset) + word * stress_format::kWordBytes;
  }

  // All bytes; throws InputFault when the file has become shorter.
  void ReadAt(std::uint64_t offset, std::span<std::byte> out) const;

 private:
  std::int64_t Pointer(std::uint64_t table, int index) const;
  void CheckHeader();
  [[noreturn]] void ThrowRecordOutside(int element, std::int64_t step_offset, std::int64_t pointer) const;
  InputFault Fault(const std::string& place, std::int64_t found, const std::string& wanted) const;

  FileUnits* units_;
  int unit_;
  StressKind kind_;
  platform::RandomAccessFile* file_;
  std::string path_;
  std::uint64_t size_ = 0;
  std::array<std::int32_t, stress_format::kHeaderWords> header_{};
  int width_ = 1;
  int step_count_ = 0;
  std::uint64_t step_table_ = 0, element_table_ = 0;  // byte offsets
};

// Opens the stress file of that kind under the selected study name. Stops the run when the file is missing,
// cannot be opened (with the reason) or does not hold requested_step (0: none is requested).
StressResultFile OpenStressResultFile(RunContext& run, StressKind kind, int requested_step = 0);

// Element type code: word 2 of the element's record in the first step that has data. Nothing for an element
// without a record.
std::optional<int> ElementTypeCode(const StressResultFile& file, int element);

// Fatal ends of reading stresses: the study's own name is selected again, so that the end of the run finds
// the study's files; then the error box with that message, the end of the run, the stop.
[[noreturn]] void StopReadingStresses(RunContext& run, int message, std::span<const float> arguments = {});
[[noreturn]] void StopStepNotStored(RunContext& run);

// Integers stored as reals are truncated; nothing for NaN and whatever does not fit.
inline std::optional<int> TruncatedInteger(float value) {
  if (!(value > -2147483904.0F && value < 2147483648.0F)) return std::nullopt;
  return static_cast<int>(value);
}

}  // namespace zentor
