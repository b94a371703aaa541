#include "database/table_file.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <limits>
#include <memory>
#include <system_error>
#include <utility>

#include "database/bytes.h"
#include "services/faults.h"

namespace zentor {

namespace {

using platform::OpenMode;
using table_format::Geometry;
using table_format::WordOffset;
namespace fmt = table_format;

std::int32_t Word(std::span<const std::byte> record, int word) {
  return LoadInt(record.data() + WordOffset(word));
}

void CheckWord(const std::string& path, std::span<const std::byte> header, int word, bool sound,
               const char* wanted) {
  if (sound) return;
  throw InputFault(path, "header word " + std::to_string(word), std::to_string(Word(header, word)), wanted);
}

// The geometry that the first words of a table file claim, checked against the file's size.
Geometry CheckedGeometry(const std::string& path, std::span<const std::byte> header,
                         std::uint64_t file_size) {
  const Geometry g{.record_length = Word(header, fmt::kRecordLength),
                   .directory_length = Word(header, fmt::kDirectoryLength),
                   .field_count = Word(header, fmt::kFieldCount)};
  const bool sound_length = g.record_length > 0 && g.record_length <= fmt::kMaxRecordLength &&
                            g.record_length % fmt::kRecordLengthUnit == 0;
  CheckWord(path, header, fmt::kRecordLength, sound_length, "a multiple of 128, at most 12288");
  CheckWord(path, header, fmt::kFieldCount, g.field_count >= 0 && g.field_count <= fmt::kMaxFields,
            "0 to 1650");
  CheckWord(path, header, fmt::kDirectoryLength, g.directory_length >= 0, "0 or more");
  const bool directory_fits = g.DirectoryOffset(g.directory_length) + fmt::kFieldBytes <= file_size;
  CheckWord(path, header, fmt::kDirectoryLength, g.directory_length == 0 || directory_fits,
            "a directory that lies inside the file");
  const std::int32_t live = Word(header, fmt::kLiveCount);
  CheckWord(path, header, fmt::kLiveCount, live >= 0 && live <= g.directory_length,
            "0 to the directory length");
  CheckWord(path, header, fmt::kFreeCount, Word(header, fmt::kFreeCount) >= 0, "0 or more");
  const std::int32_t highest = Word(header, fmt::kHighestId);
  CheckWord(path, header, fmt::kHighestId, highest >= 0 && highest <= g.directory_length,
            "0 to the directory length");
  return g;
}

}  // namespace

TableScan ScanTable(platform::FileSystem& files, const std::string& path) {
  TableScan scan;
  const auto file = platform::OpenIfThere(files, path, OpenMode::kReadWrite);
  if (!file) return scan;
  std::vector<std::byte> header(WordOffset(fmt::kHeaderWords + 1));
  const std::size_t read = file->ReadAt(0, header);
  scan.zero_bytes = read == 0;
  if (read < WordOffset(fmt::kDirectoryLength + 1)) return scan;
  if (Word(header, fmt::kRecordLength) == 0 && Word(header, fmt::kDirectoryLength) == 0) return scan;
  scan.geometry = CheckedGeometry(path, header, file->Size());
  scan.present = scan.geometry.directory_length != 0;
  return scan;
}

bool CreateEmptyTable(platform::FileSystem& files, const std::string& path, const Geometry& geometry) {
  const auto file = files.Open(path, OpenMode::kReadWriteCreate);
  if (file->Size() != 0) return false;
  std::vector<std::byte> bytes(geometry.SlotOffset(1));
  const auto store = [&bytes](std::uint64_t offset, int word, std::int32_t value) {
    StoreInt(bytes.data() + offset + WordOffset(word), value);
  };
  store(0, fmt::kRecordLength, geometry.record_length);
  store(0, fmt::kDirectoryLength, geometry.directory_length);
  store(0, fmt::kFieldCount, geometry.field_count);
  for (int field = 1; field <= geometry.field_count; ++field) {
    store(geometry.RecordOffset(2), 2 * field - 1, fmt::kFieldKind);
    store(geometry.RecordOffset(2), 2 * field, fmt::kFieldBytes);
  }
  file->WriteAt(0, bytes);
  return true;
}

TableFile::TableFile(platform::FileSystem& files, const std::string& path)
    : path_(path), file_(files.Open(path, OpenMode::kReadWrite)) {
  ReadHeader();
  ReadDescriptors();
  ReadDirectory();
  CountEntities();
  window_.emplace(*file_, geometry_);
}

void TableFile::Fault(const std::string& place, const std::string& found, const std::string& wanted) const {
  throw InputFault(path_, place, found, wanted);
}

void TableFile::ReadHeader() {
  // Read once, at the longest it can be: another program may write the file between two reads.
  header_.resize(fmt::kMaxRecordLength);
  const std::size_t read = file_->ReadAt(0, header_);
  const std::uint64_t size = file_->Size();
  geometry_ = CheckedGeometry(path_, header_, size);
  CheckWord(path_, header_, fmt::kDirectoryLength, geometry_.directory_length > 0, "1 or more");
  const auto length = static_cast<std::size_t>(geometry_.record_length);
  if (read < length) {
    Fault("header", "cut after " + std::to_string(read) + " bytes", std::to_string(length) + " bytes");
  }
  header_.resize(length);
  wanted_header_ = header_;
  const std::uint64_t data_start = geometry_.SlotOffset(1);
  data_bytes_ = size > data_start ? size - data_start : 0;
  live_count_ = Word(header_, fmt::kLiveCount);
  free_count_ = Word(header_, fmt::kFreeCount);
  free_head_ = Word(header_, fmt::kFreeHead);
  highest_id_ = Word(header_, fmt::kHighestId);
}

void TableFile::ReadDescriptors() {
  descriptors_.resize(static_cast<std::size_t>(geometry_.field_count) * fmt::kDescriptorBytes);
  const std::size_t read = file_->ReadAt(geometry_.RecordOffset(2), descriptors_);
  if (read < descriptors_.size()) {
    Fault("field descriptors", "cut after " + std::to_string(read) + " bytes",
          std::to_string(geometry_.field_count) + " fields");
  }
  wanted_descriptors_ = descriptors_;
  starts_.assign(1, 0);
  for (int field = 1; field <= geometry_.field_count; ++field) {
    const std::int32_t size = Word(descriptors_, 2 * field);
    const std::int32_t smallest = field == 1 ? fmt::kFieldBytes : 0;  // field 1 holds the id
    if (size < smallest || size > geometry_.record_length - starts_.back()) {
      Fault("size of field " + std::to_string(field), std::to_string(size),
            "fields that fit into a record of " + std::to_string(geometry_.record_length) + " bytes");
    }
    starts_.push_back(starts_.back() + size);
  }
}

void TableFile::ReadDirectory() {
  std::vector<std::byte> bytes(static_cast<std::size_t>(geometry_.directory_length) * fmt::kFieldBytes);
  const std::size_t read = file_->ReadAt(geometry_.DirectoryOffset(1), bytes);
  if (read < bytes.size()) {
    Fault("directory", "cut after " + std::to_string(read) + " bytes",
          std::to_string(bytes.size()) + " bytes");
  }
  directory_.resize(static_cast<std::size_t>(geometry_.directory_length));
  for (int id = 1; id <= geometry_.directory_length; ++id) directory_[id - 1] = Word(bytes, id);
}

// The counts of a run that was killed lie behind its directory; the directory is what counts. Entries that no
// record of the file can answer are left alone here and faulted when their entity is asked for.
void TableFile::CountEntities() {
  const std::int64_t records = DataRecords();
  std::int32_t named = 0;
  for (int id = 1; id <= geometry_.directory_length; ++id) {
    const std::int32_t slot = directory_[id - 1];
    if (slot < 1 || slot > records) continue;
    ++named;
    highest_slot_ = std::max<std::int64_t>(highest_slot_, slot);
    highest_id_ = std::max(highest_id_, id);
  }
  live_count_ = std::max(live_count_, named);
}

std::int64_t TableFile::DataRecords() const {
  const auto length = static_cast<std::uint64_t>(geometry_.record_length);
  return static_cast<std::int64_t>((data_bytes_ + length - 1) / length);
}

int TableFile::SlotOf(int id) const {
  if (id < 1 || id > geometry_.directory_length) return 0;
  const std::int32_t slot = directory_[id - 1];
  if (slot < 0 || slot > DataRecords()) {
    Fault("slot of entity " + std::to_string(id), std::to_string(slot),
          "0 to " + std::to_string(DataRecords()) + ", the records in the file");
  }
  return slot;
}

// The record of an entity, from the buffer or from the file; at least as long as its fields.
std::span<const std::byte> TableFile::RecordOf(int id, int slot) {
  const std::span<const std::byte> record = slot == buffered_slot_ ? buffer_ : window_->Record(slot);
  const auto needed = static_cast<std::size_t>(std::max(starts_.back(), fmt::kFieldBytes));
  const auto place = [&] { return "entity " + std::to_string(id) + ", slot " + std::to_string(slot); };
  if (record.size() < needed) {
    Fault(place(), "cut after " + std::to_string(record.size()) + " bytes",
          std::to_string(needed) + " bytes");
  }
  if (Word(record, 1) != id) Fault(place() + ", word 1", std::to_string(Word(record, 1)), std::to_string(id));
  return record;
}

void TableFile::Read(int id, std::int64_t first, std::span<std::byte> out) {
  std::fill(out.begin(), out.end(), std::byte{0});
  const int slot = SlotOf(id);
  if (slot == 0) return;
  const auto record = RecordOf(id, slot);
  const auto count = static_cast<std::int64_t>(out.size() / fmt::kFieldBytes);
  const std::int64_t from = std::max<std::int64_t>(first, 1);
  const std::int64_t to = std::min<std::int64_t>(first + count - 1, geometry_.field_count);
  if (from > to) return;
  const auto skipped = static_cast<std::size_t>((from - first) * fmt::kFieldBytes);
  const auto start = static_cast<std::size_t>(starts_[from - 1]);
  const std::size_t length = std::min(static_cast<std::size_t>(starts_[to]) - start, out.size() - skipped);
  const auto fields = record.subspan(start, length);
  std::copy(fields.begin(), fields.end(), out.begin() + static_cast<std::ptrdiff_t>(skipped));
}

bool TableFile::Write(int id, std::int64_t field, std::span<const std::byte, fmt::kFieldBytes> value) {
  if (field < 2 || field > geometry_.field_count) return false;
  const int slot = SlotOf(id);
  if (slot == 0) return false;
  if (slot != buffered_slot_ || id != buffered_id_) {
    FlushRecord();
    const auto record = RecordOf(id, slot);
    buffered_slot_ = 0;
    buffer_.assign(static_cast<std::size_t>(geometry_.record_length), std::byte{0});
    std::copy(record.begin(), record.end(), buffer_.begin());
    buffered_slot_ = slot;
    buffered_id_ = id;
  }
  const std::size_t start = static_cast<std::size_t>(starts_[field - 1]);
  const std::size_t length = std::min(static_cast<std::size_t>(starts_[field]) - start, value.size());
  std::copy_n(value.begin(), length, buffer_.begin() + static_cast<std::ptrdiff_t>(start));
  buffer_dirty_ = true;
  return true;
}

bool TableFile::Create(int id) {
  if (id < 1 || id > geometry_.directory_length) return false;
  if (SlotOf(id) != 0) return true;
  if (live_count_ >= geometry_.directory_length) return false;
  FlushRecord();
  const NewSlot taken = TakeSlot();
  if (taken.slot > std::numeric_limits<std::int32_t>::max()) return false;
  const auto slot = static_cast<std::int32_t>(taken.slot);
  buffered_slot_ = buffered_id_ = 0;
  buffer_.assign(static_cast<std::size_t>(geometry_.record_length), std::byte{0});
  StoreInt(buffer_.data(), id);
  WriteRecord(slot);
  std::array<std::byte, fmt::kFieldBytes> entry;
  StoreInt(entry.data(), slot);
  file_->WriteAt(geometry_.DirectoryOffset(id), entry);

  directory_[id - 1] = slot;
  if (!named_.empty()) {
    named_.resize(std::max<std::size_t>(named_.size(), slot));
    named_[slot - 1] = true;
  }
  highest_slot_ = std::max<std::int64_t>(highest_slot_, slot);
  highest_id_ = std::max(highest_id_, id);
  ++live_count_;
  free_count_ = taken.free_count;
  free_head_ = taken.free_head;
  buffered_slot_ = slot;
  buffered_id_ = id;
  return true;
}

// The head of the free list where it can be believed, else the slot behind all that are in use. A list that
// leads to a slot in use (a cycle does, too) or out of the file is given up: its slots stay unused, which
// harms nobody.
TableFile::NewSlot TableFile::TakeSlot() {
  if (free_head_ >= 1 && free_head_ <= DataRecords() && !IsNamed(free_head_)) {
    const auto record = window_->Record(free_head_);
    if (record.size() >= fmt::kFieldBytes) {
      return {free_head_, std::max(free_count_ - 1, 0), Word(record, 1)};
    }
  }
  const std::int64_t in_use = std::max(highest_slot_, std::min<std::int64_t>(live_count_, DataRecords()));
  return {in_use + 1, free_head_ == 0 ? free_count_ : 0, 0};
}

bool TableFile::IsNamed(std::int64_t slot) {
  if (named_.empty()) {
    named_.resize(static_cast<std::size_t>(std::max<std::int64_t>(highest_slot_, 1)));
    for (const std::int32_t named : directory_) {
      if (named >= 1 && named <= highest_slot_) named_[named - 1] = true;
    }
  }
  return slot <= static_cast<std::int64_t>(named_.size()) && named_[slot - 1];
}

// Writes the buffer to a slot.
void TableFile::WriteRecord(std::int64_t slot) {
  const std::uint64_t offset = geometry_.SlotOffset(slot);
  file_->WriteAt(offset, buffer_);
  window_->Written(slot, buffer_);
  data_bytes_ = std::max(data_bytes_, offset + buffer_.size() - geometry_.SlotOffset(1));
}

void TableFile::FlushRecord() {
  if (!buffer_dirty_) return;
  WriteRecord(buffered_slot_);
  buffer_dirty_ = false;
}

void TableFile::ImageHeader() {
  std::byte* const image = wanted_header_.data();
  StoreInt(image + WordOffset(fmt::kLiveCount), live_count_);
  StoreInt(image + WordOffset(fmt::kFreeCount), free_count_);
  StoreInt(image + WordOffset(fmt::kFreeHead), free_head_);
  StoreInt(image + WordOffset(fmt::kHighestId), highest_id_);
}

void TableFile::ImageDescriptors() {
  std::byte* const image = wanted_descriptors_.data();
  for (int field = 1; field <= geometry_.field_count; ++field) {
    StoreInt(image + WordOffset(2 * field - 1), fmt::kFieldKind);
    StoreInt(image + WordOffset(2 * field), starts_[field] - starts_[field - 1]);
  }
}

void TableFile::WriteIfChanged(std::uint64_t offset, std::vector<std::byte>& held,
                               const std::vector<std::byte>& wanted) {
  if (held == wanted) return;
  file_->WriteAt(offset, wanted);
  std::copy(wanted.begin(), wanted.end(), held.begin());
}

void TableFile::Flush() {
  ImageHeader();
  ImageDescriptors();
  WriteIfChanged(geometry_.RecordOffset(1), header_, wanted_header_);
  WriteIfChanged(geometry_.RecordOffset(2), descriptors_, wanted_descriptors_);
  FlushRecord();
}

}  // namespace zentor
