// One open table of the model database.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "database/record_window.h"
#include "database/table_format.h"
#include "platform/files.h"

namespace zentor {

// What the first words of a table file say.
struct TableScan {
  bool present = false;     // it holds a table: is longer than two words, and its directory is not empty
  bool zero_bytes = false;  // the file is there and holds nothing
  table_format::Geometry geometry;  // of a table that is present
};
// Throws InputFault when the header cannot be true, FileError when the file cannot be opened or read for any
// other reason than that it is not there.
TableScan ScanTable(platform::FileSystem& files, const std::string& path);
inline bool TableIsPresent(platform::FileSystem& files, const std::string& path) {
  return ScanTable(files, path).present;
}

// Writes a table without entities where there is no file; false, and nothing is written, when there is one by
// now. Throws FileError.
bool CreateEmptyTable(platform::FileSystem& files, const std::string& path,
                      const table_format::Geometry& geometry);

// A table file with its directory in memory and a buffer of one record that waits to be written.
//
// Fields are record fields: field 1 is the entity's id. The buffer is empty, clean (slot, id) or dirty (slot,
// id); a dirty record is written before another takes the buffer and by Flush, and at no other time.
//
// What the file holds between any two writes can be opened again and keeps its entities: a new record is in
// its slot before the directory names it, and counts that a killed run left behind are made good from the
// directory.
//
// Every function throws InputFault where the file contradicts itself and FileError when the system fails.
class TableFile {
 public:
  TableFile(platform::FileSystem& files, const std::string& path);

  const std::string& path() const { return path_; }
  const table_format::Geometry& geometry() const { return geometry_; }
  int live_count() const { return live_count_; }
  int highest_id() const { return highest_id_; }

  // The slot of an entity, 0 when the directory does not name the id.
  int SlotOf(int id) const;
  // Copies consecutive fields, 4 bytes each, from `first`: zero bytes for an absent entity and for fields
  // that the record does not have.
  void Read(int id, std::int64_t first, std::span<std::byte> out);
  // Stores a field of an existing entity into the buffer; false when there is no such entity or field, and
  // for the id.
  bool Write(int id, std::int64_t field, std::span<const std::byte, table_format::kFieldBytes> value);
  // Makes the entity exist with all other fields zero; false when the table is full or cannot hold the id.
  bool Create(int id);

  // Writes what differs from the file: header and descriptors, then the buffered record. Takes no memory, so
  // that a run which has none left keeps what it has done.
  void Flush();
  // Writes the buffered record only.
  void FlushRecord();

 private:
  struct NewSlot {
    std::int64_t slot;
    std::int32_t free_count, free_head;  // of the table afterwards
  };

  void ReadHeader();
  void ReadDescriptors();
  void ReadDirectory();
  void CountEntities();
  void ImageHeader();
  void ImageDescriptors();
  void WriteIfChanged(std::uint64_t offset, std::vector<std::byte>& held,
                      const std::vector<std::byte>& wanted);
  std::int64_t DataRecords() const;
  std::span<const std::byte> RecordOf(int id, int slot);
  void WriteRecord(std::int64_t slot);
  NewSlot TakeSlot();
  bool IsNamed(std::int64_t slot);
  [[noreturn]] void Fault(const std::string& place, const std::string& found,
                          const std::string& wanted) const;

  std::string path_;
  std::unique_ptr<platform::RandomAccessFile> file_;
  table_format::Geometry geometry_;
  std::vector<std::byte> header_;       // the header record as the file holds it
  std::vector<std::byte> descriptors_;  // the descriptor records as the file holds them
  // The same as they are to be; room made in advance, since Flush must do without memory.
  std::vector<std::byte> wanted_header_, wanted_descriptors_;
  std::int32_t live_count_ = 0, free_count_ = 0, free_head_ = 0, highest_id_ = 0;
  std::vector<int> starts_;              // byte offset of field k at [k - 1], of the record's end last
  std::vector<std::int32_t> directory_;  // slot of entity id at [id - 1]
  std::int64_t highest_slot_ = 0;        // that the directory names
  std::vector<bool> named_;              // by slot - 1; filled at the first use of the free list
  std::uint64_t data_bytes_ = 0;         // of data records in the file
  std::optional<RecordWindow> window_;

  std::vector<std::byte> buffer_;
  int buffered_slot_ = 0, buffered_id_ = 0;  // 0 while the buffer is empty
  bool buffer_dirty_ = false;
};

}  // namespace zentor
