// Table files that cannot be true: an answer or a clear fault, never a crash or a large allocation.
#include <array>
#include <filesystem>

#include "database/hand_table.h"
#include "services/faults.h"
#include "support/faulty_files.h"

namespace zentor {
namespace {

using test::HandTable;

constexpr DbTable kFtc = DbTable::kFtc;

struct HostileTable : test::TableFolder {
  // Every kind of access; the text of the first fault, empty when there was none.
  std::string Use(platform::FileSystem& files = platform::NativeFileSystem()) {
    std::string fault;
    FileUnits units(files, services);
    ModelDatabase db(units);
    const auto access = [&fault](const auto& operation) {
      try {
        operation();
      } catch (const InputFault& f) {
        if (fault.empty()) fault = f.place() + " is " + f.found();
      }
    };
    access([&] { DbOpenStudyTables(db); });
    for (int id = 0; id <= HandTable::kCapacity + 1; ++id) {
      std::array<std::int32_t, 25> fields{};
      access([&] { DbGetInts(db, kFtc, id, 1, fields); });
      access([&] { DbPutInt(db, kFtc, id, 20, 5); });
    }
    for (const int id : {1, 2, 5, 40}) access([&] { DbPutInt(db, kFtc, id, 1, 1); });
    access([&] { DbCloseTable(db, kFtc, CloseMode::kWriteHeader); });
    return fault;
  }
  std::string UseOf(const HandTable& table) {
    table.Write(PathOf());
    return Use();
  }
};

TEST_F(HostileTable, CutAtAnyLength) {
  const auto sound = test::SoundTable().bytes();
  for (std::size_t length = 0; length < sound.size(); ++length) {
    test::WriteBytes(PathOf(), std::span(sound).first(length));
    const std::string fault = Use();
    const bool missing = length < 8;
    const bool whole_fields = length >= sound.size() - 48;  // the last record without its tail
    EXPECT_EQ(fault.empty(), missing || whole_fields) << length << ' ' << fault;
  }
}

// Another program cuts the file off while it is read, in front of any read.
TEST_F(HostileTable, CutWhileItIsRead) {
  test::FaultyFileSystem counting;
  test::SoundTable().Write(PathOf());
  ASSERT_EQ(Use(counting), "");
  for (int cut_read = 0; cut_read < counting.reads(); ++cut_read) {
    for (const std::uintmax_t length : {0, 20, 100, 128, 300, 600, 700}) {
      SCOPED_TRACE(testing::Message() << "read " << cut_read << ", length " << length);
      test::SoundTable().Write(PathOf());
      test::FaultyFileSystem files;
      files.before_read = [&](int reads) {
        if (reads == cut_read) std::filesystem::resize_file(PathOf(), length);
      };
      const std::string fault = Use(files);
      const bool in_header = cut_read == 1 && length < 128;
      EXPECT_TRUE(!in_header || fault.starts_with("header")) << fault;
    }
  }
}

struct Fault {
  int record, word;
  std::int32_t value;
  std::string text;
};

TEST_F(HostileTable, FaultsNamePlaceAndValue) {
  std::vector<Fault> faults = {{HandTable::kDescriptors, 2, 0, "size of field 1 is 0"},
                               {HandTable::kDescriptors, 6, -4, "size of field 3 is -4"},
                               {HandTable::kDescriptors, 6, 2000000000, "size of field 3 is 2000000000"},
                               {HandTable::kDescriptors, 40, 53, "size of field 20 is 53"},
                               {HandTable::kDirectory, 7, 5, "slot of entity 7 is 5"},
                               {HandTable::kDirectory, 7, -1, "slot of entity 7 is -1"},
                               {HandTable::kDirectory, 7, 3, "entity 7, slot 3, word 1 is 12"},
                               {HandTable::kData + 3, 1, 8, "entity 7, slot 4, word 1 is 8"}};
  const int header[][2] = {{1, 0},  {1, -128}, {1, 132}, {1, 12416}, {2, -1}, {2, 2000000000},
                           {3, -1}, {3, 1651}, {5, -1},  {5, 41},    {6, -1}, {9, 41}};
  for (const auto& [word, value] : header) {
    faults.push_back(
        {1, word, value, "header word " + std::to_string(word) + " is " + std::to_string(value)});
  }
  for (const Fault& fault : faults) {
    HandTable table = test::SoundTable();
    table.Set(fault.record, fault.word, fault.value);
    EXPECT_EQ(UseOf(table), fault.text);
  }
  EXPECT_EQ(UseOf(test::SoundTable()), "");
}

}  // namespace
}  // namespace zentor
