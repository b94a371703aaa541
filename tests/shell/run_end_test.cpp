// What a run leaves behind at its end: the summary in ".LOG", warnings, study lists.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <optional>

#include "platform/text.h"
#include "shell/elapsed_time.h"
#include "shell/run_summary.h"
#include "shell/shell_services.h"
#include "shell/study_names.h"
#include "support/temp_folder.h"

namespace zentor {
namespace {

using test::ReadText;
using test::WriteText;

// Zeros with words set at the given offsets.
std::string Words(std::size_t size, const std::vector<std::pair<std::size_t, std::int32_t>>& words) {
  std::string bytes(size, '\0');
  for (const auto& [offset, value] : words) std::memcpy(&bytes.at(offset), &value, sizeof value);
  return bytes;
}

class RunSummary : public ::testing::Test {
 protected:
  RunSummary() : study_(folder_.Path("s1")), shell_(platform::NativeFileSystem(), platform::ToWide(study_)) {
    shell_.catalog =
        ParseMessageCatalog("#define SUMMARY 939\n", u"STRINGTABLE BEGIN SUMMARY \"n %d e %d v %d \" END")
            .catalog;
  }
  std::string Log() const { return ReadText(study_ + ".LOG"); }

  test::TempFolder folder_;
  std::string study_;
  ShellContext shell_;
  ProgressHost host_{""};
};

TEST_F(RunSummary, HoldsSizesAndElapsedTimeWhereTheStudyAsks) {
  struct Case {
    std::optional<std::int32_t> offset;  // in ".MAS"; none: no ".MAS"
    std::size_t node_file;               // bytes of ".NOD"
    std::string before, after;           // of ".LOG"
  };
  constexpr std::int32_t kLength = 128;
  const Case cases[] = {
      {0, 40, "", "n 27 e 8 v 5 01:00:00\n"},
      {0, 40, "first run\n", "first run\nn 27 e 8 v 5 01:00:00\n"},
      {4, 40, "abcdefgh", "abcd\nn 27 e 8 v 5 01:00:00\n"},
      {1000, 36, "ab", "ab\nn 27 e 8 v 5 01:00:00\n"},  // behind its end
      {-3, 35, "ab", "ab\nn 0 e 8 v 5 01:00:00\n"},     // before its start; no highest node number
      {std::nullopt, 40, "", "01:00:00\n"},
  };
  for (const Case& c : cases) {
    WriteText(study_ + ".NOD", Words(40, {{32, 27}}).substr(0, c.node_file));
    WriteText(study_ + ".ELE", Words(40, {{32, 8}}));
    WriteText(study_ + ".MAS",
              Words(40 * kLength,
                    {{0, kLength}, {7 * kLength + 100, 5}, {28 * kLength + 72, c.offset.value_or(0)}}));
    if (!c.offset) std::filesystem::remove(study_ + ".MAS");
    WriteText(study_ + ".LOG", c.before);
    ASSERT_THAT(WriteRunSummary(shell_, u"01:00:00"), testing::IsEmpty());
    EXPECT_EQ(Log(), c.after);
  }
}

TEST_F(RunSummary, NoTextSteersTheTerminalThatShowsTheLog) {
  ShellServices services(shell_, host_);
  shell_.hidden = true;
  testing::internal::CaptureStderr();
  services.AskUserText("a\x1b[2J\nb\u009b", BoxStyle::kError);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "zentor-fatigue: a?[2J b?\n");
  ASSERT_THAT(WriteRunSummary(shell_, u"01:00:00"), testing::IsEmpty());
  EXPECT_TRUE(Log().ends_with("+a?[2J\nb?\n")) << Log();
}

TEST(ElapsedText, HoursTakeTwoToFourDigits) {
  EXPECT_EQ(ElapsedText(-1), u"00:00:00");
  EXPECT_EQ(ElapsedText(99 * 3600 + 59 * 60 + 59), u"99:59:59");
  EXPECT_EQ(ElapsedText(100 * 3600), u"100:00:00");
  EXPECT_EQ(ElapsedText(1000 * 3600 + 61), u"1000:01:01");
}

TEST_F(RunSummary, KeepsEveryWarningTheWindowTheLatest) {
  for (int i = 1; i <= 25; ++i) {
    shell_.warnings.Record(u"w" + platform::WidenBytes(std::to_string(i)), u"12", u"00:00:01");
  }
  ASSERT_THAT(WriteRunSummary(shell_, u"01:00:00"), testing::IsEmpty());
  EXPECT_TRUE(Log().starts_with("01:00:00\n12+00:00:01+w1\n12+00:00:01+w2\n")) << Log();
  EXPECT_TRUE(Log().ends_with("+w25\n"));
  EXPECT_TRUE(shell_.warnings.RecentText().starts_with(u"w5\nw6\n")) << "21 are kept";
}

TEST(RecentWarnings, StayWithinTheRoomOfTheirText) {
  WarningStore warnings(20, 70);
  const auto record = [&](std::size_t length, char16_t letter) {
    warnings.Record(std::u16string(length, letter), u"", u"");
    return warnings.RecentText();
  };
  record(1000, u'a');
  EXPECT_EQ(record(1128, u'b').size(), 2130U);
  EXPECT_EQ(record(1, u'c'), std::u16string(1128, u'b') + u"\nc\n") << "the oldest makes room";
  EXPECT_EQ(record(5000, u'd'), std::u16string(2129, u'd') + u"\n");
  EXPECT_EQ(warnings.LogText().size(), 1000U + 1128 + 1 + 5000 + 4 * 3) << "the log keeps all";
}

std::string Utf16(std::u16string_view text) {
  return {reinterpret_cast<const char*>(text.data()), text.size() * 2};
}

TEST(StudyList, LinesEndAtAnyOfTheirSeparators) {
  const std::string list = Utf16(std::u16string_view(u"\uFEFFone\r\ntwo\nthree\rfour\0five", 25));
  const char16_t* const lines[] = {u"one", u"two", u"three", u"four", u"five", u""};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(StudyListLine(list, i + 1), lines[i]);
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
