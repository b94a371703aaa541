#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <span>
#include <string>

#include "database/direct_access_file.h"
#include "database/text_record_file.h"
#include "support/faulty_files.h"
#include "support/temp_folder.h"

namespace zentor {
namespace {

using platform::FileError;
using platform::OpenMode;

struct RecordFiles : testing::Test {
  test::TempFolder folder;
  test::FaultyFileSystem files;
  const std::string path = folder.Path("a");
};

using TextFile = RecordFiles;
using DirectAccess = RecordFiles;

TEST_F(TextFile, NewReplacesAndAppendGoesOn) {
  test::WriteText(path, "old content that is longer\n");
  TextRecordFile listing;
  listing.Open(files, path, TextRecordFile::Mode::kNew);
  listing.Line("one  ");
  listing.Blank(2);
  listing.ListDirected("two");
  listing.Close();
  listing.Open(files, path, TextRecordFile::Mode::kAppend);
  listing.Append("three\nfour\n");
  listing.Close();
  EXPECT_EQ(test::ReadText(path), "one  \n\n\n two\nthree\nfour\n");
  test::WriteText(path, "cut");
  listing.Open(files, path, TextRecordFile::Mode::kAppend);
  listing.Line("whole");
  listing.Close();
  EXPECT_EQ(test::ReadText(path), "cut\nwhole\n") << "appending starts on a line of its own";
}

TEST_F(DirectAccess, RecordsKeepWhatIsNotWritten) {
  DirectAccessFile file;
  file.Open(files, path, 4, OpenMode::kReplace);
  const auto write = [&file](std::int64_t record, std::string_view text) {
    file.Write(record, std::as_bytes(std::span(text)));
  };
  write(1, "abcd");
  write(3, "x");
  EXPECT_EQ(file.RecordCount(), 3);
  write(1, "XY");
  EXPECT_EQ(test::ReadText(path), std::string("XYcd\0\0\0\0x\0\0\0", 12));
  file.Close();

  test::WriteText(path, "abcdef");  // the file's end cuts record 2
  file.Open(files, path, 4, OpenMode::kReadWrite);
  EXPECT_EQ(file.RecordCount(), 2);
  write(2, "E");
  EXPECT_EQ(test::ReadText(path), std::string("abcdEf\0\0", 8));
}

TEST_F(DirectAccess, RecordNumbersOutsideTheFileGiveNothing) {
  test::WriteText(path, "abcdef");
  DirectAccessFile file;
  file.Open(files, path, 4, OpenMode::kReadOnly);
  std::array<std::byte, 8> out{};
  EXPECT_EQ(file.Read(1, out), 4U);
  EXPECT_EQ(file.Read(2, out), 2U);
  for (const std::int64_t record :
       {std::int64_t{3}, std::int64_t{0}, std::int64_t{-1}, std::numeric_limits<std::int64_t>::max()}) {
    EXPECT_EQ(file.Read(record, out), 0U) << record;
  }
  EXPECT_THROW(file.Write(std::numeric_limits<std::int64_t>::max(), std::span(out).first(4)), FileError);
}

}  // namespace
}  // namespace zentor
