#include "shell/message_catalog.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <unordered_map>

#include "platform/text.h"

namespace zentor {
namespace {

// Larger files are read up to here: room for the full pool with names and line ends, and no more.
constexpr std::uint64_t kFileLimit = 48U << 20U;
constexpr std::size_t kNumberWidth = 15;
constexpr const char* kSharedFolder = "../share/zentor-fatigue/";

using NameTable = std::unordered_map<std::u16string, int>;

// Words of a file; a word is a run of characters above the blank.
template <typename Char>
class Scanner {
 public:
  explicit Scanner(std::basic_string_view<Char> text) : text_(text) {}

  bool AtEnd() const { return place_ >= text_.size(); }
  Char Next() { return text_[place_++]; }
  Char Peek() const { return text_[place_]; }

  // Moves behind the next c; to the end of the text, with false, when there is none.
  bool SkipPast(Char c) {
    const auto found = text_.find(c, place_);
    place_ = found == text_.npos ? text_.size() : found + 1;
    return found != text_.npos;
  }
  void SkipBlanks() {
    while (!AtEnd() && !IsAboveBlank(Peek())) ++place_;
  }
  // The rest of the word here; a character `stop` ends it too.
  std::basic_string_view<Char> Word(Char stop = Char{}) {
    const auto first = place_;
    while (!AtEnd() && IsAboveBlank(Peek()) && Peek() != stop) ++place_;
    return text_.substr(first, place_ - first);
  }

 private:
  static bool IsAboveBlank(Char c) { return static_cast<std::make_unsigned_t<Char>>(c) > 0x20U; }

  std::basic_string_view<Char> text_;
  std::size_t place_ = 0;
};

int MessageNumber(std::string_view word) {
  int number = 0;
  std::from_chars(word.data(), word.data() + word.size(), number);
  return number;
}

bool InCatalog(int number) { return number >= 1 && number <= kCatalogCapacity; }

// Marks the defined numbers and collects their names. Stops at a number defined twice.
NameTable ParseHeader(std::string_view header, CatalogLoad& load) {
  NameTable names;
  Scanner<char> scanner(header);
  while (scanner.SkipPast('#') && scanner.SkipPast('d')) {
    scanner.Word();
    scanner.SkipBlanks();
    const std::string_view name = scanner.Word();
    scanner.SkipBlanks();
    const int number = MessageNumber(scanner.Word());
    if (name.empty() || name.size() > kMessageNameLimit || !InCatalog(number)) continue;
    std::uint8_t& present = load.catalog.present[number - 1];
    if (present != 0) {
      load.status = CatalogStatus::kRepeatedNumber;
      load.repeated_number = number;
      break;
    }
    present = 1;
    names.try_emplace(platform::WidenBytes(name), number);  // of equal names the first one counts
  }
  return names;
}

// Copies a text into the pool up to its closing quotation mark, or to the end of the file when that is
// missing.
void ParseText(Scanner<char16_t>& scanner, std::u16string& pool) {
  const auto put = [&pool](char16_t c) {
    if (pool.size() < kTextPoolLimit) pool.push_back(c);
  };
  while (!scanner.AtEnd()) {
    const char16_t c = scanner.Next();
    if (c == u'"') return;
    if (c != u'\\' || scanner.AtEnd()) {
      put(c);
    } else if (scanner.Peek() == u'n') {
      put(u'\n');
      scanner.Next();
    } else {
      put(c);
      if (scanner.Peek() != u'"') put(scanner.Next());
    }
  }
}

void ParseTexts(std::u16string_view texts, const NameTable& names, CatalogLoad& load) {
  MessageCatalog& catalog = load.catalog;
  Scanner<char16_t> scanner(texts);
  const auto find_block = [&scanner] {
    return std::ranges::all_of(std::u16string_view(u"SBEGIN"),
                               [&](char16_t c) { return scanner.SkipPast(c); });
  };
  while (find_block()) {
    for (;;) {
      scanner.SkipBlanks();
      const std::u16string_view word = scanner.Word(u'"');
      const auto name = names.find(std::u16string(word.substr(0, kMessageNameLimit + 1)));
      if (name == names.end()) {
        if (word != u"END") load.broken_off = word.substr(0, kMessageNameLimit);
        break;
      }
      const int at = name->second - 1;
      catalog.start[at] = static_cast<std::int32_t>(catalog.pool.size());
      if (scanner.SkipPast(u'"')) ParseText(scanner, catalog.pool);
      catalog.end[at] = static_cast<std::int32_t>(catalog.pool.size());
    }
  }
  catalog.pool.shrink_to_fit();
}

// The file's bytes; nothing when it cannot be opened or read.
std::optional<std::string> ReadWhole(platform::FileSystem& files, const std::string& path) {
  try {
    const auto file = files.Open(path, platform::OpenMode::kReadOnly);
    std::string bytes(std::min(file->Size(), kFileLimit), '\0');
    bytes.resize(file->ReadAt(0, std::as_writable_bytes(std::span(bytes))));
    return bytes;
  } catch (const platform::FileError&) {
    return std::nullopt;
  }
}

bool IsSiblingProgram(std::string_view name) {
  return name == "KORVA.exe" || name == "korva.exe" || name == "KORVA.EXE" || name == "korva.EXE";
}

template <typename... Format>
std::string Digits(double value, Format... format) {
  std::array<char, 64> buffer;  // a single-precision number has at most 39 digits before the point
  const auto last = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format...).ptr;
  return {buffer.data(), last};
}

std::string General(double value) { return Digits(value, std::chars_format::general, 6); }

// Six decimals, fewer where the width does not hold them; no digit before the point is ever cut off.
std::string Fixed(double value) {
  for (int decimals = 6; decimals >= 0; --decimals) {
    std::string text = Digits(value, std::chars_format::fixed, decimals);
    if (text.size() <= kNumberWidth) return text;
  }
  return General(value);
}

std::string Integer(double value) {
  constexpr double kLimit = 2147483647.0;
  if (value != value) return "0";
  return std::to_string(static_cast<std::int32_t>(std::clamp(value, -kLimit - 1.0, kLimit)));
}

// Appends the character of that code; nothing for a code that is not a 16-bit character.
void AppendCharacter(std::u16string& out, float code) {
  if (code >= 1.0F && code < 65536.0F) out.push_back(static_cast<char16_t>(code));
}

class Arguments {
 public:
  explicit Arguments(std::span<const float> values) : values_(values) {}
  float Peek() const { return index_ < values_.size() ? values_[index_] : 0.0F; }
  float Next() {
    const float value = Peek();
    ++index_;
    return value;
  }

