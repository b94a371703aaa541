#include "platform/text.h"

#include <gtest/gtest.h>

#include <string>

namespace zentor::platform {
namespace {

TEST(Text, CharactersOfEveryLength) {
  EXPECT_EQ(ToWide("a\u00e9\u20ac\U0001F600"), u"a\u00e9\u20ac\U0001F600");
  EXPECT_EQ(ToUtf8(u"a\u00e9\u20ac\U0001F600"), "a\u00e9\u20ac\U0001F600");
  EXPECT_EQ(WidenBytes("a\xE9"), u"a\u00e9");
}

TEST(Text, AnyFileNameSurvivesTheRoundTrip) {
  // Cut, overlong, encoded surrogates, beyond U+10FFFF, stray continuations.
  for (const std::string bad : {"x\xC3", "\xE2\x82", "\xF0\x9F\x98", "\xC0\xAF", "\xE0\x80\xAF",
                                "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xFF\xFE", "\x80zyx", "\xC3\xC3\xA9"})
    EXPECT_EQ(ToUtf8(ToWide(bad)), bad);
}

TEST(Text, LoneSurrogatesBecomeReplacementCharacters) {
  EXPECT_EQ(ToUtf8(u"\xD800|"), "\uFFFD|");
  EXPECT_EQ(ToUtf8(u"\xDC00\xD83D"), "\uFFFD\uFFFD");
}

TEST(Text, ControlCharactersAreNotPrintable) {
  EXPECT_EQ(Printable("a\x1b[2J\tb\n\x7f", "\n"), "a?[2J?b\n?");
  EXPECT_EQ(Printable("\u009b31m\u00a0\u00df\x9b|\xc2"), "?31m\u00a0\u00df?|\xc2");  // U+00DF ends in 0x9f
}

}  // namespace
}  // namespace zentor::platform
