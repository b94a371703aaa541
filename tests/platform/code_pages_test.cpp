#include "platform/code_pages.h"

#include <gtest/gtest.h>

namespace zentor::platform {
namespace {

TEST(CodePages, TextsTurnIntoTheBytesOfTheirCodePageAndBack) {
  struct Case {
    const char* locale;
    const char16_t* text;
    const char* bytes;
  };
  const Case cases[] = {{"English", u"caf\u00E9 \u20AC", "caf\xE9 \x80"},
                        {"Russian", u"\u041C\u0438\u0440", "\xCC\xE8\xF0"},
                        {"Polish", u"\u0142\u00F3\u017A", "\xB3\xF3\x9F"},
                        {"Korean", u"\uD55C\uAE00", "\xC7\xD1\xB1\xDB"}};
  for (const Case& c : cases) {
    EXPECT_EQ(RoundTrip(c.text, CodePageOf(c.locale)), c.bytes) << c.locale;
    EXPECT_EQ(FromCodePage(c.bytes, CodePageOf(c.locale)), c.text) << c.locale;
  }
}

TEST(CodePages, WhatACodePageDoesNotHoldIsRefused) {
  EXPECT_EQ(ToCodePage(u"\u65E5", "CP1252"), std::nullopt) << "no substitute character";
  EXPECT_EQ(ToCodePage(u"\xDC80", "CP1252"), std::nullopt) << "half of a pair is no character";
  EXPECT_EQ(FromCodePage("\x93", "CP932"), std::nullopt) << "half a character";
  EXPECT_EQ(ToCodePage(u"a", "no such code page"), std::nullopt);
  EXPECT_EQ(CodePageOf("Klingon"), "");
  EXPECT_EQ(RoundTrip(std::u16string(3000, u'\u00E9'), "CP1252"), std::string(3000, '\xE9'));
}

}  // namespace
}  // namespace zentor::platform
