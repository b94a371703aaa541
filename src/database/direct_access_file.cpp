#include "database/direct_access_file.h"

#include <algorithm>
#include <cassert>
#include <limits>
#include <system_error>
#include <utility>
#include <vector>

namespace zentor {

namespace {

bool IsReachable(std::int64_t number, std::size_t record_length) {
  return number >= 1 && static_cast<std::uint64_t>(number) <=
                            static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) /
                                std::max<std::uint64_t>(record_length, 1);
}

std::uint64_t OffsetOf(std::int64_t number, std::size_t record_length) {
  return static_cast<std::uint64_t>(number - 1) * record_length;
}

}  // namespace

void DirectAccessFile::Open(platform::FileSystem& files, const std::string& path, std::size_t record_length,
                            platform::OpenMode mode) {
  assert(record_length >= 1);
  file_ = files.Open(path, mode);
  path_ = path;
  record_length_ = record_length;
}

std::size_t DirectAccessFile::Read(std::int64_t number, std::span<std::byte> out) {
  assert(IsOpen());
  if (!IsReachable(number, record_length_)) return 0;
  return file_->ReadAt(OffsetOf(number, record_length_), out.first(std::min(out.size(), record_length_)));
}

void DirectAccessFile::Write(std::int64_t number, std::span<const std::byte> bytes) {
  assert(IsOpen() && bytes.size() <= record_length_);
  if (!IsReachable(number, record_length_)) {
    throw platform::FileError(path_, "write record " + std::to_string(number),
                              static_cast<int>(std::errc::value_too_large));
  }
  const std::uint64_t offset = OffsetOf(number, record_length_);
  const std::uint64_t size = file_->Size();
  if (offset + record_length_ <= size) return file_->WriteAt(offset, bytes);
  // A new record, or one that the file's end cuts: what the file does not hold of it becomes zero.
  std::vector<std::byte> record(record_length_);
  if (offset < size) file_->ReadAt(offset, record);
  std::copy(bytes.begin(), bytes.end(), record.begin());
  file_->WriteAt(offset, record);
}

std::int64_t DirectAccessFile::RecordCount() {
  assert(IsOpen());
  return static_cast<std::int64_t>((file_->Size() + record_length_ - 1) / record_length_);
}

void DirectAccessFile::Close() { file_.reset(); }

}  // namespace zentor
