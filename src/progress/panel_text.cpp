#include "progress/panel_text.h"

#include <algorithm>

#include "platform/text.h"

namespace zentor::progress {
namespace {

constexpr std::u32string_view kMark = U"...";
constexpr int kShortestMarked = 4;

bool IsBlank(char32_t c) {
  return c <= U' ' || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029 || c == 0x3000;
}

// Direction overrides and other invisible characters; combining marks stay.
bool IsFormat(char32_t c) {
  return c == 0xAD || (c >= 0x200B && c <= 0x200F) || (c >= 0x202A && c <= 0x202E) ||
         (c >= 0x2060 && c <= 0x206F) || c == 0xFEFF || (c >= 0xE0000 && c <= 0xE0FFF);
}

// Number of characters at the end of the text that fit.
std::size_t FittingEnd(std::u32string_view text, int width) {
  int used = 0;
  for (std::size_t n = 0; n < text.size(); ++n) {
    used += platform::CharacterWidth(text[text.size() - 1 - n]);
    if (used > width) return n;
  }
  return text.size();
}

}  // namespace

std::u32string Printable(std::u16string_view text) {
  std::u32string out;
  bool blank = false;
  for (const char32_t c : platform::Characters(text)) {
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

std::u32string CutEnd(std::u32string_view text, int width) {
  if (TextWidth(text) <= width) return std::u32string(text);
  if (width < kShortestMarked) return std::u32string(text.substr(0, platform::Fitting(text, width)));
  return std::u32string(text.substr(0, platform::Fitting(text, width - TextWidth(kMark)))).append(kMark);
}

std::u32string CutMiddle(std::u32string_view text, int width) {
  if (TextWidth(text) <= width || width < kShortestMarked) return CutEnd(text, width);
  const int room = width - TextWidth(kMark);
  const std::size_t head = platform::Fitting(text, room / 3);
  const std::size_t tail = FittingEnd(text, room - room / 3);
  return std::u32string(text.substr(0, head)).append(kMark).append(text.substr(text.size() - tail));
}

std::u32string Pad(std::u32string_view text, int width) {
  std::u32string out = CutEnd(text, width);
  out.append(static_cast<std::size_t>(std::max(0, width - TextWidth(out))), U' ');
  return out;
}

}  // namespace zentor::progress
