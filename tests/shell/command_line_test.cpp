#include "shell/command_line.h"

#include <gtest/gtest.h>

#include <vector>

namespace zentor {
namespace {

std::vector<std::u16string> Tokens(std::u16string_view text) {
  const CommandLine line = ParseCommandLine(text);
  return {line.tokens.begin() + 1, line.tokens.begin() + line.count};
}

TEST(CommandLineSplitting, OnlyBlanksSeparateAndQuotesGroup) {
  using List = std::vector<std::u16string>;
  EXPECT_EQ(Tokens(u""), List{});
  EXPECT_EQ(Tokens(u"  a   b  "), (List{u"a", u"b"}));
  EXPECT_EQ(Tokens(u"a\tb c"), (List{u"a\tb", u"c"}));
  EXPECT_EQ(Tokens(u"x \"C:/My Studies/s1\""), (List{u"x", u"C:/My Studies/s1"}));
  EXPECT_EQ(Tokens(u"\"\" a \"\""), (List{u"a"}));
  EXPECT_EQ(Tokens(u"a x\"y z\" b"), (List{u"a", u"y z", u"b"})) << "a quote restarts the token";
  EXPECT_EQ(Tokens(u"a \"left open"), (List{u"a", u"left open"}));
}

TEST(CommandLineSplitting, TooManyOrTooLongTokensAreRefused) {
  EXPECT_FALSE(ParseCommandLine(u"1 2 3 4 5 6 7 8 9").too_long);
  EXPECT_TRUE(ParseCommandLine(u"1 2 3 4 5 6 7 8 9 10").too_long);
  EXPECT_FALSE(ParseCommandLine(std::u16string(255, u'x')).too_long);
  EXPECT_TRUE(ParseCommandLine(std::u16string(256, u'x')).too_long);
}

TEST(CommandLineSwitches, TheFirstSwitchAloneTakesEffect) {
  const CommandLine silent = ParseCommandLine(u"a -silent");
  EXPECT_TRUE(silent.hidden);
  EXPECT_EQ(silent.tokens[2], u"-silent") << "the switch is also the second token, the study's name";
  EXPECT_EQ(silent.count, 3);
  EXPECT_TRUE(ParseCommandLine(u"a name -batch").hidden);
  EXPECT_FALSE(ParseCommandLine(u"a name -window -silent").hidden);
  EXPECT_FALSE(ParseCommandLine(u"a name -BW -silent").hidden);
  EXPECT_FALSE(ParseCommandLine(u"a name -Silent").hidden);
}

TEST(CommandLineSwitches, ParentWindowTakesItsTokenAlong) {
  const CommandLine behind = ParseCommandLine(u"a name -HWND 1234");
  EXPECT_EQ(behind.parent_window, 1234);
  EXPECT_EQ(behind.count, 3);
  EXPECT_EQ(behind.tokens[2], u"name");
  EXPECT_EQ(ParseCommandLine(u"-HWND 1234 name").count, 2) << "too few tokens left for a study name";
  EXPECT_EQ(ParseCommandLine(u"a b -HWND").parent_window, 0);
  EXPECT_EQ(ParseCommandLine(u"1 2 3 4 5 6 7 8 -HWND").parent_window, 0) << "no slot behind the switch";
}

TEST(CommandLineNumbers, LeadingIntegerStopsAtTheFirstOtherCharacter) {
  EXPECT_EQ(LeadingInteger(u"  -12x"), -12);
  EXPECT_EQ(LeadingInteger(u"+7"), 7);
  EXPECT_EQ(LeadingInteger(u"x7"), 0);
  EXPECT_GT(LeadingInteger(u"999999999999999999999999"), 0) << "saturates instead of overflowing";
}

TEST(CommandLineArguments, BlanksAreQuotedAgain) {
  const char* arguments[] = {"program", "front end", "caf\xC3\xA9", "-silent"};
  EXPECT_EQ(JoinArguments(4, arguments), u"\"front end\" caf\u00E9 -silent");
}

TEST(BatchFile, NameEndsAtTheFirstLineEnd) {
  EXPECT_EQ(StudyNameFromBatch("C:/w/s1   \r\nrest"), u"C:/w/s1");
  EXPECT_EQ(StudyNameFromBatch("s1\nrest"), u"s1");
  EXPECT_EQ(StudyNameFromBatch("s1  "), u"s1  ") << "without a carriage return nothing is trimmed";
  EXPECT_EQ(StudyNameFromBatch(""), u"");
  EXPECT_EQ(StudyNameFromBatch("\xE9t\xE9\r"), u"\u00E9t\u00E9") << "each byte is one character";
  EXPECT_EQ(StudyNameFromBatch(std::string(400, 'n')).size(), 255U);
}

}  // namespace
}  // namespace zentor
