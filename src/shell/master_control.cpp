#include "shell/master_control.h"

#include <array>

#include "database/bytes.h"

namespace zentor {
namespace {

// A value lies `records` records and `bytes` bytes from the start of the file.
std::int32_t ValueAt(platform::RandomAccessFile& file, std::int32_t record_length, int records, int bytes) {
  const std::int64_t offset = std::int64_t{records} * record_length + bytes;
  std::array<std::byte, 4> word{};
  if (offset < 0 || file.ReadAt(static_cast<std::uint64_t>(offset), word) != word.size()) return 0;
  return LoadInt(word.data());
}

}  // namespace

MasterControl ReadMasterControl(platform::FileSystem& files, const std::string& path,
                                platform::OpenMode mode) {
  const auto file = files.Open(path, mode);
  MasterControl out;
  const std::int32_t n = ValueAt(*file, 0, 0, 0);
  out.record_length = n;
  out.edition = ValueAt(*file, n, 36, 60);
  out.language = ValueAt(*file, n, 6, 56);
  out.seconds_spent = ValueAt(*file, n, 28, 68);
  out.summary_value = ValueAt(*file, n, 7, 100);
  out.summary_offset = ValueAt(*file, n, 28, 72);
  return out;
}

}  // namespace zentor
