#include "stress/stress_result_file.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "database/bytes.h"
#include "platform/text.h"
#include "services/faults.h"
#include "services/message_arguments.h"
#include "services/stop.h"

namespace zentor {

namespace {

using stress_format::kWordBytes;

constexpr int kSteNotOpened = 9043;
constexpr int kStnNotOpened = 9044;
constexpr int kStpNotOpened = 9045;
constexpr int kStressFileNotFound = 9046;

constexpr std::size_t kHeaderBytes = stress_format::kHeaderWords * kWordBytes;

[[noreturn]] void StopNotOpened(RunContext& run, StressKind kind, const platform::FileError& error) {
  run.listing.ListDirected(" ERROR OPEN FILE" + platform::Printable(error.path()));
  run.listing.ListDirected("*** ERROR - " + platform::Printable(error.what()));
  run.services.NoteToBatchUser(error.what());
  const int message = kind == StressKind::kStn   ? kStnNotOpened
                      : kind == StressKind::kStp ? kStpNotOpened
                                                 : kSteNotOpened;
  StopReadingStresses(run, message);
}

}  // namespace

Extension StressExtension(StressKind kind) {
  switch (kind) {
    case StressKind::kStn:
      return ".STN";
    case StressKind::kStp:
      return ".STP";
    case StressKind::kNone:
    case StressKind::kSte:
      break;
  }
  return ".STE";
}

StressResultFile::StressResultFile(FileUnits& units, int unit, StressKind kind)
    : units_(&units),
      unit_(unit),
      kind_(kind),
      file_(units.units[static_cast<std::size_t>(unit) - 1].file.get()),
      path_(FilePath(units, unit)) {
  try {
    size_ = FileSize(units, unit);
    if (size_ < kHeaderBytes) {
      throw InputFault(path_, "file length", std::to_string(size_) + " bytes",
                       "a header of " + std::to_string(kHeaderBytes) + " bytes");
    }
    CheckHeader();
  } catch (...) {
    FileClose(units, unit);
    throw;
  }
}

StressResultFile::StressResultFile(StressResultFile&& other) noexcept
    : units_(std::exchange(other.units_, nullptr)),
      unit_(other.unit_),
      kind_(other.kind_),
      file_(other.file_),
      path_(std::move(other.path_)),
      size_(other.size_),
      header_(other.header_),
      width_(other.width_),
      step_count_(other.step_count_),
      step_table_(other.step_table_),
      element_table_(other.element_table_) {}

StressResultFile::~StressResultFile() {
  if (units_ != nullptr) FileClose(*units_, unit_);
}

InputFault StressResultFile::Fault(const std::string& place, std::int64_t found,
                                   const std::string& wanted) const {
  return {path_, place, std::to_string(found), wanted};
}

// Reads the header and proves that both pointer tables lie inside the file, so that later reads of them need
// no checks of their own.
void StressResultFile::CheckHeader() {
  using namespace stress_format;  // NOLINT(google-build-using-namespace): names of header words only
  std::array<std::byte, kHeaderBytes> bytes;
  ReadAt(0, bytes);
  for (std::size_t word = 0; word < kHeaderWords; ++word) header_[word] = LoadInt(&bytes[word * kWordBytes]);

  const std::int64_t words = static_cast<std::int64_t>(size_ / kWordBytes);
  const std::int64_t start = header_[kStepTableStart];
  const std::int64_t capacity = header_[kStepCapacity];
  const std::int64_t elements = header_[kElementCount];
  const std::int32_t width = header_[kPointerWidth];
  if (width < 0 || width > 2) throw Fault("header word 18 (pointer width)", width, "0, 1 or 2");
  width_ = width == 2 ? 2 : 1;
  if (start < static_cast<std::int64_t>(kHeaderWords) || start > words) {
    throw Fault("header word 0 (start of the step table)", start, "20 to " + std::to_string(words));
  }
  if (capacity < 0 || capacity > (words - start) / width_) {
    throw Fault("header word 1 (capacity of the step table)", capacity,
                "0 to " + std::to_string((words - start) / width_));
  }
  step_count_ = header_[kStepCount];
  if (kind_ == StressKind::kStp) step_count_ = std::max(step_count_, header_[kLaterStepCount]);
  if (step_count_ < 0 || step_count_ > capacity) {
    throw Fault("header (number of steps)", step_count_,
                "0 to the capacity of " + std::to_string(capacity) + " steps");
  }
  const std::int64_t element_start = start + capacity * width_;
  if (elements < 0 || elements > (words - element_start) / width_) {
    throw Fault("header word 3 (number of elements)", elements,
                "0 to " + std::to_string((words - element_start) / width_));
  }
  step_table_ = static_cast<std::uint64_t>(start) * kWordBytes;
  element_table_ = static_cast<std::uint64_t>(element_start) * kWordBytes;
}

void StressResultFile::ReadAt(std::uint64_t offset, std::span<std::byte> out) const {
  const std::size_t read = file_->ReadAt(offset, out);
  if (read == out.size()) return;
  throw InputFault(path_, "offset " + std::to_string(offset), std::to_string(read) + " bytes long",
                   std::to_string(out.size()) + " bytes");
}

std::int64_t StressResultFile::Pointer(std::uint64_t table, int index) const {
  std::array<std::byte, 2 * kWordBytes> bytes{};
  const std::size_t length = static_cast<std::size_t>(width_) * kWordBytes;
  ReadAt(table + static_cast<std::uint64_t>(index - 1) * length, std::span(bytes).first(length));
  return width_ == 2 ? LoadInt64(bytes.data()) : LoadInt(bytes.data());
}

std::int64_t StressResultFile::StepOffset(int step) const {
  const std::int64_t offset = Pointer(step_table_, step);
  if (offset <= 0) return 0;
  if (static_cast<std::uint64_t>(offset) >= size_) {
    throw Fault("pointer of step " + std::to_string(step), offset,
                "an offset inside the file of " + std::to_string(size_) + " bytes");
  }
  return offset;
}

void StressResultFile::ElementPointers(int first, std::span<std::int64_t> out) const {
  const std::size_t length = static_cast<std::size_t>(width_) * kWordBytes;
  const std::uint64_t offset = element_table_ + static_cast<std::uint64_t>(first - 1) * length;
  const std::span<std::byte> bytes = std::as_writable_bytes(out);
  if (width_ == 2) {
    ReadAt(offset, bytes);  // 64-bit words as they stand in the file
    return;
  }
  // The narrow words go to the back half and are widened from the front; no word is overwritten before it is
  // read.
  const std::span<std::byte> narrow = bytes.last(out.size() * length);
  ReadAt(offset, narrow);
  for (std::size_t i = 0; i < out.size(); ++i) out[i] = LoadInt(narrow.data() + i * length);
}

void StressResultFile::ThrowRecordOutside(int element, std::int64_t step_offset, std::int64_t pointer) const {
  throw Fault("pointer of element " + std::to_string(element), pointer,
              "a record inside the " + std::to_string(size_ - static_cast<std::uint64_t>(step_offset)) +
                  " bytes after the start of the step");
}

StressResultFile OpenStressResultFile(RunContext& run, StressKind kind, int requested_step) {
  const Extension extension = StressExtension(kind);
  const std::string path = run.services.StudyFileName(extension);
  if (!run.services.StudyFileExists(extension)) {
    StopReadingStresses(run, kStressFileNotFound, TextArguments(platform::ToWide(path)));
  }
  const OpenedPath opened = FileOpenPath(run.units, path);
  if (opened.unit == 0) StopNotOpened(run, kind, platform::FileError(path, "open", opened.error));
  StressResultFile file(run.units, opened.unit, kind);
  if (requested_step > file.step_count()) StopStepNotStored(run);
  return file;
}

std::optional<int> ElementTypeCode(const StressResultFile& file, int element) {
  if (element < 1 || element > file.element_count()) return std::nullopt;
  std::array<std::int64_t, 1> pointer{};
  file.ElementPointers(element, pointer);
  if (pointer[0] <= 0) return std::nullopt;
  for (int step = 1; step <= file.step_count(); ++step) {
    const std::int64_t start = file.StepOffset(step);
    if (start == 0) continue;
    const std::uint64_t offset = file.RecordOffset(element, start, pointer[0]);
    std::array<std::byte, 3 * kWordBytes> head{};
    file.ReadAt(offset, head);
    if (TruncatedInteger(LoadReal(head.data())) != element) return std::nullopt;
    return TruncatedInteger(LoadReal(head.data() + stress_format::kTypeCode * kWordBytes));
  }
  return std::nullopt;
}

void StopReadingStresses(RunContext& run, int message, std::span<const float> arguments) {
  run.services.GetStudyName();
  StopWithMessage(run.services, message, arguments);
}

void StopStepNotStored(RunContext& run) {
  run.services.GetStudyName();
  run.services.AskUserText("Stress results are not available for requested step", BoxStyle::kError);
  EndRunIfOwner(run.services);
  StopStatement();
}

}  // namespace zentor
