#include "shell/command_line.h"

#include <gtest/gtest.h>

#include <tuple>
#include <utility>
#include <vector>

namespace zentor {
namespace {

using Tokens = std::vector<std::u16string>;

Tokens TokensOf(const CommandLine& line) {
  return {line.tokens.begin() + 1, line.tokens.begin() + line.count};
}

TEST(CommandLine, OnlyBlanksSeparateAndQuotesGroup) {
  const std::pair<const char16_t*, Tokens> cases[] = {
      {u"", {}},
      {u"  a   b  ", {u"a", u"b"}},
      {u"a\tb c", {u"a\tb", u"c"}},
      {u"x \"C:/My Studies/s1\"", {u"x", u"C:/My Studies/s1"}},
      {u"\"\" a \"\"", {u"a"}},
      {u"a x\"y z\" b", {u"a", u"y z", u"b"}},  // a quote restarts the token
      {u"a \"left open", {u"a", u"left open"}},
  };
  for (const auto& [text, tokens] : cases) EXPECT_EQ(TokensOf(ParseCommandLine(text)), tokens);
  EXPECT_FALSE(ParseCommandLine(u"1 2 3 4 5 6 7 8 " + std::u16string(255, u'x')).too_long);
  EXPECT_TRUE(ParseCommandLine(u"1 2 3 4 5 6 7 8 9 10").too_long);
  EXPECT_TRUE(ParseCommandLine(std::u16string(256, u'x')).too_long);
}

TEST(CommandLine, TheFirstSwitchAloneTakesEffect) {
  // Text, hidden, parent window, tokens in use, second token.
  using Case = std::tuple<std::u16string, bool, long, int, std::u16string>;
  const Case cases[] = {
      {u"a -silent", true, 0, 3, u"-silent"},  // the switch is also the second token, the study's name
      {u"a name -batch", true, 0, 4, u"name"},
      {u"a name -window -silent", false, 0, 5, u"name"},
      {u"a name -Silent", false, 0, 4, u"name"},
      {u"a name -HWND 1234", false, 1234, 3, u"name"},
      {u"a b -HWND", false, 0, 2, u"b"},
      {u"1 2 3 4 5 6 7 8 -HWND", false, 0, 8, u"2"},  // no slot behind the switch
      {u"a b -HWND -12x", false, -12, 3, u"b"},
      {u"a b -HWND 999999999999999999999999", false, 9223372036854775807, 3, u"b"},
  };
  for (const Case& expected : cases) {
    const CommandLine line = ParseCommandLine(std::get<0>(expected));
    EXPECT_EQ(Case(std::get<0>(expected), line.hidden, line.parent_window, line.count, line.tokens[2]),
              expected);
  }
}

TEST(CommandLine, ArgumentsOfTheNativeMainKeepTheirBlanks) {
  const char* arguments[] = {"program", "front end", "caf\xC3\xA9", "\"my study\"", "a\"b", "-silent"};
  const std::u16string joined = JoinArguments(6, arguments);
  EXPECT_EQ(TokensOf(ParseCommandLine(joined)),
            (Tokens{u"front end", u"caf\u00E9", u"my study", u"b", u"-silent"}))
      << "a quote left open ends with its argument";
}

TEST(BatchFile, NameEndsAtTheFirstLineEnd) {
  const std::pair<std::string, std::u16string> cases[] = {
      {"C:/w/s1   \r\nrest", u"C:/w/s1"},
      {"s1  ", u"s1  "},                  // without a carriage return nothing is trimmed
      {"\ns1\ns2", u"\ns1"},              // a line end is looked for behind the first character
      {"\xE9t\xE9\r", u"\u00E9t\u00E9"},  // each byte is one character
      {std::string(400, 'n'), std::u16string(255, u'n')},
  };
  for (const auto& [bytes, name] : cases) EXPECT_EQ(StudyNameFromBatch(bytes), name);
}

}  // namespace
}  // namespace zentor
