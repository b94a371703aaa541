// The numbered texts of the program: loading the installed catalog and formatting a message.
// Syntax of the files, placeholders and the list of messages: docs/formats/message-catalog.md.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"

namespace zentor {

inline constexpr int kCatalogCapacity = 13000;            // message numbers 1 to 13000
inline constexpr std::size_t kTextPoolLimit = 7'800'000;  // characters of all texts together
inline constexpr std::size_t kMessageNameLimit = 50;      // characters of a symbolic name
inline constexpr std::size_t kMessageLengthLimit = 1023;  // characters of a formatted message

struct CatalogLanguage {
  std::string_view folder;  // of its texts, below the program's directory
  std::string_view locale;  // name of its locale and code page
};

// By the language index of a study, 0 to 11.
inline constexpr std::array<CatalogLanguage, 12> kCatalogLanguages = {{
    {"KtLang/English/", "English"},
    {"KtLang/Chinese/", "Chinese"},
    {"KtLang/French/", "French"},
    {"KtLang/German/", "German"},
    {"KtLang/Japanese/", "Japanese"},
    {"KtLang/Chinese-simplified/", "Chinese-simplified"},
    {"KtLang/Russian/", "Russian"},
    {"KtLang/Italian/", "Italian"},
    {"KtLang/Korean/", "Korean"},
    {"KtLang/Spanish/", "Spanish"},
    {"KtLang/Polish/", "Polish"},
    {"KtLang/Czech/", "Czech"},
}};

// The language of that index; English for an index outside 0 to 11.
const CatalogLanguage& LanguageOf(int index);

// Constant after loading; the progress window reads the four tables for the whole run.
// Invariant: 0 <= start[i] <= end[i] <= pool.size() for every i.
struct MessageCatalog {
  std::vector<std::int32_t> start =
      std::vector<std::int32_t>(kCatalogCapacity);  // [number - 1], position in pool
  std::vector<std::int32_t> end = std::vector<std::int32_t>(kCatalogCapacity);  // behind the last character
  std::u16string pool;
  std::vector<std::uint8_t> present =
      std::vector<std::uint8_t>(kCatalogCapacity);  // 1: the header defines it
};

enum class CatalogStatus { kOk, kHeaderMissing, kTextsMissing, kRepeatedNumber };

struct CatalogLoad {
  MessageCatalog catalog;  // complete only when the status is kOk
  CatalogStatus status = CatalogStatus::kOk;
  std::string path;         // the missing file, as looked for last in the program's directory; else the texts
  int repeated_number = 0;  // the number that the header defines twice
  bool sibling_program = false;  // the program runs under the name of its sibling
  // What a block of texts ended with when that was not the word END: a name that the header does not define,
  // or nothing at the end of the file.
  std::optional<std::u16string> broken_off = std::nullopt;
};

// The catalog of a header and the texts of a language. Whatever the files hold, the tables keep their
// invariant.
CatalogLoad ParseMessageCatalog(std::string_view header, std::u16string_view texts);

// The characters of an installed text file: UTF-16 little-endian with or without byte-order mark, or UTF-8
// with its mark; CR LF becomes one line feed, an odd last byte is dropped.
std::u16string DecodeCatalogTexts(std::string_view bytes);

// Reads the catalog beside the program, or of an installed program in ../share/zentor-fatigue/: its header,
// then the texts of the language, then those in the catalog's own directory. Shows nothing and ends nothing:
// the caller acts on the status and sets the language's locale.
CatalogLoad LoadMessageCatalog(const std::string& program_path, int language_index,
                               platform::FileSystem& files = platform::NativeFileSystem());

// Text of the "Installation error" box for a load that failed; empty when it did not.
std::u16string CatalogErrorText(const CatalogLoad& load);

// What is wrong with a catalog that was loaded: a header without messages, messages without a text, texts
// that break off. Such messages are shown empty; empty for a sound catalog.
std::string CatalogDamage(const CatalogLoad& load);

// The text of a number with its placeholders; empty for a number without one.
std::u16string_view CatalogText(const MessageCatalog& catalog, int number);

// The text with its placeholders replaced by the arguments; a missing argument counts as 0.
std::u16string FormatCatalogMessage(const MessageCatalog& catalog, int number,
                                    std::span<const float> arguments = {});

}  // namespace zentor
