// The words and sizes of a table file, shared by its reader and its writers. The layout is described with a
// worked example in docs/formats/table.md.
//
//   record 1             header, words below
//   from record 2        one (kind, size) pair per field
//   then                 directory: one word per entity id, its slot or 0
//   then                 data records; slot s is the s-th of them, word 1 is the entity's id
//
// A record is a block of the table's record length; records and words are counted from 1.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zentor::table_format {

// Words of the header record.
inline constexpr int kRecordLength = 1;     // bytes, a multiple of kRecordLengthUnit
inline constexpr int kDirectoryLength = 2;  // largest id the table can hold, and its capacity in entities
inline constexpr int kFieldCount = 3;       // fields per data record
inline constexpr int kReserved4 = 4;        // carried, 0 in a new table
inline constexpr int kLiveCount = 5;        // entities
inline constexpr int kFreeCount = 6;        // slots on the free list
inline constexpr int kFreeHead =
    7;  // first slot of the free list, 0: empty; a free slot's word 1 is the next
inline constexpr int kReserved8 = 8;  // carried, 0 in a new table
inline constexpr int kHighestId = 9;  // highest id in use, 0: none
inline constexpr int kHeaderWords = 9;

inline constexpr int kRecordLengthUnit = 128;
inline constexpr int kMaxRecordLength = 12288;
inline constexpr int kMaxFields = 1650;
inline constexpr int kFieldBytes = 4;       // of every field in tables that this program creates
inline constexpr int kDescriptorBytes = 8;  // word 1: kind, word 2: field size in bytes
inline constexpr int kFieldKind = 1;        // the kind that is written; ignored when read

// Record length of a new table: its fields, rounded up to whole units.
constexpr int RecordLengthFor(int fields) {
  return (fields * kFieldBytes + kRecordLengthUnit - 1) / kRecordLengthUnit * kRecordLengthUnit;
}

// Where the parts of a table file lie. Record numbers count from 1, offsets are bytes from the file's start.
struct Geometry {
  int record_length = 0;
  int directory_length = 0;
  int field_count = 0;

  constexpr std::int64_t DescriptorRecords() const {
    return Ceiling(kDescriptorBytes * std::int64_t{field_count});
  }
  constexpr std::int64_t DirectoryRecords() const {
    return Ceiling(kFieldBytes * std::int64_t{directory_length});
  }
  constexpr std::int64_t FirstDirectoryRecord() const { return 2 + DescriptorRecords(); }
  constexpr std::int64_t FirstDataRecord() const { return FirstDirectoryRecord() + DirectoryRecords(); }
  constexpr std::uint64_t RecordOffset(std::int64_t record) const {
    return static_cast<std::uint64_t>(record - 1) * static_cast<std::uint64_t>(record_length);
  }
  constexpr std::uint64_t DirectoryOffset(int id) const {
    return RecordOffset(FirstDirectoryRecord()) + (static_cast<std::uint64_t>(id) - 1) * kFieldBytes;
  }
  constexpr std::uint64_t SlotOffset(std::int64_t slot) const {
    return RecordOffset(FirstDataRecord() + slot - 1);
  }

 private:
  constexpr std::int64_t Ceiling(std::int64_t bytes) const {
    return (bytes + record_length - 1) / record_length;
  }
};

// Offset of a word inside its record.
constexpr std::size_t WordOffset(int word) { return (static_cast<std::size_t>(word) - 1) * 4; }

}  // namespace zentor::table_format
