// Read-ahead over the data records of a table file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "database/table_format.h"
#include "platform/files.h"

namespace zentor {

// A run of consecutive data records held in memory. A reader that goes through the slots in order makes the
// run longer with every read, up to kLongestBytes; a jump makes it short again.
class RecordWindow {
 public:
  static constexpr std::size_t kShortestBytes = std::size_t{4} * 1024;
  static constexpr std::size_t kLongestBytes = std::size_t{256} * 1024;

  RecordWindow(platform::RandomAccessFile& file, const table_format::Geometry& geometry);

  // The bytes that the file holds of a slot's record: fewer than a record at the end of the file, none beyond
  // it. Valid until the next call. Throws FileError.
  std::span<const std::byte> Record(std::int64_t slot);
  // Keeps the run true after a whole record has been written to a slot.
  void Written(std::int64_t slot, std::span<const std::byte> record);

 private:
  std::int64_t RecordsHeld() const;  // whole records and a cut one at the end
  void Load(std::int64_t slot);

  platform::RandomAccessFile& file_;
  table_format::Geometry geometry_;
  std::vector<std::byte> bytes_;
  std::int64_t first_slot_ = 1;  // slot of bytes_[0]
  std::size_t held_bytes_ = 0;   // of bytes_, as many as the file had
  std::int64_t run_length_ = 0;  // records asked for by the last read
};

}  // namespace zentor
