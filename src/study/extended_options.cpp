#include "study/extended_options.h"

#include <algorithm>
#include <optional>
#include <span>
#include <vector>

#include "platform/text.h"
#include "services/faults.h"

namespace zentor {
namespace {

using namespace ftx_format;

std::string Quoted(std::string_view text) {
  constexpr std::size_t kMost = 60;
  std::string quoted(1, '\'');
  quoted.append(text.substr(0, kMost)).append(text.size() > kMost ? "..." : "");
  return quoted += '\'';
}

std::string_view Trimmed(std::string_view text) {
  while (text.starts_with(' ')) text.remove_prefix(1);
  while (text.ends_with(' ')) text.remove_suffix(1);
  return text;
}

std::string HexByte(unsigned char byte) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  return {'0', 'x', kDigits[byte >> 4U], kDigits[byte & 15U]};
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

// The text between the quotes with its escapes undone; nothing when it is not written so.
std::optional<std::string> Unquoted(std::string_view value) {
  if (value.size() < 2 || value.front() != '"' || value.back() != '"') return std::nullopt;
  value = value.substr(1, value.size() - 2);
  std::string text;
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] == '"') return std::nullopt;
    if (value[i] != '\\') {
      text += value[i];
      continue;
    }
    const std::string_view escape = value.substr(i + 1, 3);
    if (escape.starts_with('\\') || escape.starts_with('"')) {
      text += escape[0];
      i += 1;
      continue;
    }
    if (escape.size() < 3 || escape[0] != 'x') return std::nullopt;
    const int high = HexDigit(escape[1]);
    const int low = HexDigit(escape[2]);
    if (high < 0 || low < 0 || high + low == 0) return std::nullopt;
    text += static_cast<char>(16 * high + low);
    i += 3;
  }
  return text;
}

class Parser {
 public:
  Parser(std::string_view text, const std::string& path) : rest_(text), path_(path) {}

  ExtendedOptions Parse() {
    if (rest_.size() > kMostFileBytes) {
      throw InputFault(path_, "size", std::to_string(rest_.size()) + " bytes",
                       "at most " + std::to_string(kMostFileBytes));
    }
    const std::string format = std::string(kFormatName) + ' ' + std::string(kVersion);
    if (const std::string_view first = TakeLine(); first != format) {
      Fail("", Quoted(first), "'" + format + "', the format and its version");
    }
    while (!rest_.empty()) {
      const std::string_view line = Trimmed(TakeLine());
      if (!line.empty() && line.front() != '#') TakeOption(line);
    }
    return std::move(options_);
  }

 private:
  // The next line without its end; a carriage return in front of the line feed belongs to the end.
  std::string_view TakeLine() {
    ++number_;
    const std::size_t end = rest_.find('\n');
    std::string_view line = rest_.substr(0, end);
    rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
    if (line.size() > kMostLineBytes) {
      Fail(", length", std::to_string(line.size()) + " bytes", "at most " + std::to_string(kMostLineBytes));
    }
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (const std::size_t bad = platform::FirstUnprintable(line); bad != std::string_view::npos) {
      Fail(", byte " + std::to_string(bad + 1), HexByte(static_cast<unsigned char>(line[bad])),
           "text in UTF-8 without control characters");
    }
    return line;
  }

  void TakeOption(std::string_view line) {
    const std::string_view key = line.substr(0, line.find(' '));
    const std::string_view value = Trimmed(line.substr(key.size()));
    const bool known =
        std::any_of(kSwitches.begin(), kSwitches.end(),
                    [&](const auto& k) { return Takes(k, key, value); }) ||
        std::any_of(kTexts.begin(), kTexts.end(), [&](const auto& k) { return Takes(k, key, value); });
    if (!known) Fail(", key", Quoted(key), KnownKeys());
    if (std::find(taken_.begin(), taken_.end(), key) != taken_.end()) {
      Fail(", key", Quoted(key) + ", which an earlier line has already", "every key once");
    }
    taken_.push_back(key);
  }

  bool Takes(const SwitchKey& known, std::string_view key, std::string_view value) {
    if (key != known.key) return false;
    if (value != known.on && value != known.off) {
      Fail(", " + std::string(key), Quoted(value), std::string(known.on) + " or " + std::string(known.off));
    }
    options_.*known.member = value == known.on;
    return true;
  }
  bool Takes(const TextKey& known, std::string_view key, std::string_view value) {
    if (key != known.key) return false;
    std::optional<std::string> text = Unquoted(value);
    if (!text) {
      Fail(", " + std::string(key), Quoted(value),
           R"(a text in double quotes with the escapes \\, \" and \xHH)");
    }
    options_.*known.member = std::move(*text);
    return true;
  }

  static std::string KnownKeys() {
    std::string keys = "one of:";
    for (const SwitchKey& known : kSwitches) keys += ' ' + std::string(known.key);
    for (const TextKey& known : kTexts) keys += ' ' + std::string(known.key);
    return keys;
  }

  [[noreturn]] void Fail(const std::string& what, const std::string& found, const std::string& wanted) const {
    throw InputFault(path_, "line " + std::to_string(number_) + what, found, wanted);
  }

  std::string_view rest_;
  const std::string& path_;
  int number_ = 0;
  std::vector<std::string_view> taken_;
  ExtendedOptions options_;
};

}  // namespace

ExtendedOptions ParseExtendedOptions(std::string_view text, const std::string& path) {
  return Parser(text, path).Parse();
}

ExtendedOptions ReadExtendedOptions(platform::FileSystem& files, const std::string& path) {
  // Only a file that is not there says that the study has none.
  const auto file = platform::OpenIfThere(files, path, platform::OpenMode::kReadOnly);
  if (!file) return {};
  // One byte more than a sound file has shows one that is too large, also where a size means nothing.
  std::string text(kMostFileBytes + 1, '\0');
  text.resize(file->ReadAt(0, std::as_writable_bytes(std::span(text))));
  return ParseExtendedOptions(text, path);
}

}  // namespace zentor
