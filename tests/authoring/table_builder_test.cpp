#include "authoring/table_builder.h"

#include <gtest/gtest.h>

#include <bit>
#include <stdexcept>

#include "authoring/master_table.h"
#include "database/bytes.h"

namespace zentor {
namespace {

std::int32_t WordAt(const std::vector<std::byte>& file, std::size_t byte) {
  return LoadInt(&file.at(byte + 3) - 3);
}

// 33 fields need a record of two units, 256 bytes; 33 descriptors of 8 bytes fill two records; a directory of
// 70 ids fills two records; so the data begins with record 6.
TEST(TableBuilder, LaysOutHeaderDescriptorsDirectoryAndData) {
  TableBuilder table(33, 70);
  table.SetInt(5, 33, -7);
  table.SetReal(69, 2, 2.5F);
  const std::vector<std::byte> file = table.Bytes();
  constexpr std::size_t kRecord = 256;

  ASSERT_EQ(file.size(), 7 * kRecord);
  const std::int32_t header[] = {256, 70, 33, 0, 2, 0, 0, 0, 69};
  for (std::size_t i = 0; i < std::size(header); ++i)
    EXPECT_EQ(WordAt(file, 4 * i), header[i]) << "word " << i + 1;
  EXPECT_EQ(WordAt(file, 260), 4);
  EXPECT_EQ(WordAt(file, kRecord + std::size_t{32} * 8 + 4U), 4);
  EXPECT_EQ(WordAt(file, 3 * kRecord + std::size_t{4} * 4), 1) << "directory entry of id 5";
  EXPECT_EQ(WordAt(file, 3 * kRecord + std::size_t{4} * 68), 2) << "directory entry of id 69";
  EXPECT_EQ(WordAt(file, 5 * kRecord), 5);
  EXPECT_EQ(WordAt(file, 5 * kRecord + 128U), -7);
  EXPECT_EQ(WordAt(file, 6 * kRecord), 69);
  EXPECT_EQ(WordAt(file, 6 * kRecord + 4U), std::bit_cast<std::int32_t>(2.5F));
}

TEST(TableBuilder, RefusesWhatTheTableCannotHold) {
  TableBuilder table(4, 10);
  for (const auto& [id, field] : {std::pair(0, 2), {11, 2}, {1, 1}, {1, 5}})
    EXPECT_THROW(table.SetInt(id, field, 1), std::out_of_range) << id << ' ' << field;
  EXPECT_EQ(table.count(), 0) << "a refused field must not leave an entity behind";
  EXPECT_THROW(TableBuilder(1651, 10), std::out_of_range);
  EXPECT_THROW(TableBuilder(4, 0), std::out_of_range);
}

// Programs that do not know the table layer read these values at byte offsets formed from the record length.
TEST(MasterTable, PutsValuesAtTheirFixedByteOffsets) {
  TableBuilder table = NewMasterTable();
  const std::pair<MasterField, std::pair<std::size_t, std::size_t>> places[] = {
      {master::kEditionFlag, {36, 60}},
      {master::kLanguageIndex, {6, 56}},
      {master::kEarlierSeconds, {28, 68}},
      {master::kLogPosition, {28, 72}},
      {master::kModelCount, {7, 100}}};
  int value = 100;
  for (const auto& [field, place] : places) SetMaster(table, field, ++value);
  const std::vector<std::byte> file = table.Bytes();
  const auto n = static_cast<std::size_t>(WordAt(file, 0));
  value = 100;
  for (const auto& [field, place] : places) EXPECT_EQ(WordAt(file, place.first * n + place.second), ++value);
}

}  // namespace
}  // namespace zentor
