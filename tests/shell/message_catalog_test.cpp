#include "shell/message_catalog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "platform/text.h"

namespace zentor {
namespace {

// Files in memory by path; only reading works.
class MemoryFiles : public platform::FileSystem {
 public:
  std::map<std::string, std::string> content;

  std::unique_ptr<platform::RandomAccessFile> Open(const std::string& path, platform::OpenMode) override {
    const auto found = content.find(path);
    if (found == content.end()) throw platform::FileError(path, "open", ENOENT);
    return std::make_unique<File>(found->second);
  }
  bool Exists(const std::string& path) override { return content.count(path) != 0; }
  void Remove(const std::string&) override {}
  void Rename(const std::string&, const std::string&) override {}

 private:
  struct File : platform::RandomAccessFile {
    explicit File(const std::string& content) : bytes(content) {}
    std::size_t ReadAt(std::uint64_t offset, std::span<std::byte> out) override {
      const std::size_t count = std::min<std::size_t>(out.size(), bytes.size() - offset);
      std::memcpy(out.data(), bytes.data() + offset, count);
      return count;
    }
    void WriteAt(std::uint64_t, std::span<const std::byte>) override {}
    std::uint64_t Size() override { return bytes.size(); }
    const std::string& bytes;
  };
};

// A text as the installed form stores it, without byte-order mark.
std::string Utf16(std::u16string_view text) {
  std::string bytes;
  for (const char16_t c : text) {
    bytes += static_cast<char>(c & 0xFFU);
    bytes += static_cast<char>(c >> 8U);
  }
  return bytes;
}

std::u16string Table(std::u16string_view entries) {
  return u"STRINGTABLE\nBEGIN\n" + std::u16string(entries) + u"\nEND\n";
}

MessageCatalog Parse(std::string_view header, std::u16string_view texts) {
  return ParseMessageCatalog(header, texts).catalog;
}

std::u16string Format(std::u16string_view text, std::vector<float> arguments) {
  return FormatCatalogMessage(Parse("#define A 1", Table(u"A \"" + std::u16string(text) + u"\"")), 1,
                              arguments);
}

// A catalog of one message, numbered 1.
std::string OneText(std::u16string_view text) { return Utf16(Table(u"A \"" + std::u16string(text) + u"\"")); }

void ExpectInvariant(const MessageCatalog& catalog) {
  for (int i = 0; i < kCatalogCapacity; ++i) {
    ASSERT_LE(0, catalog.start[i]);
    ASSERT_LE(catalog.start[i], catalog.end[i]);
    ASSERT_LE(static_cast<std::size_t>(catalog.end[i]), catalog.pool.size());
  }
}

TEST(CatalogHeader, TakesTheTwoWordsBehindADirective) {
  const std::string too_long(kMessageNameLimit + 1, 'N');
  const MessageCatalog catalog =
      Parse("A 8 // text\n#define A\t1\r\n# undefined  B \n 13000x\n#define " + too_long +
                " 3\n#define C 0\n#define D 13001\n#define E -4\n#define F 99999999999\n#define G",
            u"");
  std::vector<int> defined;
  for (int n = 1; n <= kCatalogCapacity; ++n) {
    if (catalog.present[n - 1] != 0) defined.push_back(n);
  }
  EXPECT_EQ(defined, (std::vector<int>{1, 13000}));
}

TEST(CatalogHeader, RepeatedNumberIsReported) {
  const CatalogLoad load = ParseMessageCatalog("#define A 7\n#define B 9\n#define C 9\n", u"");
  EXPECT_EQ(load.status, CatalogStatus::kRepeatedNumber);
  EXPECT_EQ(load.repeated_number, 9);
  EXPECT_EQ(CatalogErrorText(load), u"Error in header file anlmsg.h \nRepeated parameter 9");
}

TEST(CatalogTexts, EntriesAndEscapes) {
  const MessageCatalog catalog =
      Parse("#define A 1\n#define B 2\n#define C 3\n#define D 4\n#define A 5\n",
            u"// Some STRINGTABLE\nBEGIN A\n\"two\\nwords\" B\"glued\" C , \"a\\tb\\\\n\\\"\n"
            u"D \"first\" D \"last\" END A \"outside\"\n");
  EXPECT_EQ(CatalogText(catalog, 1), u"two\nwords");
  EXPECT_EQ(CatalogText(catalog, 2), u"glued");
  EXPECT_EQ(CatalogText(catalog, 3),
            u"a\\tb\\\\n\\");  // only \n is replaced; \" keeps the backslash and ends
  EXPECT_EQ(CatalogText(catalog, 4), u"last");
  EXPECT_EQ(CatalogText(catalog, 5), u"");  // of two equal names the first one has the text
}

TEST(CatalogTexts, UndefinedNameEndsTheBlock) {
  const std::u16string texts = Table(u"A \"one\" UNKNOWN \"x\" B \"hidden\"") + Table(u"C \"three\"");
  const MessageCatalog catalog = Parse("#define A 1\n#define B 2\n#define C 3\n", texts);
  EXPECT_EQ(CatalogText(catalog, 1), u"one");
  EXPECT_EQ(CatalogText(catalog, 2), u"");
  EXPECT_EQ(CatalogText(catalog, 3), u"three");
  EXPECT_EQ(FormatCatalogMessage(catalog, 2), u"");
}

TEST(CatalogTexts, Decoding) {
  const std::u16string text = u"a\r\nb\rÄ漢";
  const std::u16string read = u"a\nb\rÄ漢";
  EXPECT_EQ(DecodeCatalogTexts("\xFF\xFE" + Utf16(text)), read);
  EXPECT_EQ(DecodeCatalogTexts(Utf16(text) + "x"), read);
  EXPECT_EQ(DecodeCatalogTexts("\xEF\xBB\xBF" + platform::ToUtf8(text)), read);
  EXPECT_EQ(DecodeCatalogTexts("\xFF"), u"");
}

TEST(CatalogFormat, Placeholders) {
  struct Case {
    std::u16string_view text;
    std::vector<float> arguments;
    std::u16string_view shown;
  };
  const Case cases[] = {
      {u"%% of %d", {7.9F}, u"% of 7"},
      {u"%d|%d|%d|%d", {-7.9F, 3e9F, -1e20F, NAN}, u"-7|2147483647|-2147483648|0"},
      {u"%g %g %g", {0.1F, 1e10F, -INFINITY}, u"0.1 1e+10 -inf"},
      {u"%f|%f", {2.5F, -16777216.0F}, u"2.500000|-16777216.00000"},
      {u"%f|%f", {999999995904.0F, 1e30F}, u"999999995904.00|1e+30"},
      {u"%s", {72.0F, 105.0F, 0.0F}, u"Hi"},
      {u"%s<%d", {72.0F, 105.0F, 0.0F, 5.0F}, u"Hi<0"},  // stands on the 0 that ended the text
      {u"%s", {111.0F, -3.0F, NAN, 0.5F, 65536.0F, 107.0F}, u"ok"},
      {u"%c%c%d", {65.9F, 7.0F}, u"AA65"},
      {u"%x|%", {1.0F}, u"|"},
      {u"%d %d %s", {1.0F}, u"1 0 "},
  };
  for (const Case& c : cases) {
    const std::u16string shown = Format(c.text, c.arguments);
    EXPECT_EQ(shown, c.shown) << platform::ToUtf8(c.text) << " gave " << platform::ToUtf8(shown);
  }
}

TEST(CatalogFormat, LengthAndNumbersAreBounded) {
  const std::vector<float> blanks(5000, 32.0F);
  EXPECT_EQ(Format(u"%s", blanks).size(), kMessageLengthLimit);
  EXPECT_EQ(Format(std::u16string(5000, u'x'), {}).size(), kMessageLengthLimit);
  for (const int number : {-1, 0, 2, kCatalogCapacity + 1, std::numeric_limits<int>::max()}) {
    EXPECT_EQ(FormatCatalogMessage(Parse("#define A 1", Table(u"A \"x\"")), number), u"") << number;
  }
}

TEST(CatalogLoading, OrderOfTheFiles) {
  struct Case {
    const char* program;
    std::vector<const char*> files;
    const char* loaded;  // the file whose text is found, or the path that is missing
    int language;
    CatalogStatus status;
  };
  using enum CatalogStatus;
  const Case cases[] = {
      {"/p/z",
       {"/p/anlmsg.h", "/p/anlmsg.rc", "/p/KtLang/Korean/anlmsg.rc"},
       "/p/KtLang/Korean/anlmsg.rc",
       8,
       kOk},
      {"/p/z", {"/p/anlmsg.h", "/p/anlmsg.rc", "/anlmsg.rc"}, "/p/anlmsg.rc", 4, kOk},
      {"z", {"anlmsg.h", "KtLang/English/anlmsg.rc"}, "KtLang/English/anlmsg.rc", 12, kOk},
      {"/p/z", {"/p/anlmsg.h", "/p/KtLang/English/anlmsg.rc"}, "/p/KtLang/English/anlmsg.rc", -1, kOk},
      {"/p/z", {"/anlmsg.h", "/p/anlmsg.rc"}, "/p/anlmsg.h", 0, kHeaderMissing},
      {"/p/z", {"/p/anlmsg.h", "/anlmsg.rc"}, "/p/anlmsg.rc", 0, kTextsMissing},
      {"/p/korva.EXE", {"/anlmsg.h", "/anlmsg.rc"}, "/anlmsg.rc", 0, kOk},
      {"/p/Korva.exe", {"/anlmsg.h", "/anlmsg.rc"}, "/p/anlmsg.h", 0, kHeaderMissing},
  };
  for (const Case& c : cases) {
    MemoryFiles files;
    for (const std::string file : c.files)
      files.content[file] = file.ends_with('h') ? "#define A 1" : OneText(platform::ToWide(file));
    const CatalogLoad load = LoadMessageCatalog(c.program, c.language, files);
    EXPECT_EQ(load.status, c.status) << c.program;
    const std::string found = platform::ToUtf8(CatalogText(load.catalog, 1));
    EXPECT_EQ(c.status == kOk ? found : load.path, c.loaded);
    EXPECT_EQ(load.sibling_program, std::string(c.program) == "/p/korva.EXE");
  }
}

TEST(CatalogLoading, HostileFilesKeepTheTablesSound) {
  const std::string header = "#define A 1\n#define B 13000\n";
  std::u16string overfull = u"SBEGIN A \"";
  overfull.append(kTextPoolLimit + 10, u'x');
  for (const std::u16string& texts :
       {std::u16string(u"SBEGIN A \"no end"), std::u16string(u"SBEGIN A"), std::u16string(u"SBEGIN A \"x\\"),
        std::u16string(u"SBEGIN \"\"\""), u"SBEGIN " + std::u16string(100000, u'A') + u" \"x\"", overfull}) {
    ExpectInvariant(Parse(header, texts));
  }
  EXPECT_EQ(CatalogText(Parse(header, overfull + u"\" B \"y\""), 13000), u"");

  std::mt19937 random(20111);
  const std::u16string alphabet = u"SBEGIN AB\"\\n%d\n";
  const std::string directives = "#defin AB129\n";
  for (int round = 0; round < 300; ++round) {
    std::string mixed_header = header;
    std::u16string mixed;
    for (int i = 0; i < 400; ++i) {
      mixed_header += directives[random() % directives.size()];
      mixed += alphabet[random() % alphabet.size()];
    }
    ASSERT_NO_FATAL_FAILURE(ExpectInvariant(Parse(mixed_header, u"SBEGIN A \"x\" " + mixed))) << round;
  }
}

// The installed catalog, language by language.
class InstalledCatalog : public testing::TestWithParam<int> {
 protected:
  static MessageCatalog Load(int language) {
    const CatalogLoad load = LoadMessageCatalog(ZENTOR_PROGRAM_DIRECTORY "/zentor-fatigue", language);
    EXPECT_EQ(load.status, CatalogStatus::kOk) << load.path;
    return load.catalog;
  }
  static std::u16string Placeholders(std::u16string_view text) {
    std::u16string found;
    for (std::size_t i = 0; i + 1 < text.size(); ++i) {
      if (text[i] == u'%') found += text[++i];
    }
    return found;
  }
};

TEST_P(InstalledCatalog, HasEveryMessageInItsOwnLanguage) {
  const MessageCatalog english = Load(0);
  const MessageCatalog own = Load(GetParam());
  ASSERT_EQ(own.present, english.present);
  EXPECT_GE(std::ranges::count(own.present, 1), 70);
  for (int number = 1; number <= kCatalogCapacity; ++number) {
    if (own.present[number - 1] == 0) continue;
    const std::u16string_view text = CatalogText(own, number);
    const std::u16string_view model = CatalogText(english, number);
    EXPECT_FALSE(text.empty()) << number;
    EXPECT_EQ(Placeholders(text), Placeholders(model)) << number;
    EXPECT_EQ(std::ranges::count(text, u'\n'), std::ranges::count(model, u'\n')) << number;
    EXPECT_EQ(text == model, GetParam() == 0 || number == 919) << number;  // the product name alone is shared
  }
}

TEST_P(InstalledCatalog, TextsFitTheirPlaces) {
  const MessageCatalog catalog = Load(GetParam());
  const auto length = [&](int number) { return static_cast<int>(CatalogText(catalog, number).size()); };
  EXPECT_LE(length(919) + length(932), 40);  // the caption keeps room for the study name
  EXPECT_GE(length(931), 10);                // the width of 1000:00:00
  EXPECT_LE(length(931), 31);
  for (const int line :
       {9013, 9018, 9019, 9020, 9021, 9027, 9034, 9035, 9036, 9062, 9063, 9064, 9067, 9068}) {
    EXPECT_LE(length(line), 70) << line;
  }
  EXPECT_TRUE(CatalogText(catalog, 939).ends_with(u' '));
}

INSTANTIATE_TEST_SUITE_P(Languages, InstalledCatalog, testing::Range(0, 12), [](const auto& language) {
  std::string name(kCatalogLanguages[language.param].locale);
  std::erase(name, '-');
  return name;
});

}  // namespace
}  // namespace zentor
