#include "platform/text_columns.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

namespace zentor::platform {
namespace {

struct Range {
  char32_t first, last;
};

// Both tables ascend.
constexpr std::array kZeroWidth = std::to_array<Range>({
    {0x00AD, 0x00AD}, {0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x05BF, 0x05BF},
    {0x05C1, 0x05C2}, {0x0610, 0x061A}, {0x064B, 0x065F}, {0x0670, 0x0670}, {0x0E31, 0x0E31},
    {0x0E34, 0x0E3A}, {0x0E47, 0x0E4E}, {0x1160, 0x11FF}, {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF},
    {0x200B, 0x200F}, {0x2028, 0x202E}, {0x2060, 0x206F}, {0x20D0, 0x20FF}, {0x302A, 0x302D},
    {0x3099, 0x309A}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}, {0xFEFF, 0xFEFF}, {0xE0000, 0xE0FFF},
});

constexpr std::array kWide = std::to_array<Range>({
    {0x1100, 0x115F},
    {0x231A, 0x231B},
    {0x2329, 0x232A},
    {0x2E80, 0x303E},
    {0x3041, 0x4DBF},
    {0x4E00, 0xA4CF},
    {0xA960, 0xA97F},
    {0xAC00, 0xD7A3},
    {0xF900, 0xFAFF},
    {0xFE10, 0xFE19},
    {0xFE30, 0xFE6F},
    {0xFF00, 0xFF60},
    {0xFFE0, 0xFFE6},
    {0x1F300, 0x1F64F},
    {0x1F680, 0x1F6FF},
    {0x1F900, 0x1F9FF},
    {0x20000, 0x2FFFD},
    {0x30000, 0x3FFFD},
});

bool Contains(std::span<const Range> ranges, char32_t character) {
  const auto after = std::upper_bound(ranges.begin(), ranges.end(), character,
                                      [](char32_t c, const Range& range) { return c < range.first; });
  return after != ranges.begin() && character <= std::prev(after)->last;
}

// Punctuation that no line begins with, and that none ends with.
constexpr std::u32string_view kNotAtStart =
    U"\u3001\u3002\uFF0C\uFF0E\u30FB\uFF1A\uFF1B\uFF1F\uFF01\uFF09\u300D\u300F\u3011\u3009\u300B\u201D\u2019"
    U"\u30FC\u3041\u3043\u3045\u3047\u3049\u3063\u3083\u3085\u3087\u30A1\u30A3\u30A5\u30A7\u30A9\u30C3\u30E3"
    U"\u30E5\u30E7)]}.,:;?!%";
constexpr std::u32string_view kNotAtEnd = U"\uFF08\u300C\u300E\u3010\u3008\u300A\u201C\u2018([{";

// Characters of scripts without blanks between the words. Korean has them.
bool IsIdeographic(char32_t c) { return CharacterWidth(c) == 2 && !(c >= 0xAC00 && c <= 0xD7A3); }

// Whether a line may end before text[i], which is not the first character.
bool CanBreak(std::u32string_view text, std::size_t i) {
  const char32_t before = text[i - 1], after = text[i];
  if (before == U' ' || after == U' ') return true;
  if (CharacterWidth(after) == 0 || !(IsIdeographic(before) || IsIdeographic(after))) return false;
  return kNotAtStart.find(after) == kNotAtStart.npos && kNotAtEnd.find(before) == kNotAtEnd.npos;
}

// Number of characters of the first line; `fitting` of them would fit, and there are more.
std::size_t LineLength(std::u32string_view text, std::size_t fitting) {
  const std::size_t indent = text.find_first_not_of(U' ');
  for (std::size_t i = fitting; i > indent; --i) {
    if (CanBreak(text, i)) return i;
  }
  std::size_t cut = fitting;  // in the midst of a word, but not between a letter and its accent
  while (cut > 1 && CharacterWidth(text[cut]) == 0) --cut;
  return cut;
}

}  // namespace

int CharacterWidth(char32_t character) {
  if (Contains(kZeroWidth, character)) return 0;
  return Contains(kWide, character) ? 2 : 1;
}

int TextWidth(std::u32string_view text) {
  int width = 0;
  for (const char32_t c : text) width += CharacterWidth(c);
  return width;
}

std::size_t Fitting(std::u32string_view text, int width) {
  int used = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    used += CharacterWidth(text[i]);
    if (used > width) return i;
  }
  return text.size();
}

std::vector<std::u32string> Wrap(std::u32string_view text, int width) {
  std::vector<std::u32string> lines;
  text = text.substr(0, text.find_last_not_of(U' ') + 1);
  while (!text.empty()) {
    // A character wider than the line still takes a line, or this would never end.
    const std::size_t fitting = std::max<std::size_t>(1, Fitting(text, std::max(1, width)));
    const std::size_t end = fitting < text.size() ? LineLength(text, fitting) : fitting;
    const std::u32string_view line = text.substr(0, end);
    lines.emplace_back(line.substr(0, line.find_last_not_of(U' ') + 1));
    text.remove_prefix(end);
    text.remove_prefix(std::min(text.size(), text.find_first_not_of(U' ')));
  }
  return lines;
}

}  // namespace zentor::platform
