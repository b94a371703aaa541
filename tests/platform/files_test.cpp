#include "platform/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdint>
#include <string>

#include "support/temp_folder.h"

namespace zentor::platform {
namespace {

struct Files : testing::Test {
  static void Write(RandomAccessFile& file, std::uint64_t offset, std::string_view text) {
    file.WriteAt(offset, std::as_bytes(std::span(text)));
  }
  static std::string Read(RandomAccessFile& file, std::uint64_t offset, std::size_t count) {
    std::string out(count, '?');
    out.resize(file.ReadAt(offset, std::as_writable_bytes(std::span(out))));
    return out;
  }
  test::TempFolder folder;
  FileSystem& files = NativeFileSystem();
  const std::string path = folder.Path("file");
};

TEST_F(Files, ModesKeepCreateAndReplace) {
  EXPECT_THROW(files.Open(path, OpenMode::kReadOnly), FileError);
  EXPECT_THROW(files.Open(path, OpenMode::kReadWrite), FileError);
  Write(*files.Open(path, OpenMode::kReadWriteCreate), 0, "content");
  EXPECT_EQ(files.Open(path, OpenMode::kReadWriteCreate)->Size(), 7U);
  EXPECT_EQ(files.Open(path, OpenMode::kReadWrite)->Size(), 7U);
  const auto read_only = files.Open(path, OpenMode::kReadOnly);
  EXPECT_THROW(Write(*read_only, 0, "x"), FileError);
  EXPECT_EQ(files.Open(path, OpenMode::kReplace)->Size(), 0U);
}

TEST_F(Files, TransfersAtAnyOffset) {
  const auto file = files.Open(path, OpenMode::kReplace);
  const std::uint64_t far = std::uint64_t{5} << 30U;
  Write(*file, far, "far");
  Write(*file, 1, "near");
  EXPECT_EQ(Read(*file, far, 9), "far");
  EXPECT_EQ(Read(*file, 0, 5), std::string("\0near", 5));
  EXPECT_EQ(Read(*file, far + 3, 1), "");
  EXPECT_THROW(Read(*file, ~std::uint64_t{0}, 1), FileError);
}

TEST_F(Files, AFolderIsRefusedByNameAndAPipeDoesNotStopTheProgram) {
  EXPECT_THAT([&] { files.Open(folder.Path(), OpenMode::kReadOnly); },
              testing::ThrowsMessage<FileError>(folder.Path() + ": cannot open: Is a directory"));
  EXPECT_THROW(files.Exists(folder.Path()), FileError) << "neither a file nor nothing";
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  const auto pipe = files.Open(path, OpenMode::kReadOnly);
  EXPECT_THROW(Read(*pipe, 0, 1), FileError);
}

}  // namespace
}  // namespace zentor::platform
