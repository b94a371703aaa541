// What a run leaves behind at its end: the summary in ".LOG", warnings, study lists.
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "platform/system.h"
#include "platform/text.h"
#include "shell/elapsed_time.h"
#include "shell/run_summary.h"
#include "shell/shell_services.h"
#include "shell/study_names.h"
#include "support/faulty_files.h"
#include "support/temp_folder.h"

namespace zentor {
namespace {

using test::ReadText;
using test::WriteText;

std::string Word(std::int32_t value) { return {reinterpret_cast<const char*>(&value), 4}; }

// Bytes with little-endian words set at the given offsets.
std::string Words(std::size_t size, const std::vector<std::pair<std::size_t, std::int32_t>>& words) {
  std::string bytes(size, '\0');
  for (const auto& [offset, value] : words) bytes.replace(offset, 4, Word(value));
  return bytes;
}

class RunSummary : public ::testing::Test {
 protected:
  RunSummary() : study_(folder_.Path("s1")), shell_(platform::NativeFileSystem(), platform::ToWide(study_)) {
    const std::string header = "#define SUMMARY 939\n";
    shell_.catalog =
        ParseMessageCatalog(header, u"STRINGTABLE BEGIN SUMMARY \"n %d e %d v %d \" END").catalog;
    shell_.start_time = platform::SecondsSince1970() - 3600;
    WriteText(study_ + ".NOD", Words(40, {{32, 27}}));
    WriteText(study_ + ".ELE", Words(40, {{32, 8}}));
  }
  void WriteMaster(std::int32_t offset) {
    constexpr std::int32_t kLength = 128;
    WriteText(study_ + ".MAS",
              Words(40 * kLength, {{0, kLength}, {7 * kLength + 100, 5}, {28 * kLength + 72, offset}}));
  }

  test::TempFolder folder_;
  std::string study_;
  ShellContext shell_;
};

class LockedMaster : public test::FaultyFileSystem {
  std::unique_ptr<platform::RandomAccessFile> Open(const std::string& path,
                                                   platform::OpenMode mode) override {
    if (path.ends_with(".MAS")) throw platform::FileError(path, "open", EACCES);
    return FaultyFileSystem::Open(path, mode);
  }
};

TEST_F(RunSummary, HoldsSizesElapsedTimeAndEveryWarning) {
  WriteMaster(0);
  for (int i = 1; i <= 25; ++i) {
    std::u16string warning = u"w";
    warning += platform::WidenBytes(std::to_string(i));
    shell_.warnings.Record(warning, u"12", u"00:00:01");
  }
  ASSERT_TRUE(WriteRunSummary(shell_));
  const std::string log = ReadText(study_ + ".LOG");
  EXPECT_EQ(log.substr(0, 24), "n 27 e 8 v 5 01:00:00\n12");
  EXPECT_NE(log.find("12+00:00:01+w1\n"), std::string::npos) << "the log keeps what the window forgets";
  EXPECT_NE(log.find("+w25\n"), std::string::npos);
  const std::u16string recent = shell_.warnings.RecentText();
  EXPECT_EQ(recent.substr(0, 3), u"w5\n") << "21 warnings are kept for the window";
}

TEST_F(RunSummary, WithoutAReadableMasterOnlyTheTimeIsWritten) {
  WriteMaster(0);
  LockedMaster files;
  ShellContext shell(files, platform::ToWide(study_));
  shell.catalog = shell_.catalog;
  shell.start_time = shell_.start_time.load();
  ASSERT_TRUE(WriteRunSummary(shell));
  EXPECT_EQ(ReadText(study_ + ".LOG"), "01:00:00\n");
}

TEST_F(RunSummary, EarlierSummariesStay) {
  WriteMaster(0);
  WriteText(study_ + ".LOG", "first run\n");
  ASSERT_TRUE(WriteRunSummary(shell_));
  EXPECT_EQ(ReadText(study_ + ".LOG"), "first run\nn 27 e 8 v 5 01:00:00\n");
}

TEST_F(RunSummary, BeginsWhereTheStudyAsks) {
  WriteMaster(4);
  WriteText(study_ + ".LOG", "abcdefgh");
  ASSERT_TRUE(WriteRunSummary(shell_));
  EXPECT_EQ(ReadText(study_ + ".LOG"), "abcd\nn 27 e 8 v 5 01:00:00\n");
}

TEST_F(RunSummary, ValuesBeyondTheFilesCountAsNothing) {
  WriteText(study_ + ".LOG", "ab");
  WriteMaster(1000);  // beyond the start of ".LOG"
  WriteText(study_ + ".NOD", "short");
  ASSERT_TRUE(WriteRunSummary(shell_));
  EXPECT_EQ(ReadText(study_ + ".LOG"), "abn 0 e 8 v 5 01:00:00\n");
  std::filesystem::remove(study_ + ".MAS");
  WriteText(study_ + ".LOG", "");
  ASSERT_TRUE(WriteRunSummary(shell_));
  EXPECT_EQ(ReadText(study_ + ".LOG"), "01:00:00\n") << "without the control file there is no message";
}

TEST(ElapsedTime, HourDigitsGrow) {
  EXPECT_EQ(ElapsedText(99 * 3600 + 59 * 60 + 59), u"99:59:59");
  EXPECT_EQ(ElapsedText(100 * 3600), u"100:00:00");
  EXPECT_EQ(ElapsedText(1000 * 3600 + 61), u"1000:01:01");
  EXPECT_EQ(ElapsedText(-5), u"00:00:00");
}

std::string Utf16(std::u16string_view text) {
  return {reinterpret_cast<const char*>(text.data()), text.size() * 2};
}

TEST(StudyList, LinesEndAtAnyOfTheirSeparators) {
  const std::string list = Utf16(u"\uFEFFone\r\ntwo\nthree\rfour\0five");
  const std::string with_nul = Utf16(std::u16string_view(u"a\0b\r\nc", 6));
  EXPECT_EQ(StudyListLine(list, 1), u"one");
  EXPECT_EQ(StudyListLine(list, 2), u"two");
  EXPECT_EQ(StudyListLine(list, 3), u"three");
  EXPECT_EQ(StudyListLine(list, 4), u"four");
  EXPECT_EQ(StudyListLine(list, 9), u"");
  EXPECT_EQ(StudyListLine(with_nul, 2), u"b");
  EXPECT_EQ(StudyListLine(with_nul, 3), u"c");
  EXPECT_EQ(StudyListLine("odd", 1), u"\u646F") << "a dangling byte is dropped";
}

TEST(StudyNameBuffers, RelativeNamesAreFoundBesideTheStudy) {
  test::TempFolder folder;
  const std::string study = folder.Path("main");
  WriteText(study + ".FTS", Utf16(u"other\r\n"));
  WriteText(folder.Path("other") + ".STE", "");
  StudyNames names(platform::NativeFileSystem(), platform::ToWide(study));
  names.ReadSecond(1);
  names.Select(1);
  EXPECT_EQ(names.FileName(".STE"), folder.Path("other.STE"));
  std::filesystem::remove(study + ".FTS");
  names.ReadSecond(2);
  EXPECT_EQ(names.FileName(".STE"), folder.Path("other.STE")) << "a missing list leaves the name as it was";
}

}  // namespace
}  // namespace zentor
