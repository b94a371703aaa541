#include <array>
#include <filesystem>
#include <limits>
#include <memory>

#include "authoring/table_builder.h"
#include "database/hand_table.h"
#include "support/faulty_files.h"

namespace zentor {
namespace {

using test::HandTable;

struct TableTest : test::TableFolder {
  void Open() {
    db = std::make_unique<ModelDatabase>(units);
    DbOpenStudyTables(*db);
  }
  HandTable Stored(Extension extension = ".FTC") { return HandTable(test::ReadBytes(PathOf(extension))); }

  test::FaultyFileSystem files;
  FileUnits units{files, services};
  std::unique_ptr<ModelDatabase> db;
};

constexpr DbTable kFtc = DbTable::kFtc;

TEST_F(TableTest, AnswersFromAHandWrittenFile) {
  HandTable table = test::SoundTable();
  table.Set(HandTable::kData + 3, 5, std::bit_cast<std::int32_t>(-2.5F));
  table.Write(PathOf(".FTC"));
  Open();
  EXPECT_EQ((std::array{DbGetInt(*db, kFtc, 11, 1), DbGetInt(*db, kFtc, 11, 20), DbSlotOf(*db, kFtc, 7)}),
            (std::array{11, 11020, 4}));
  EXPECT_EQ(DbGetReal(*db, kFtc, 7, 5), -2.5F);
  EXPECT_EQ((std::array{DbMaxId(*db, kFtc), DbCount(*db, kFtc), DbCapacity(*db, kFtc)}),
            (std::array{12, 4, 40}));
  std::array<std::int32_t, 4> fields{};
  DbGetInts(*db, kFtc, 12, 18, fields);  // one field more than the record has
  EXPECT_EQ(fields, (std::array{12018, 12019, 12020, 0}));
  DbGetInts(*db, kFtc, 12, -1, fields);  // two fields before the record
  EXPECT_EQ(fields, (std::array{0, 0, 12, 12002}));
  for (const int field : {0, -1, 21, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
    EXPECT_EQ(DbGetInt(*db, kFtc, 12, field), 0) << field;
    EXPECT_FALSE(DbPutReal(*db, kFtc, 12, field, 1)) << field;
  }
  for (const int id : {1, 13, 40, 41, 0, -1, std::numeric_limits<int>::max()}) {  // absent
    fields.fill(1);
    DbGetInts(*db, kFtc, id, 1, fields);
    EXPECT_EQ(fields, (std::array<std::int32_t, 4>{})) << id;
    EXPECT_EQ(DbSlotOf(*db, kFtc, id), 0) << id;
    EXPECT_FALSE(DbPutInt(*db, kFtc, id, 2, 5)) << id;
  }
}

TEST_F(TableTest, MasterTableHidesTheId) {
  HandTable table = test::SoundTable();
  table.Write(PathOf(".MAS"));
  Open();
  EXPECT_EQ(DbGetInt(*db, DbTable::kMas, 3, 1), 3002);
  EXPECT_EQ(DbGetInt(*db, DbTable::kMas, 3, 20), 0);
  EXPECT_FALSE(DbPutInt(*db, DbTable::kMas, 25, 1, 9));  // field 1 does not create here
  EXPECT_TRUE(DbPutInt(*db, DbTable::kMas, 25, 0, 1));
  EXPECT_TRUE(DbPutInt(*db, DbTable::kMas, 25, 11, 77));
  DbFlushAll(*db);
  EXPECT_EQ(Stored(".MAS").Get(HandTable::kData + 4, 12), 77);
}

TEST_F(TableTest, MissingTablesAnswerZeroAndAreNotCreated) {
  test::WriteText(PathOf(".CSY"), std::string(7, '\1'));
  test::WriteText(PathOf(".ELE"), std::string(256, '\0'));
  HandTable without_directory;
  without_directory.Set(1, 2, 0);
  without_directory.Write(PathOf(".EGR"));
  Open();
  for (int table = 1; table <= kTableCount; ++table) {
    const auto number = static_cast<DbTable>(table);
    EXPECT_EQ(DbGetInt(*db, number, 3, 2), 0) << table;
    EXPECT_FALSE(DbPutInt(*db, number, 3, 1, 1)) << table;
    EXPECT_EQ(DbMaxId(*db, number) + DbCount(*db, number) + DbCapacity(*db, number), 0) << table;
    DbCloseTable(*db, number, CloseMode::kWriteHeader);
  }
  EXPECT_FALSE(std::filesystem::exists(PathOf(".MAS")));
}

TEST_F(TableTest, ATableThatIsGoneAtItsFirstUseIsCreatedWithoutEntities) {
  test::SoundTable().Write(PathOf());
  Open();
  std::filesystem::remove(PathOf());
  EXPECT_EQ(DbGetInt(*db, kFtc, 7, 2), 0);
  ASSERT_EQ(services.shown.size(), 1U);
  EXPECT_EQ(services.shown[0].message, 9095);
  EXPECT_EQ(services.shown[0].severity, Severity::kWarning);
  EXPECT_TRUE(DbPutInt(*db, kFtc, 40, 1, 1));
  EXPECT_TRUE(DbPutInt(*db, kFtc, 40, 32, 5));
  DbCloseTable(*db, kFtc, CloseMode::kWriteHeader);
  const HandTable stored = Stored();
  const std::array<int, 9> header = {128, 40, 32, 0, 1, 0, 0, 0, 40};
  for (int word = 1; word <= 9; ++word) EXPECT_EQ(stored.Get(1, word), header[word - 1]) << word;
  EXPECT_EQ(stored.Get(2, 63) + stored.Get(3, 32), 5) << "kind 1 and size 4 of every field";
  EXPECT_EQ(stored.Get(4, 40), 1);
  EXPECT_EQ(stored.Get(6, 32), 5);
}

TEST_F(TableTest, WritesAreSeenAtOnceAndReachTheFileAtClose) {
  for (const CloseMode mode : {CloseMode::kWriteHeader, CloseMode::kKeepHeader}) {
    HandTable table = test::SoundTable();
    table.Set(HandTable::kDescriptors, 1, 9);  // a kind that closing makes 1
    table.Write(PathOf(".FTC"));
    Open();
    EXPECT_TRUE(DbPutInt(*db, kFtc, 12, 7, -5));
    EXPECT_EQ(DbGetInt(*db, kFtc, 12, 7), -5);
    EXPECT_TRUE(DbPutReal(*db, kFtc, 3, 7, 0.5F));
    EXPECT_EQ(Stored().Get(HandTable::kData + 2, 7), -5);
    EXPECT_TRUE(DbPutInt(*db, kFtc, 20, 1, 99));
    DbCloseTable(*db, kFtc, mode);
    const bool whole = mode == CloseMode::kWriteHeader;
    EXPECT_EQ(Stored().Get(1, 5), whole ? 5 : 4);
    EXPECT_EQ(Stored().Get(HandTable::kDescriptors, 1), whole ? 1 : 9);
    EXPECT_EQ(DbGetReal(*db, kFtc, 3, 7), 0.5F);
    db.reset();
  }
}

TEST_F(TableTest, CreatingTakesFreeSlotsFirstAndThenAppends) {
  HandTable table = test::TableWithFreeSlots();
  table.Write(PathOf(".FTC"));
  Open();
  EXPECT_TRUE(DbPutInt(*db, kFtc, 12, 1, 0));  // exists: nothing happens
  for (const int id : {30, 2, 31}) EXPECT_TRUE(DbPutInt(*db, kFtc, id, 1, 1));
  db.reset();

  for (const auto& [id, slot] : {std::pair{30, 6}, {2, 5}, {31, 7}}) {
    table.Set(HandTable::kDirectory, id, slot);
    for (int word = 1; word <= 32; ++word) table.Set(HandTable::kData - 1 + slot, word, word == 1 ? id : 0);
  }
  for (const auto& [word, value] : {std::pair{5, 7}, {6, 0}, {7, 0}, {9, 31}}) table.Set(1, word, value);
  EXPECT_EQ(Stored().bytes(), table.bytes());
}

TEST_F(TableTest, AFullTableRefusesNewEntities) {
  HandTable table;
  for (int id = 1; id <= 40; ++id) table.Add(id, id);
  table.Set(HandTable::kDirectory, 40, 0);  // the count says full, and the count is believed
  table.Write(PathOf(".FTC"));
  Open();
  EXPECT_FALSE(DbPutInt(*db, kFtc, 40, 1, 1));
  db.reset();
  EXPECT_EQ(Stored().bytes(), table.bytes());
}

TEST_F(TableTest, FieldsMayHaveOtherSizes) {
  HandTable table = test::SoundTable();
  table.Set(HandTable::kDescriptors, 4, 8);  // field 2 is words 2 and 3
  table.Set(HandTable::kDescriptors, 6, 2);  // field 3 is half of word 4
  table.Set(HandTable::kDescriptors, 8, 2);  // field 4 the other half
  table.Write(PathOf(".FTC"));
  Open();
  EXPECT_EQ(DbGetInt(*db, kFtc, 7, 2), 7002);
  EXPECT_TRUE(DbPutInt(*db, kFtc, 7, 4, -1));
  DbFlushAll(*db);
  EXPECT_EQ(Stored().Get(HandTable::kData + 3, 4), static_cast<std::int32_t>(0xFFFF0000U | 7004U));
  EXPECT_EQ(Stored().Get(HandTable::kData + 3, 5), 7005);
}

TEST_F(TableTest, FlushingReachesEveryTableThatCanBeWritten) {
  for (const Extension extension : {".NOD", ".FTC", ".SNC"}) test::SoundTable().Write(PathOf(extension));
  Open();
  for (const DbTable table : {DbTable::kNod, kFtc, DbTable::kSnc})
    EXPECT_TRUE(DbPutInt(*db, table, 3, 2, -1));
  files.FailAfter(0, test::FaultyFileSystem::Then::kThrow, ".NOD");
  EXPECT_THROW(DbFlushAll(*db), platform::FileError);
  EXPECT_EQ(Stored(".FTC").Get(HandTable::kData, 2), -1);
  EXPECT_EQ(Stored(".SNC").Get(HandTable::kData, 2), -1);
}

// A table of many records: in order with few reads, out of order and across writes with the right content.
TEST_F(TableTest, ReadingInOrderCostsFewReadsAndWritesStayVisible) {
  constexpr int kEntities = 20000;
  TableBuilder table(4, kEntities);
  for (int id = 1; id <= kEntities; ++id) table.SetInt(id, 3, -id);
  test::WriteBytes(PathOf(".NOD"), table.Bytes());
  Open();
  const auto value = [this](int id) { return DbGetInt(*db, DbTable::kNod, id, 3); };
  for (int id = 1; id <= kEntities; ++id) ASSERT_EQ(value(id), -id);
  EXPECT_LE(files.reads(), 30);
  for (int i = 1; i <= 4000; ++i) {
    const int read = i * 7919 % kEntities + 1;
    const int written = i * 104729 % kEntities + 1;
    ASSERT_EQ(value(read) < 0 ? -value(read) : value(read) - 1000000, read);
    ASSERT_TRUE(DbPutInt(*db, DbTable::kNod, written, 3, 1000000 + written));
    ASSERT_EQ(value(written), 1000000 + written);
  }
}

}  // namespace
}  // namespace zentor
