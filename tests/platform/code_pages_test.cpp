#include "platform/code_pages.h"

#include <gtest/gtest.h>

#include <tuple>

namespace zentor::platform {
namespace {

TEST(CodePages, TextsTurnIntoTheBytesOfTheirCodePageAndBack) {
  using Case = std::tuple<const char*, const char16_t*, const char*>;
  for (const auto& [locale, text, bytes] : {Case{"English", u"caf\u00E9 \u20AC", "caf\xE9 \x80"},
                                            Case{"Russian", u"\u041C\u0438\u0440", "\xCC\xE8\xF0"},
                                            Case{"Korean", u"\uD55C\uAE00", "\xC7\xD1\xB1\xDB"}}) {
    EXPECT_EQ(RoundTrip(text, CodePageOf(locale)), bytes) << locale;
    EXPECT_EQ(FromCodePage(bytes, CodePageOf(locale)), text) << locale;
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
