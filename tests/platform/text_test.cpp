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

// Bytes that are not UTF-8: cut, overlong, encoded surrogates, beyond U+10FFFF, stray continuations.
TEST(Text, AnyFileNameSurvivesTheRoundTrip) {
  for (const std::string bad :
       {"\xE9", "x\xC3", "\xE2\x82", "\xF0\x9F\x98", "\xC0\xAF", "\xE0\x80\xAF", "\xED\xA0\x80",
        "\xED\xB2\x80", "\xF4\x90\x80\x80", "\xFF\xFE", "\x80zyx", "\xC3\xC3\xA9"}) {
    EXPECT_EQ(ToUtf8(ToWide(bad)), bad);
  }
  for (int first = 0; first < 256; ++first) {
    for (int second = 0; second < 256; ++second) {
      const std::string pair = {static_cast<char>(first), static_cast<char>(second), '/'};
      ASSERT_EQ(ToUtf8(ToWide(pair)), pair) << first << ' ' << second;
    }
  }
}

TEST(Text, LoneSurrogatesBecomeReplacementCharacters) {
  EXPECT_EQ(ToUtf8(u"\xD800|"), "\uFFFD|");
  EXPECT_EQ(ToUtf8(u"\xDC00\xD83D"), "\uFFFD\uFFFD");
}

}  // namespace
}  // namespace zentor::platform