 private:
  std::span<const float> values_;
  std::size_t index_ = 0;
};

void AppendPlaceholder(std::u16string& out, char16_t kind, Arguments& arguments) {
  switch (kind) {
    case u'd':
      out += platform::WidenBytes(Integer(arguments.Next()));
      break;
    case u'f':
      out += platform::WidenBytes(Fixed(arguments.Next()));
      break;
    case u'g':
      out += platform::WidenBytes(General(arguments.Next()));
      break;
    case u'c':  // the argument stays for the next placeholder
      AppendCharacter(out, arguments.Peek());
      break;
    case u's':  // the closing 0 stays, too
      while (arguments.Peek() != 0.0F) AppendCharacter(out, arguments.Next());
      break;
    case u'%':
      out.push_back(u'%');
      break;
    default:
      break;
  }
}

}  // namespace

const CatalogLanguage& LanguageOf(int index) {
  const bool known = index >= 0 && index < static_cast<int>(kCatalogLanguages.size());
  return kCatalogLanguages[known ? index : 0];
}

CatalogLoad ParseMessageCatalog(std::string_view header, std::u16string_view texts) {
  CatalogLoad load;
  const NameTable names = ParseHeader(header, load);
  if (load.status == CatalogStatus::kOk) ParseTexts(texts, names, load);
  return load;
}

std::u16string DecodeCatalogTexts(std::string_view bytes) {
  std::u16string texts;
  if (bytes.starts_with("\xEF\xBB\xBF")) {
    texts = platform::ToWide(bytes.substr(3));
  } else {
    texts.reserve(bytes.size() / 2);
    for (std::size_t i = bytes.starts_with("\xFF\xFE") ? 2 : 0; i + 1 < bytes.size(); i += 2) {
      const auto low = static_cast<unsigned char>(bytes[i]);
      const auto high = static_cast<unsigned char>(bytes[i + 1]);
      texts.push_back(static_cast<char16_t>(low | (high << 8U)));
    }
  }
  std::size_t kept = 0;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const bool pair = texts[i] == u'\r' && i + 1 < texts.size() && texts[i + 1] == u'\n';
    if (!pair) texts[kept++] = texts[i];
  }
  texts.resize(kept);
  return texts;
}

