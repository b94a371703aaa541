#include "database/file_units.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/faulty_files.h"
#include "support/recording_services.h"
#include "support/temp_folder.h"

namespace zentor {
namespace {

struct FileUnitsTest : testing::Test {
  std::string Read(int unit, std::size_t count, std::int64_t offset) {
    std::string out(count, '?');
    out.resize(FileRead64(units, unit, std::as_writable_bytes(std::span(out)), offset));
    return out;
  }
  void Write(int unit, std::string_view text, std::int64_t offset) {
    FileWrite64(units, unit, std::as_bytes(std::span(text)), offset);
  }
  std::string PathOf(Extension extension) { return services.StudyFileName(extension); }

  test::TempFolder folder;
  test::RecordingServices services{folder.Path("study")};
  test::FaultyFileSystem files;
  FileUnits units{files, services};
};

TEST_F(FileUnitsTest, UnitsAreReusedByPathAndLowestNumberFirst) {
  test::WriteText(PathOf(".FLH"), "flh");
  EXPECT_EQ(FileOpen(units, ".FTD", 'B'), std::nullopt);  // does not exist; unit 1 stays free
  EXPECT_EQ(FileCreate(units, ".FTR", 'B'), 1);
  EXPECT_EQ(FileOpen(units, ".FLH", 'B'), 2);
  EXPECT_EQ(FileOpen(units, ".FLH", 'X'), 2);
  EXPECT_EQ(FileCreate(units, ".FTD", 'P'), 3);
  FileClose(units, 1);
  EXPECT_EQ(FileOpenPath(units, PathOf(".FTR")).unit, 1);
}

TEST_F(FileUnitsTest, ModesDecideWhatMayOpen) {
  test::WriteText(PathOf(".FLH"), "flh");
  for (const char mode : {'T', 'R', 'P', 'b', '\0'})
    EXPECT_EQ(FileOpen(units, ".FLH", mode), std::nullopt) << mode;
  for (const char mode : {'Z', '\0'}) EXPECT_EQ(FileCreate(units, ".FLH", mode), std::nullopt) << mode;
  const OpenedPath missing = FileOpenPath(units, folder.Path("none"));
  EXPECT_EQ(missing.unit, 0);
  EXPECT_EQ(missing.error, static_cast<int>(std::errc::no_such_file_or_directory));
  EXPECT_EQ(test::ReadText(PathOf(".FLH")), "flh");
}

TEST_F(FileUnitsTest, CreateEmptiesOnlyWhatIsOpen) {
  test::WriteText(PathOf(".FTR"), "content");
  const int unit = FileCreate(units, ".FTR", 'B').value();
  EXPECT_EQ(Read(unit, 99, 0), "content");
  EXPECT_EQ(FileCreate(units, ".FTR", 'B'), unit);
  EXPECT_EQ(FileSize(units, unit), 0U);
  FileDelete(units, ".FTR");
  EXPECT_FALSE(std::filesystem::exists(PathOf(".FTR")));
}

TEST_F(FileUnitsTest, ScratchFilesDisappearWhenClosedOrForgotten) {
  {
    FileUnits scratch(files, services);
    FileClose(scratch, FileCreate(scratch, ".SF1", 'T').value());
    EXPECT_FALSE(std::filesystem::exists(PathOf(".SF1")));
    FileCreate(scratch, ".SF2", 'R');
    FileCreate(scratch, ".KEP", 'G');
  }
  EXPECT_FALSE(std::filesystem::exists(PathOf(".SF2")));
  EXPECT_TRUE(std::filesystem::exists(PathOf(".KEP")));
}

TEST_F(FileUnitsTest, TransfersAtOffsetsAndAtTheCurrentPosition) {
  const int unit = FileCreate(units, ".FTR", 'B').value();
  Write(unit, "0123456789", 0);
  EXPECT_EQ(Read(unit, 4, 0), "0123");
  EXPECT_EQ(Read(unit, 3, kCurrentPosition), "456");
  Write(unit, "ab", kCurrentPosition);
  EXPECT_EQ(Read(unit, 9, kCurrentPosition), "9");
  EXPECT_EQ(Read(unit, 99, 0), "0123456ab9");
  EXPECT_THROW(Read(unit, 1, -2), platform::FileError);
  const std::int64_t far = std::int64_t{3} << 30U;
  Write(unit, "far", far);
  EXPECT_EQ(Read(unit, 4, far - 1), std::string("\0far", 4));
}

TEST_F(FileUnitsTest, UnitsThatAreNotOpenDoNothing) {
  for (const int unit : {-1, 0, 1, 2000, 2001}) {
    FileClose(units, unit);
    Write(unit, "x", 0);
    EXPECT_EQ(Read(unit, 1, 0), "");
  }
}

struct EmptyFile : platform::RandomAccessFile {
  std::size_t ReadAt(std::uint64_t, std::span<std::byte>) override { return 0; }
  void WriteAt(std::uint64_t, std::span<const std::byte>) override {}
  std::uint64_t Size() override { return 0; }
};

TEST_F(FileUnitsTest, TheTableOfUnitsIsFinite) {
  for (int i = 0; i < kMaxFileUnits; ++i)
    units.units.push_back({std::make_unique<EmptyFile>(), "other", 0, false});
  test::WriteText(PathOf(".FLH"), "flh");
  EXPECT_EQ(FileOpen(units, ".FLH", 'B'), std::nullopt);
  EXPECT_EQ(FileOpenPath(units, PathOf(".FLH")).error, static_cast<int>(std::errc::too_many_files_open));
  FileClose(units, 1234);
  EXPECT_EQ(FileOpen(units, ".FLH", 'B'), 1234);
}

}  // namespace
}  // namespace zentor
