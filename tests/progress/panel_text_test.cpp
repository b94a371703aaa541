#include "progress/panel_text.h"

#include <gtest/gtest.h>
#include <wchar.h>

#include <clocale>
#include <filesystem>
#include <string>

#include "progress/character_width.h"
#include "support/temp_folder.h"

namespace zentor::progress {
namespace {

TEST(CharacterWidth, AgreesWithTheSystemForTheTextsOfEveryLanguage) {
  if (std::setlocale(LC_CTYPE, "C.UTF-8") == nullptr) GTEST_SKIP() << "no UTF-8 locale";
  int checked = 0;
  for (const auto& folder : std::filesystem::directory_iterator(ZENTOR_CATALOG "/KtLang")) {
    const std::string texts = test::ReadText((folder.path() / "anlmsg.rc").string());
    for (const char32_t c : PrintableUtf8(texts)) {
      ASSERT_EQ(CharacterWidth(c), ::wcwidth(static_cast<wchar_t>(c))) << static_cast<unsigned>(c);
      ++checked;
    }
  }
  EXPECT_GT(checked, 50000);
  std::setlocale(LC_CTYPE, "C");
}

TEST(PanelText, NoTextCanCommandTheTerminal) {
  EXPECT_EQ(Utf8(PrintableUtf8("a\x1b[2Jb\n\tc\x9b\x7f ")), "a [2Jb c\xEF\xBF\xBD");
  EXPECT_EQ(Printable(u"\u0085x\u202Ey\u200B\u3000z"), U"xy z");
  const char16_t lone[] = {u'a', 0xD800, u'b', 0xDC00, 0};
  EXPECT_EQ(Printable(lone), U"a\uFFFDb\uFFFD");
}

}  // namespace
}  // namespace zentor::progress
