#include "progress/panel_text.h"

#include <gtest/gtest.h>

#include "platform/text.h"

namespace zentor::progress {
namespace {

TEST(PanelText, NoTextCanCommandTheTerminal) {
  EXPECT_EQ(platform::ToUtf8(PrintableUtf8("a\x1b[2Jb\n\tc\x9b\x7f ")), "a [2Jb c\xEF\xBF\xBD");
  EXPECT_EQ(Printable(u"\u0085x\u202Ey\u200B\u3000z"), U"xy z");
  const char16_t lone[] = {u'a', 0xD800, u'b', 0xDC00, 0};
  EXPECT_EQ(Printable(lone), U"a\uFFFDb\uFFFD");
}

}  // namespace
}  // namespace zentor::progress
