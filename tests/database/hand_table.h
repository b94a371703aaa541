// A small table file put together word by word, independent of the code under test.
//
// Records of 128 bytes (32 words): header in record 1, 20 field descriptors in records 2 and 3, a directory
// of 40 ids in records 4 and 5, data from record 6.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <vector>

#include "database/model_database.h"
#include "support/recording_services.h"
#include "support/temp_folder.h"

namespace zentor::test {

// A study in a folder of its own, with tables written by hand.
struct TableFolder : ::testing::Test {
  std::string PathOf(Extension extension = ".FTC") { return services.StudyFileName(extension); }

  TempFolder folder;
  RecordingServices services{folder.Path("study")};
};

class HandTable {
 public:
  static constexpr int kRecordBytes = 128, kCapacity = 40, kFields = 20;
  static constexpr int kDescriptors = 2, kDirectory = 4, kData = 6;  // first records

  HandTable() : bytes_(std::size_t{5} * kRecordBytes) {
    Set(1, 1, kRecordBytes);
    Set(1, 2, kCapacity);
    Set(1, 3, kFields);
    for (int field = 1; field <= kFields; ++field) {
      Set(kDescriptors, 2 * field - 1, 1);
      Set(kDescriptors, 2 * field, 4);
    }
  }
  explicit HandTable(std::vector<std::byte> bytes) : bytes_(std::move(bytes)) {}

  // Words count from 1 and may run on into the records that follow.
  void Set(int record, int word, std::int32_t value) {
    const std::size_t at = Offset(record, word);
    if (bytes_.size() < at + 4) bytes_.resize((at / kRecordBytes + 1) * kRecordBytes);
    std::memcpy(&bytes_[at], &value, 4);
  }
  std::int32_t Get(int record, int word) const {
    std::int32_t value = 0;
    std::memcpy(&value, &bytes_.at(Offset(record, word)), 4);
    return value;
  }
  // An entity in a slot: field k holds 1000 * id + k. Counts and highest id follow.
  void Add(int id, int slot) {
    Set(kDirectory, id, slot);
    for (int field = 2; field <= kFields; ++field) Set(kData - 1 + slot, field, 1000 * id + field);
    Set(kData - 1 + slot, 1, id);
    Set(1, 5, Get(1, 5) + 1);
    if (id > Get(1, 9)) Set(1, 9, id);
  }

  const std::vector<std::byte>& bytes() const { return bytes_; }
  void Write(const std::string& path) const { WriteBytes(path, bytes_); }

 private:
  static std::size_t Offset(int record, int word) {
    return static_cast<std::size_t>(record - 1) * kRecordBytes + static_cast<std::size_t>(word - 1) * 4;
  }
  std::vector<std::byte> bytes_;
};

// Entities 3, 7, 11 and 12 in slots 1, 4, 2, 3; every word that the program carries holds something.
inline HandTable SoundTable() {
  HandTable table;
  table.Add(3, 1);
  table.Add(7, 4);
  table.Add(11, 2);
  table.Add(12, 3);
  table.Set(1, 4, 444);
  table.Set(1, 8, 888);
  table.Set(1, 32, 3232);                        // the header record's tail
  table.Set(HandTable::kDescriptors, 64, 6464);  // of the descriptor records
  table.Set(HandTable::kDirectory, 64, 6464);    // of the directory records
  table.Set(HandTable::kData + 1, 32, 32);       // of a data record
  return table;
}

// The same with slots 6 and 5 free.
inline HandTable TableWithFreeSlots() {
  HandTable table = SoundTable();
  table.Set(HandTable::kData + 5, 1, 5);
  table.Set(HandTable::kData + 4, 1, 0);
  table.Set(1, 6, 2);
  table.Set(1, 7, 6);
  return table;
}

}  // namespace zentor::test
