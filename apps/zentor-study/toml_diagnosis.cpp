#include "toml_diagnosis.h"

#include <fmt/format.h>

#include <algorithm>

#include "config_depth.h"
#include "config_tree.h"
#include "csv_diagnosis.h"

namespace zentor::companion {

namespace {

constexpr auto kNone = std::string_view::npos;
constexpr std::string_view kDigits = "0123456789";

std::string_view LineOf(std::string_view text, int number) {
  for (; number > 1; --number) text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1);
  return text.substr(0, text.find_first_of("\r\n"));
}

int LineAt(std::string_view text, std::size_t place) {
  const std::string_view before = text.substr(0, place);
  return 1 + static_cast<int>(std::count(before.begin(), before.end(), '\n'));
}

// The line without its comment and what stands in quotes.
std::string BareLine(std::string_view line) {
  std::string bare;
  for (std::size_t i = 0; i < line.size();) {
    const std::size_t end = BeginsSpan(line[i]) ? EndOfSpan(line, i) : i + 1;
    bare += line[i];
    i = std::min(end, line.size());
  }
  return bare;
}

bool HasCurlyQuotes(std::string_view bare) {
  const std::size_t place = bare.find("\xE2\x80");
  return place != kNone && place + 2 < bare.size() && bare[place + 2] >= '\x98' && bare[place + 2] <= '\x9F';
}

// 1,5 or 1,000 behind an equals sign.
bool HasCommaInNumber(std::string_view bare) {
  for (std::size_t comma = bare.find(','); comma != kNone; comma = bare.find(',', comma + 1)) {
    if (comma == 0 || kDigits.find(bare[comma - 1]) == kNone) continue;
    if (comma + 1 == bare.size() || kDigits.find(bare[comma + 1]) == kNone) continue;
    const std::size_t before = bare.find_last_not_of("0123456789.+- \t", comma - 1);
    if (before != kNone && bare[before] == '=') return true;
  }
  return false;
}

// A word behind an equals sign that is no value; empty when there is none.
std::string_view WordWithoutQuotes(std::string_view bare) {
  constexpr std::string_view kWords[] = {"true", "false", "inf", "nan"};
  for (std::size_t equals = bare.find('='); equals != kNone; equals = bare.find('=', equals + 1)) {
    const std::size_t begin = bare.find_first_not_of(" \t", equals + 1);
    if (begin == kNone) break;
    std::string_view word = bare.substr(begin);
    word = word.substr(0, word.find_first_of(",]}="));
    word = word.substr(0, word.find_last_not_of(" \t") + 1);
    const bool path = word.starts_with("/") || word.starts_with("./") || word.starts_with("../");
    const bool letter =
        !word.empty() && ((word[0] >= 'a' && word[0] <= 'z') || (word[0] >= 'A' && word[0] <= 'Z'));
    if ((path || letter) && std::find(std::begin(kWords), std::end(kWords), word) == std::end(kWords)) {
      return word;
    }
  }
  return {};
}

std::string FaultOfValue(std::string_view said, std::string_view line) {
  const std::string bare = BareLine(line);
  if (HasCurlyQuotes(bare)) return "a text has typographic quotes, expected straight ones: ' or \"";
  if (HasCommaInNumber(bare)) return "a number has a comma; write 1.5 for 1,5 and 1000 for 1,000";
  const std::string_view word = WordWithoutQuotes(bare);
  if (word == "True" || word == "TRUE" || word == "False" || word == "FALSE") {
    return fmt::format("{} has capital letters, expected true or false", word);
  }
  if (!word.empty()) return fmt::format("a text has no quotes; write '{0}' for {0}", word);
  return std::string(said);
}

std::string FaultOfLine(std::string_view said, std::string_view line) {
  const auto says = [said](std::string_view words) { return said.find(words) != kNone; };
  const bool in_string = says("parsing string") || says("parsing literal string") || says("unicode scalar");
  if (in_string && line.find('\\') != kNone && line.find('"') != kNone) return std::string(kBackslashRemedy);
  if (in_string && (says("control characters") || says("end-of-file"))) {
    return "a text has no closing quote; texts end on the line they begin on, with the quote they begin with";
  }
  if (says("not representable in 64 bits")) {
    return fmt::format("{}; whole numbers fit 32 bits, at most 2147483647", said);
  }
  return FaultOfValue(said, line);
}

}  // namespace

DefinitionError TomlError(const std::string& path, std::string_view toml, int line, std::string_view said) {
  if (toml.find('\n') == kNone && toml.find('\r') != kNone) return {path, 0, kCarriageReturnsAlone};
  if (const std::size_t nul = toml.find('\0'); nul != kNone) {
    return {path, LineAt(toml, nul), "holds a NUL byte, which no text has"};
  }
  const std::size_t open = FindUnclosedText(toml);
  if (open != kNone && LineAt(toml, open) <= line) {
    return {path, LineAt(toml, open),
            fmt::format("a text that begins with {0} here has no closing {0}", toml.substr(open, 3))};
  }
  return {path, line, FaultOfLine(said, LineOf(toml, line))};
}

}  // namespace zentor::companion
