// What a killed run, or one whose disk filled up, leaves of a table.
#include <array>
#include <limits>
#include <set>

#include "database/hand_table.h"
#include "support/faulty_files.h"

namespace zentor {
namespace {

using test::FaultyFileSystem;
using test::HandTable;

constexpr DbTable kFtc = DbTable::kFtc;
constexpr std::array kOld = {3, 7, 11, 12};
constexpr std::array kNew = {30, 2, 31, 40};

struct TableCrash : test::TableFolder {
  // What a run does to its tables; returns the writes that it made.
  int Run(FaultyFileSystem& files) {
    FileUnits units(files, services);
    ModelDatabase db(units);
    try {
      DbOpenStudyTables(db);
      for (const int id : kNew) {
        DbPutInt(db, kFtc, id, 1, 1);
        DbPutInt(db, kFtc, id, 2, 1000 * id + 2);
      }
      DbPutInt(db, kFtc, 11, 5, -11);
      DbPutInt(db, kFtc, 12, 5, -12);
      DbCloseTable(db, kFtc, CloseMode::kWriteHeader);
    } catch (const platform::FileError&) {
      EXPECT_LT(files.writes(), 20);
    }
    return files.writes();
  }

  // Everything that must hold of the file, whatever happened to it.
  void ExpectSound(ModelDatabase& db) {
    std::set<int> slots;
    int entities = 0;
    for (int id = 1; id <= HandTable::kCapacity; ++id) {
      const int slot = DbSlotOf(db, kFtc, id);
      if (slot == 0) continue;
      ++entities;
      EXPECT_TRUE(slots.insert(slot).second) << "two entities in slot " << slot;
      EXPECT_EQ(DbGetInt(db, kFtc, id, 1), id);
      EXPECT_LE(id, DbMaxId(db, kFtc));
    }
    EXPECT_EQ(DbCount(db, kFtc), entities);
    for (const int id : kOld) {
      for (int field = 2; field <= HandTable::kFields; ++field) {
        const int found = DbGetInt(db, kFtc, id, field);
        EXPECT_TRUE(found == 1000 * id + field || (field == 5 && id >= 11 && found == -id))
            << id << ' ' << field;
      }
    }
  }

  void ExpectUsable() {
    FileUnits units(platform::NativeFileSystem(), services);
    for (const int created : {20, 22}) {  // a run each, so that the counts pass through the file
      ModelDatabase db(units);
      DbOpenStudyTables(db);
      ExpectSound(db);
      EXPECT_TRUE(DbPutInt(db, kFtc, created, 1, 1));
      EXPECT_TRUE(DbPutInt(db, kFtc, created + 1, 1, 1));
      ExpectSound(db);
    }
  }
};

TEST_F(TableCrash, EveryPointOfAKillLeavesAUsableTable) {
  for (const HandTable& table : {test::SoundTable(), test::TableWithFreeSlots()}) {
    table.Write(PathOf());
    FaultyFileSystem sound;
    const int writes = Run(sound);
    ASSERT_GE(writes, 12);
    for (int allowed = 0; allowed <= writes; ++allowed) {
      for (const auto then : {FaultyFileSystem::Then::kThrow, FaultyFileSystem::Then::kIgnore}) {
        SCOPED_TRACE("killed after write " + std::to_string(allowed));
        table.Write(PathOf());
        FaultyFileSystem files;
        files.FailAfter(allowed, then);
        try {
          EXPECT_EQ(Run(files), allowed);
        } catch (const std::exception& error) {  // a run that reads back what it lost may notice
          EXPECT_EQ(then, FaultyFileSystem::Then::kIgnore) << error.what();
        }
        ExpectUsable();
      }
    }
  }
}

// Counts and free lists that contradict the directory never lead to a slot in use.
TEST_F(TableCrash, TheDirectoryDecidesWhichSlotsAreInUse) {
  constexpr int kLargest = std::numeric_limits<std::int32_t>::max();
  for (const int live : {0, 1, 4}) {
    for (const int head : {0, 1, 4, 5, 6, 7, -1, kLargest}) {
      for (const int next : {0, 1, 5, 6, 7, -1, kLargest}) {
        SCOPED_TRACE(testing::Message() << "live " << live << ", head " << head << ", next " << next);
        HandTable table = test::TableWithFreeSlots();
        table.Set(1, 5, live);
        table.Set(1, 7, head);
        table.Set(HandTable::kData + 4, 1, next);
        table.Set(HandTable::kData + 5, 1, 5);
        table.Write(PathOf());
        ExpectUsable();
      }
    }
  }
}

}  // namespace
}  // namespace zentor