CatalogLoad LoadMessageCatalog(const std::string& program_path, int language_index,
                               platform::FileSystem& files) {
  const std::size_t name = program_path.rfind('/') + 1;  // 0 when there is no separator
  const std::string own = program_path.substr(0, name);
  const std::string shared = own + kSharedFolder;
  const bool installed = !files.Exists(own + "anlmsg.h") && files.Exists(shared + "anlmsg.h");
  const std::string& directory = installed ? shared : own;
  const bool sibling = IsSiblingProgram(program_path.substr(name));
  // The sibling program also looks into the root of the drive.
  const auto read = [&](const std::string& file) {
    std::optional<std::string> bytes = ReadWhole(files, directory + file);
    return bytes || !sibling ? bytes : ReadWhole(files, "/" + file);
  };
  const auto missing = [&](CatalogStatus status, const std::string& file) {
    return CatalogLoad{{}, status, directory + file, 0, sibling};
  };

  const std::optional<std::string> header = read("anlmsg.h");
  if (!header) return missing(CatalogStatus::kHeaderMissing, "anlmsg.h");
  const std::string folder(LanguageOf(language_index).folder);
  std::string path = directory + folder + "anlmsg.rc";
  std::optional<std::string> texts = ReadWhole(files, path);
  if (!texts) {
    path = directory + "anlmsg.rc";
    texts = read("anlmsg.rc");
  }
  if (!texts) return missing(CatalogStatus::kTextsMissing, "anlmsg.rc");

  CatalogLoad load = ParseMessageCatalog(*header, DecodeCatalogTexts(*texts));
  load.sibling_program = sibling;
  load.path = std::move(path);
  return load;
}

std::u16string CatalogErrorText(const CatalogLoad& load) {
  switch (load.status) {
    case CatalogStatus::kHeaderMissing:
      return u"Unable to open anlmsg.h \n Please Copy anlmsh.h into following directory\n " +
             platform::ToWide(load.path);
    case CatalogStatus::kTextsMissing:
      return u"Unable to open anlmsg.rc \n Please Copy anlmsh.rc into following directory\n " +
             platform::ToWide(load.path);
    case CatalogStatus::kRepeatedNumber:
      return u"Error in header file anlmsg.h \nRepeated parameter " +
             platform::WidenBytes(std::to_string(load.repeated_number));
    case CatalogStatus::kOk:
      break;
  }
  return {};
}

std::string CatalogDamage(const CatalogLoad& load) {
  int defined = 0, without_text = 0, first = 0;
  for (int number = 1; number <= kCatalogCapacity; ++number) {
    if (load.catalog.present[number - 1] == 0) continue;
    ++defined;
    if (CatalogText(load.catalog, number).empty() && ++without_text == 1) first = number;
  }
  if (defined == 0) return "anlmsg.h, which belongs to " + load.path + ", defines no message";
  if (without_text > 0) {
    return load.path + ": no text for " + std::to_string(without_text) + " of " + std::to_string(defined) +
           " messages, the first is " + std::to_string(first);
  }
  if (!load.broken_off) return {};
  std::string damage = load.path + ": the texts break off at ";
  if (load.broken_off->empty()) return damage.append("the end of the file");
  return damage.append(1, '"').append(platform::ToUtf8(*load.broken_off)).append(1, '"');
}

std::u16string_view CatalogText(const MessageCatalog& catalog, int number) {
  if (!InCatalog(number) || catalog.present[number - 1] == 0) return {};
  const std::int32_t start = catalog.start[number - 1];
  const std::u16string_view pool = catalog.pool;
  return pool.substr(start, catalog.end[number - 1] - start);
}

std::u16string FormatCatalogMessage(const MessageCatalog& catalog, int number,
                                    std::span<const float> arguments) {
  const std::u16string_view text = CatalogText(catalog, number);
  Arguments values(arguments);
  std::u16string out;
  for (std::size_t i = 0; i < text.size() && out.size() < kMessageLengthLimit; ++i) {
    if (text[i] != u'%') {
      out.push_back(text[i]);
    } else if (++i < text.size()) {
      AppendPlaceholder(out, text[i], values);
    }
  }
  if (out.size() > kMessageLengthLimit) out.resize(kMessageLengthLimit);
  return out;
}

}  // namespace zentor
