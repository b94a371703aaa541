#include "progress/panel_text.h"

#include <algorithm>
#include <cstdint>

#include "platform/text.h"
#include "progress/character_width.h"

namespace zentor::progress {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr std::u32string_view kMark = U"...";
constexpr int kShortestMarked = 4;

bool IsHigh(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsLow(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

// The character at text[i]; moves i behind it.
char32_t Next(std::u16string_view text, std::size_t& i) {
  const char32_t unit = text[i++];
  if (IsHigh(unit) && i < text.size() && IsLow(text[i])) {
    return 0x10000 + ((unit - 0xD800) << 10U) + (static_cast<char32_t>(text[i++]) - 0xDC00);
  }
  return IsHigh(unit) || IsLow(unit) ? kReplacement : unit;
}

bool IsBlank(char32_t c) {
  return c <= U' ' || (c >= 0x7F && c <= 0xA0) || c == 0x2028 || c == 0x2029 || c == 0x3000;
}

// Direction overrides and other invisible characters; combining marks stay.
bool IsFormat(char32_t c) {
  return c == 0xAD || (c >= 0x200B && c <= 0x200F) || (c >= 0x202A && c <= 0x202E) ||
         (c >= 0x2060 && c <= 0x206F) || c == 0xFEFF || (c >= 0xE0000 && c <= 0xE0FFF);
}

// Number of characters from the start of the text that fit.
std::size_t Fitting(std::u32string_view text, int width) {
  int used = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    used += CharacterWidth(text[i]);
    if (used > width) return i;
  }
  return text.size();
}

// Number of characters at the end of the text that fit.
std::size_t FittingEnd(std::u32string_view text, int width) {
  int used = 0;
  for (std::size_t n = 0; n < text.size(); ++n) {
    used += CharacterWidth(text[text.size() - 1 - n]);
    if (used > width) return n;
  }
  return text.size();
}

}  // namespace

std::u32string Printable(std::u16string_view text) {
  std::u32string out;
  bool blank = false;
  for (std::size_t i = 0; i < text.size();) {
    const char32_t c = Next(text, i);
    if (IsBlank(c)) {
      blank = true;
    } else if (!IsFormat(c)) {
      if (blank && !out.empty()) out += U' ';
      blank = false;
      out += c;
    }
  }
  return out;
}

std::u32string PrintableUtf8(std::string_view text) { return Printable(platform::ToWide(text)); }

std::string Utf8(std::u32string_view text) {
  std::u16string wide;
  wide.reserve(text.size());
  for (const char32_t c : text) {
    if (c < 0x10000) {
      wide += static_cast<char16_t>(c);
    } else {
      wide += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10U));
      wide += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FFU));
    }
  }
  return platform::ToUtf8(wide);
}

int TextWidth(std::u32string_view text) {
  int width = 0;
  for (const char32_t c : text) width += CharacterWidth(c);
  return width;
}

std::u32string CutEnd(std::u32string_view text, int width) {
  if (TextWidth(text) <= width) return std::u32string(text);
  if (width < kShortestMarked) return std::u32string(text.substr(0, Fitting(text, width)));
  return std::u32string(text.substr(0, Fitting(text, width - TextWidth(kMark)))).append(kMark);
}

std::u32string CutMiddle(std::u32string_view text, int width) {
  if (TextWidth(text) <= width || width < kShortestMarked) return CutEnd(text, width);
  const int room = width - TextWidth(kMark);
  const std::size_t head = Fitting(text, room / 3);
  const std::size_t tail = FittingEnd(text, room - room / 3);
  return std::u32string(text.substr(0, head)).append(kMark).append(text.substr(text.size() - tail));
}

std::vector<std::u32string> Wrap(std::u32string_view text, int width) {
  std::vector<std::u32string> lines;
  while (!text.empty()) {
    // A character wider than the line still takes a line, or this would never end.
    std::size_t end = std::max<std::size_t>(1, Fitting(text, std::max(1, width)));
    std::size_t next = end;
    if (end < text.size()) {
      const std::size_t blank = text.rfind(U' ', end);
      if (blank != std::u32string_view::npos && blank > 0) end = blank, next = blank + 1;
    }
    lines.emplace_back(text.substr(0, end));
    text.remove_prefix(next);
  }
  return lines;
}

std::u32string Pad(std::u32string_view text, int width) {
  std::u32string out = CutEnd(text, width);
  out.append(static_cast<std::size_t>(std::max(0, width - TextWidth(out))), U' ');
  return out;
}

}  // namespace zentor::progress
