#include "authoring/table_builder.h"

#include <gtest/gtest.h>

#include <bit>
#include <stdexcept>

#include "authoring/master_table.h"
#include "database/bytes.h"
#include "database/model_database.h"
#include "support/recording_services.h"
#include "support/temp_folder.h"

namespace zentor {
namespace {

std::int32_t WordAt(const std::vector<std::byte>& file, std::size_t byte) {
  EXPECT_LE(byte + 4, file.size());
  return byte + 4 <= file.size() ? LoadInt(file.data() + byte) : 0;
}

// 33 fields need a record of two units, 256 bytes; 33 descriptors of 8 bytes fill two records; a directory of
// 70 ids fills two records; so the data begins with record 6.
TEST(TableBuilder, LaysOutHeaderDescriptorsDirectoryAndData) {
  TableBuilder table(33, 70);
  table.SetInt(5, 33, -7);
  table.SetReal(69, 2, 2.5F);
  table.SetInt(5, 2, 11);
  const std::vector<std::byte> file = table.Bytes();
  constexpr std::size_t kRecord = 256;

  ASSERT_EQ(file.size(), 7 * kRecord);
  const std::int32_t header[] = {256, 70, 33, 0, 2, 0, 0, 0, 69};
  for (std::size_t i = 0; i < std::size(header); ++i)
    EXPECT_EQ(WordAt(file, 4 * i), header[i]) << "word " << i + 1;
  EXPECT_EQ(WordAt(file, 256), 1);
  EXPECT_EQ(WordAt(file, 260), 4);
  EXPECT_EQ(WordAt(file, kRecord + std::size_t{32} * 8 + 4U), 4);
  EXPECT_EQ(WordAt(file, kRecord + std::size_t{33} * 8), 0) << "a descriptor behind the last";
  EXPECT_EQ(WordAt(file, 3 * kRecord + std::size_t{4} * 4), 1) << "directory entry of id 5";
  EXPECT_EQ(WordAt(file, 3 * kRecord + std::size_t{4} * 68), 2) << "directory entry of id 69";
  EXPECT_EQ(WordAt(file, 5 * kRecord), 5);
  EXPECT_EQ(WordAt(file, 5 * kRecord + 4U), 11);
  EXPECT_EQ(WordAt(file, 5 * kRecord + 128U), -7);
  EXPECT_EQ(WordAt(file, 6 * kRecord), 69);
  EXPECT_EQ(WordAt(file, 6 * kRecord + 4U), std::bit_cast<std::int32_t>(2.5F));
}

TEST(TableBuilder, RefusesWhatTheTableCannotHold) {
  TableBuilder table(4, 10);
  EXPECT_THROW(table.SetInt(0, 2, 1), std::out_of_range);
  EXPECT_THROW(table.SetInt(11, 2, 1), std::out_of_range);
  EXPECT_THROW(table.SetInt(1, 1, 1), std::out_of_range) << "the id is not a field to set";
  EXPECT_THROW(table.SetInt(1, 5, 1), std::out_of_range);
  EXPECT_EQ(table.count(), 0) << "a refused field must not leave an entity behind";
  EXPECT_THROW(TableBuilder(1651, 10), std::out_of_range);
  EXPECT_THROW(TableBuilder(4, 0), std::out_of_range);
}

TEST(TableBuilder, IsReadAndExtendedByTheDatabase) {
  const test::TempFolder folder;
  test::RecordingServices services(folder.Path("study"));
  TableBuilder table(6, 8);
  table.SetInt(3, 6, 33);
  table.SetReal(8, 2, 0.5F);
  test::WriteBytes(folder.Path("study.FTC"), table.Bytes());
  FileUnits units(platform::NativeFileSystem(), services);
  ModelDatabase database(units);
  DbOpenStudyTables(database);

  EXPECT_EQ(DbGetInt(database, DbTable::kFtc, 3, 6), 33);
  EXPECT_EQ(DbGetReal(database, DbTable::kFtc, 8, 2), 0.5F);
  EXPECT_EQ(DbMaxId(database, DbTable::kFtc), 8);
  EXPECT_TRUE(DbPutInt(database, DbTable::kFtc, 5, 1, 5));
  EXPECT_TRUE(DbPutInt(database, DbTable::kFtc, 5, 6, 55));
  DbCloseTable(database, DbTable::kFtc, CloseMode::kWriteHeader);
  EXPECT_EQ(DbGetInt(database, DbTable::kFtc, 5, 6), 55);
  EXPECT_EQ(DbGetInt(database, DbTable::kFtc, 3, 6), 33);
}

// Programs that do not know the table layer read these values at byte offsets formed from the record length
// N.
TEST(MasterTable, PutsValuesAtTheirFixedByteOffsets) {
  TableBuilder table = NewMasterTable();
  SetMaster(table, master::kEditionFlag, 101);
  SetMaster(table, master::kLanguageIndex, 3);
  SetMaster(table, master::kEarlierSeconds, 102);
  SetMaster(table, master::kLogPosition, 103);
  SetMaster(table, master::kModelCount, 104);
  const std::vector<std::byte> file = table.Bytes();
  const auto n = static_cast<std::size_t>(WordAt(file, 0));
  EXPECT_EQ(WordAt(file, 36 * n + 60), 101);
  EXPECT_EQ(WordAt(file, 6 * n + 56), 3);
  EXPECT_EQ(WordAt(file, 28 * n + 68), 102);
  EXPECT_EQ(WordAt(file, 28 * n + 72), 103);
  EXPECT_EQ(WordAt(file, 7 * n + 100), 104);
}

TEST(MasterTable, HoldsTheTitleAsCharactersFilledWithBlanks) {
  TableBuilder table = NewMasterTable();
  SetMasterTitle(table, "Ab");
  EXPECT_EQ(table.IntOf(1, 2), 'A');
  EXPECT_EQ(table.IntOf(1, 3), 'b');
  EXPECT_EQ(table.IntOf(1, 4), ' ');
  EXPECT_EQ(table.IntOf(1, 81), ' ');
}

}  // namespace
}  // namespace zentor
