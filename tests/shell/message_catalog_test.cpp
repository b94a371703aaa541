#include "shell/message_catalog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "platform/answer_labels.h"
#include "platform/text.h"
#include "platform/text_columns.h"
#include "support/temp_folder.h"

namespace zentor {
namespace {

std::u16string Table(std::u16string_view entries) {
  return u"STRINGTABLE\nBEGIN\n" + std::u16string(entries) + u"\nEND\n";
}

MessageCatalog Parse(std::string_view header, std::u16string_view texts) {
  return ParseMessageCatalog(header, texts).catalog;
}

TEST(CatalogFiles, TheHeaderGivesTheTwoWordsBehindADirective) {
  const std::string too_long(kMessageNameLimit + 1, 'N');
  const MessageCatalog catalog =
      Parse("A 8 // text\n#define A\t1\r\n# undefined  B \n 13000x\n#define " + too_long +
                " 3\n#define C 0\n#define D 13001\n#define E -4\n#define F 99999999999\n#define G",
            u"");
  EXPECT_EQ(std::ranges::count(catalog.present, 1), 2);
  EXPECT_EQ(catalog.present[0] + catalog.present[12999], 2);
  const CatalogLoad twice = ParseMessageCatalog("#define A 7\n#define B 9\n#define C 9\n", u"");
  EXPECT_EQ(twice.status, CatalogStatus::kRepeatedNumber);
  EXPECT_EQ(CatalogErrorText(twice), u"Error in header file anlmsg.h \nRepeated parameter 9");
}

TEST(CatalogFiles, EntriesEscapesAndTheEndOfABlock) {
  const MessageCatalog catalog =
      Parse("#define A 1\n#define B 2\n#define C 3\n#define D 4\n#define A 5\n#define E 6\n#define F 7\n",
            u"// Some STRINGTABLE\nBEGIN A\n\"two\\nwords\" B\"glued\" C , \"a\\tb\\\\n\\\"\n"
            u"D \"first\" D \"last\" END A \"outside\"\n" +
                Table(u"UNKNOWN \"x\" E \"hidden\"") + Table(u"F \"seven\""));
  const std::vector<std::u16string_view> texts = {
      u"two\nwords",
      u"glued",
      u"a\\tb\\\\n\\",  // only \n is replaced; \" keeps the backslash and ends
      u"last",
      u"",  // of two equal names the first one has the text
      u"",  // a name that the header does not define ends the block
      u"seven"};
  for (int i = 0; i < 7; ++i) EXPECT_EQ(CatalogText(catalog, i + 1), texts[i]) << i + 1;
}

TEST(CatalogFiles, AreWideOrNarrowTexts) {
  const std::string wide("a\0\r\0\n\0b\0\r\0\xC4\0\x22\x6F", 14);
  for (const std::string& bytes : {"\xFF\xFE" + wide, wide + "x",
                                   std::string("\xEF\xBB\xBF"
                                               "a\r\nb\rÄ漢")})
    EXPECT_EQ(DecodeCatalogTexts(bytes), u"a\nb\rÄ漢");
}

TEST(CatalogFormat, PlaceholdersWithinTheirBounds) {
  using Case = std::tuple<std::u16string, std::vector<float>, std::u16string>;
  const Case cases[] = {
      {u"%d|%d|%d|%d", {-7.9F, 3e9F, -1e20F, NAN}, u"-7|2147483647|-2147483648|0"},
      {u"%g %g %%", {0.1F, -INFINITY}, u"0.1 -inf %"},
      {u"%f|%f|%f", {2.5F, -16777216.0F, 1e30F}, u"2.500000|-16777216.00000|1e+30"},
      {u"%s<%d", {72.0F, 105.0F, 0.0F, 5.0F}, u"Hi<0"},  // stands on the 0 that ended the text
      {u"%s", {111.0F, -3.0F, NAN, 0.5F, 65536.0F, 107.0F}, u"ok"},
      {u"%c%c%d", {65.9F, 7.0F}, u"AA65"},
      {u"%s", std::vector<float>(5000, 65.0F), std::u16string(kMessageLengthLimit, u'A')},
      {std::u16string(5000, u'x'), {}, std::u16string(kMessageLengthLimit, u'x')},
  };
  for (const auto& [text, arguments, expected] : cases) {
    const MessageCatalog catalog = Parse("#define A 1", Table(u"A \"" + text + u"\""));
    const std::u16string shown = FormatCatalogMessage(catalog, 1, arguments);
    EXPECT_EQ(shown, expected) << platform::ToUtf8(text) << " gave " << platform::ToUtf8(shown);
  }
  for (const int number : {-1, 0, 2, kCatalogCapacity + 1})
    EXPECT_EQ(FormatCatalogMessage(Parse("#define A 1", Table(u"A \"x\"")), number), u"") << number;
}

// A folder of the test's own stands for the root.
struct RootedFiles : platform::FileSystem {
  using File = std::unique_ptr<platform::RandomAccessFile>;
  File Open(const std::string& path, platform::OpenMode mode) override {
    return platform::NativeFileSystem().Open(root.Path() + path, mode);
  }
  bool Exists(const std::string& path) override { return std::filesystem::exists(root.Path() + path); }
  void Remove(const std::string&) override {}
  void Rename(const std::string&, const std::string&) override {}
  void CreateFolder(const std::string&) override {}
  void RemoveFolder(const std::string&) override {}
  test::TempFolder root;
};

TEST(CatalogLoading, OrderOfTheFiles) {
  struct Case {
    const char* program;
    int language;
    std::vector<const char*> files;
    std::string loaded;  // the file whose text is found, or the path that is missing
    CatalogStatus status = CatalogStatus::kOk;
  };
  using enum CatalogStatus;
  const Case cases[] = {
      {"/p/z", 8, {"p/anlmsg.h", "p/anlmsg.rc", "p/KtLang/Korean/anlmsg.rc"}, "p/KtLang/Korean/anlmsg.rc"},
      {"/p/z", 4, {"p/anlmsg.h", "p/anlmsg.rc", "anlmsg.rc"}, "p/anlmsg.rc"},
      {"/p/z", 12, {"p/anlmsg.h", "p/KtLang/English/anlmsg.rc"}, "p/KtLang/English/anlmsg.rc"},
      {"/p/z", 0, {"anlmsg.h", "p/anlmsg.rc"}, "/p/anlmsg.h", kHeaderMissing},
      {"/p/z", 0, {"p/anlmsg.h", "anlmsg.rc"}, "/p/anlmsg.rc", kTextsMissing},
      {"/p/korva.EXE", 0, {"p/x", "anlmsg.h", "anlmsg.rc"}, "anlmsg.rc"},
      {"/p/z",
       0,
       {"p/x", "share/zentor-fatigue/anlmsg.h", "share/zentor-fatigue/anlmsg.rc"},
       "share/zentor-fatigue/anlmsg.rc"},
  };
  for (const Case& c : cases) {
    RootedFiles files;
    for (const std::string file : c.files) {
      std::filesystem::create_directories(std::filesystem::path(files.root.Path(file)).parent_path());
      test::WriteText(files.root.Path(file),
                      file.ends_with('h') ? "#define A 1" : "\xEF\xBB\xBFSBEGIN A \"" + file + "\" END");
    }
    const CatalogLoad load = LoadMessageCatalog(c.program, c.language, files);
    EXPECT_EQ(load.status, c.status) << c.loaded;
    EXPECT_EQ(c.status == kOk ? platform::ToUtf8(CatalogText(load.catalog, 1)) : load.path, c.loaded);
    EXPECT_EQ(load.sibling_program, std::string(c.program) == "/p/korva.EXE");
  }
}

TEST(CatalogLoading, DamageIsTold) {
  using Case = std::tuple<const char*, std::u16string, const char*>;
  const char* two = "#define A 3\n#define B 4\n";
  const Case cases[] = {
      {two, u"\x8F3C\x0012 noise", ": no text for 2 of 2 messages, the first is 3"},
      {two, u"STRINGTABLE BEGIN A \"a\" B \"b", ": the texts break off at the end of the file"},
      {two, Table(u"A \"a\" B \"b\" C \"c\""), ": the texts break off at \"C\""},
  };
  for (const auto& [header, texts, damage] : cases)
    EXPECT_EQ(CatalogDamage(ParseMessageCatalog(header, texts)), damage);
}

TEST(CatalogLoading, HostileFilesKeepTheTablesSound) {
  std::string header = "#define A 1\n#define B 13000\n";
  std::vector<std::u16string> texts = {u"A \"no end", u"A", u"A \"x\\",
                                       std::u16string(100000, u'A') + u" \"x\"",
                                       u"A \"" + std::u16string(kTextPoolLimit + 10, u'x') + u"\" B \"y\""};
  std::mt19937 random(20111);
  for (int round = 0; round < 300; ++round) {
    texts.emplace_back(u"A \"x\" ");
    for (int i = 0; i < 400; ++i) texts.back() += u"SBEGIN AB\"\\n%d\n"[random() % 16];
  }
  for (const std::u16string& text : texts) {
    const MessageCatalog catalog = Parse(header, u"SBEGIN " + text);
    ASSERT_LE(catalog.pool.size(), kTextPoolLimit);
    for (int i = 0; i < kCatalogCapacity; ++i) {
      ASSERT_TRUE(0 <= catalog.start[i] && catalog.start[i] <= catalog.end[i]);
      ASSERT_LE(static_cast<std::size_t>(catalog.end[i]), catalog.pool.size());
    }
    for (int i = 0; i < 40; ++i) header += "#defin AB129\n"[random() % 13];
  }
}

std::u16string Placeholders(std::u16string_view text) {
  std::u16string found;
  for (std::size_t i = 0; i + 1 < text.size(); ++i) {
    if (text[i] == u'%') found += text[++i];
  }
  return found;
}

// The product's name, and words that are the same in several languages.
bool MayBeShared(int number) {
  constexpr std::array kShared = {919, 947, 958, 962, 963, 965, 966};
  return std::ranges::count(kShared, number) > 0;
}

TEST(InstalledCatalog, EveryLanguageHasEveryMessageInItsOwnWords) {
  MessageCatalog english;
  for (int language = 0; language < 12; ++language) {
    const CatalogLoad load = LoadMessageCatalog(ZENTOR_PROGRAM_DIRECTORY "/zentor-fatigue", language);
    if (language == 0) english = load.catalog;
    EXPECT_GE(std::ranges::count(load.catalog.present, 1), 96);
    EXPECT_EQ(CatalogDamage(load), "");
    EXPECT_TRUE(load.path.ends_with(std::string(kCatalogLanguages[language].folder) + "anlmsg.rc"));
    const auto length = [&](int number) { return CatalogText(load.catalog, number).size(); };
    for (int number = 1; number <= kCatalogCapacity; ++number) {
      if (english.present[number - 1] == 0) continue;
      const std::u16string_view text = CatalogText(load.catalog, number);
      const std::u16string_view model = CatalogText(english, number);
      EXPECT_EQ(Placeholders(text), Placeholders(model)) << number;
      EXPECT_EQ(std::ranges::count(text, u'\n'), std::ranges::count(model, u'\n')) << number;
      EXPECT_TRUE(MayBeShared(number) || (text == model) == (language == 0)) << number;
      EXPECT_EQ(text.find(u"%s"), Placeholders(text).ends_with(u's') ? text.size() - 2 : text.npos) << number;
    }
    EXPECT_LE(length(919) + length(932), 40U);  // the caption keeps room for the study name
    EXPECT_TRUE(length(931) >= 10 && length(931) <= 31) << "the width of 1000:00:00";
  }
}

// What the progress window shows in one line, which it cuts: with numbers of seven digits.
TEST(InstalledCatalog, LinesOfThePanelFitIntoIt) {
  constexpr int kPanel = 72;
  for (int language = 0; language < 12; ++language) {
    const MessageCatalog catalog =
        LoadMessageCatalog(ZENTOR_PROGRAM_DIRECTORY "/zentor-fatigue", language).catalog;
    const auto width = [&](int number) {
      const std::vector<float> numbers(3, 1234567.0F);
      return platform::TextWidth(platform::Characters(FormatCatalogMessage(catalog, number, numbers)));
    };
    for (const int line : {9013, 9018, 9019, 9020, 9021, 9027, 9034, 9035, 9036, 9062, 9063, 9064, 9067, 9068,
                           9072, 9105, 10097, 10098, 952})
      EXPECT_LE(width(line), kPanel) << language << ": " << line;
    EXPECT_LE(width(945) + 4 + width(9072), kPanel + 6) << "the warning behind its number";
    EXPECT_LE(width(953) + width(955) + 13, kPanel) << "[p] ...   [q] ...";
    EXPECT_LE(width(956) + width(957) + 13, kPanel);
    EXPECT_LE(width(941) + width(942) + width(943) + 50, kPanel + 6) << "the figures under the bar";
    std::u16string_view symbols = CatalogText(catalog, 905);
    for (std::size_t end = 0; end != symbols.npos; symbols.remove_prefix(end + 1)) {
      end = symbols.find(u'\n');
      EXPECT_LE(platform::TextWidth(platform::Characters(symbols.substr(0, end))), 80) << language;
      if (end == symbols.npos) break;
    }
  }
}

TEST(InstalledCatalog, EveryButtonHasItsOwnKeyAndTheEnglishOne) {
  const std::vector<std::vector<std::pair<int, char32_t>>> boxes = {
      {{958, U'o'}, {959, U'c'}}, {{960, U'r'}, {959, U'c'}}, {{961, U'y'}, {962, U'n'}, {959, U'c'}}};
  for (int language = 0; language < 12; ++language) {
    const MessageCatalog catalog =
        LoadMessageCatalog(ZENTOR_PROGRAM_DIRECTORY "/zentor-fatigue", language).catalog;
    for (const auto& box : boxes) {
      std::vector<platform::AnswerLabel> labels;
      for (const auto& [number, latin] : box)
        labels.push_back(platform::LabelOf(platform::Characters(CatalogText(catalog, number)), latin));
      for (std::size_t i = 0; i < box.size(); ++i) {
        EXPECT_NE(labels[i].shown, labels[i].word) << language << ": marks no key";
        for (const char32_t key : {labels[i].key, labels[i].latin, labels[i].word.front()})
          EXPECT_EQ(platform::AnswerOfKey(labels, key), i) << language << ": " << box[i].first;
      }
    }
  }
}

// French punctuation of two parts never stands at the start of a line.
TEST(InstalledCatalog, FrenchPunctuationKeepsItsBlank) {
  const MessageCatalog french = LoadMessageCatalog(ZENTOR_PROGRAM_DIRECTORY "/zentor-fatigue", 2).catalog;
  for (const char16_t* pair : {u" :", u" ;", u" ?"}) EXPECT_EQ(french.pool.find(pair), french.pool.npos);
  EXPECT_NE(french.pool.find(u"\u00A0?"), french.pool.npos);
}

}  // namespace
}  // namespace zentor
