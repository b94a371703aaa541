#include "platform/text_columns.h"

#include <gtest/gtest.h>
#include <wchar.h>

#include <clocale>
#include <filesystem>
#include <tuple>

#include "platform/text.h"
#include "support/temp_folder.h"

namespace zentor::platform {
namespace {

TEST(CharacterWidth, AgreesWithTheSystemForTheTextsOfEveryLanguage) {
  if (std::setlocale(LC_CTYPE, "C.UTF-8") == nullptr) GTEST_SKIP() << "no UTF-8 locale";
  int checked = 0;
  for (const auto& folder : std::filesystem::directory_iterator(ZENTOR_CATALOG "/KtLang")) {
    const std::string texts = test::ReadText((folder.path() / "anlmsg.rc").string());
    for (const char32_t c : Characters(ToWide(texts))) {
      if (c == U'\n') continue;
      ASSERT_EQ(CharacterWidth(c), ::wcwidth(static_cast<wchar_t>(c))) << static_cast<unsigned>(c);
      ++checked;
    }
  }
  EXPECT_GT(checked, 50000);
  std::setlocale(LC_CTYPE, "C");
}

TEST(Wrap, BreaksAtBlanksAndBetweenWideCharacters) {
  using Case = std::tuple<int, std::u32string, std::u32string>;  // columns, text, its lines
  for (const auto& [columns, text, lines] :
       {Case{10, U"some  words  of it  ", U"some|words  of|it"}, Case{4, U"abcdefghi j", U"abcd|efgh|i j"},
        Case{9, U"中止疲勞分析？", U"中止疲勞|分析？"},  // two columns each, a column is left
        Case{8, U"中止疲勞。分", U"中止疲|勞。分"},      // no line begins with the full stop
        Case{7, U"材料（無）", U"材料|（無）"},          // none ends with an opening bracket
        Case{6, U"節点 (a)です", U"節点|(a)で|す"}, Case{7, U"피로 해석을", U"피로|해석을"},
        Case{3, U"ab\u0301\u0301cd", U"ab\u0301\u0301c|d"}, Case{8, U"usage\u00A0: 3", U"usage\u00A0:|3"},
        Case{0, U"漢字", U"漢|字"}, Case{5, U"  - ab cd", U"  -|ab cd"}}) {
    std::u32string joined;
    for (const std::u32string& line : Wrap(text, columns)) joined += (joined.empty() ? U"" : U"|") + line;
    EXPECT_EQ(joined, lines) << ToUtf8(joined);
  }
}

}  // namespace
}  // namespace zentor::platform
