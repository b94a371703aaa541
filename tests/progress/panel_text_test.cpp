#include "progress/panel_text.h"

#include <gtest/gtest.h>
#include <locale.h>
#include <wchar.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/text.h"
#include "progress/character_width.h"
#include "support/temp_folder.h"

namespace zentor::progress {
namespace {

// The C library's own widths, of a UTF-8 locale for this thread alone.
class SystemWidths {
 public:
  SystemWidths() : locale_(::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {
    if (locale_ != nullptr) before_ = ::uselocale(locale_);
  }
  SystemWidths(const SystemWidths&) = delete;
  SystemWidths& operator=(const SystemWidths&) = delete;
  ~SystemWidths() {
    if (locale_ == nullptr) return;
    ::uselocale(before_);
    ::freelocale(locale_);
  }
  bool Available() const { return locale_ != nullptr; }

 private:
  locale_t locale_;
  locale_t before_{};
};

TEST(CharacterWidth, AgreesWithTheSystemForTheTextsOfEveryLanguage) {
  const SystemWidths system;
  if (!system.Available()) GTEST_SKIP() << "no UTF-8 locale";
  int checked = 0;
  for (const auto& folder : std::filesystem::directory_iterator(ZENTOR_CATALOG "/KtLang")) {
    const std::string texts = test::ReadText((folder.path() / "anlmsg.rc").string());
    for (const char32_t c : PrintableUtf8(texts)) {
      ASSERT_EQ(CharacterWidth(c), ::wcwidth(static_cast<wchar_t>(c)))
          << std::hex << static_cast<unsigned>(c);
      ++checked;
    }
  }
  EXPECT_GT(checked, 50000);
}

TEST(CharacterWidth, MarksPictographsAndFullWidthForms) {
  EXPECT_EQ(TextWidth(U"e\u0301"), 1);       // combining acute accent
  EXPECT_EQ(TextWidth(U"\uD55C\uFF21"), 4);  // Hangul, full-width A
  EXPECT_EQ(TextWidth(U"\U0001F600\U00020000"), 4);
  EXPECT_EQ(TextWidth(U"\u2588\u00E9\u0416"), 3);
}

TEST(PanelText, NoTextCanCommandTheTerminal) {
  EXPECT_EQ(Utf8(PrintableUtf8("a\x1b[2Jb\n\tc\x9b\x7f ")), "a [2Jb c\xEF\xBF\xBD");
  EXPECT_EQ(Printable(u"\u0085x\u202Ey\u200B\u3000z"), U"xy z");
  const char16_t lone[] = {u'a', 0xD800, u'b', 0xDC00, 0};
  EXPECT_EQ(Printable(lone), U"a\uFFFDb\uFFFD");
  EXPECT_EQ(Utf8(Printable(u"\U0001F600\u00E4")), "\xF0\x9F\x98\x80\xC3\xA4");
}

TEST(PanelText, Cutting) {
  EXPECT_EQ(CutEnd(U"abcdef", 6), U"abcdef");
  EXPECT_EQ(CutEnd(U"abcdefg", 6), U"abc...");
  EXPECT_EQ(CutEnd(U"abcdefg", 3), U"abc");
  EXPECT_EQ(CutEnd(U"\u7BC0\u9EDE\u7BC0\u9EDE", 6), U"\u7BC0...");  // half a wide character does not fit
  EXPECT_EQ(CutMiddle(U"/home/user/studies/bracket", 15), U"/hom.../bracket");
  EXPECT_EQ(CutMiddle(U"abc", -1), U"");
  EXPECT_EQ(Pad(U"\u7BC0", 4), U"\u7BC0  ");
}

TEST(PanelText, WrappingBreaksAtBlanksAndKeepsEveryCharacter) {
  EXPECT_EQ(Wrap(U"one two three", 8), (std::vector<std::u32string>{U"one two", U"three"}));
  EXPECT_EQ(Wrap(U"one two three", 7), (std::vector<std::u32string>{U"one two", U"three"}));
  EXPECT_EQ(Wrap(U"abcdef gh", 4), (std::vector<std::u32string>{U"abcd", U"ef", U"gh"}));
  EXPECT_EQ(Wrap(U"\u7BC0\u9EDE", 1), (std::vector<std::u32string>{U"\u7BC0", U"\u9EDE"}));
}

}  // namespace
}  // namespace zentor::progress
