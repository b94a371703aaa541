#include "platform/drawing_surface.h"

#include <algorithm>
#include <cstdlib>

#include "platform/screen_font.h"

namespace zentor::platform {
namespace {

constexpr int kAscent = 10, kDescent = 3;
constexpr int kAdvance = kGlyphColumns + 2;
constexpr int kGlyphTop = 3;  // rows above the tallest glyph

// Scripts whose characters take two cells: Hangul, Kana, Han and their full-width companions.
bool IsWide(char16_t c) {
  return (c >= 0x1100 && c <= 0x115F) || (c >= 0x2E80 && c <= 0xA4CF) || (c >= 0xAC00 && c <= 0xD7A3) ||
         (c >= 0xF900 && c <= 0xFAFF) || (c >= 0xFE30 && c <= 0xFE6F) || (c >= 0xFF00 && c <= 0xFF60) ||
         (c >= 0xFFE0 && c <= 0xFFE6);
}

}  // namespace

Colour ColourOf(SystemColour colour) {
  return colour == SystemColour::kButtonShadow ? Colour{0x808080} : Colour{0xFFFFFF};
}

DrawingSurface::DrawingSurface(int width, int height, Colour background)
    : width_(std::max(width, 1)),
      height_(std::max(height, 1)),
      pixels_(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_), background),
      background_colour_(background) {}

Colour DrawingSurface::Pixel(int x, int y) const {
  if (x < 0 || x >= width_ || y < 0 || y >= height_) return 0;
  return pixels_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
                 static_cast<std::size_t>(x)];
}

void DrawingSurface::Set(int x, int y, Colour colour) {
  if (x < 0 || x >= width_ || y < 0 || y >= height_) return;
  pixels_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x)] =
      colour;
}

FontMetrics DrawingSurface::Metrics() { return {kAscent, kDescent, kAdvance}; }

int DrawingSurface::AdvanceWidth(char16_t character) { return IsWide(character) ? 2 * kAdvance : kAdvance; }

void DrawingSurface::DrawText(int x, int y, std::u16string_view text) {
  for (const char16_t character : text) {
    DrawGlyph(x, y, character);
    x += AdvanceWidth(character);
  }
}

void DrawingSurface::DrawGlyph(int x, int y, char16_t character) {
  const int width = AdvanceWidth(character);
  const Glyph* glyph = GlyphOf(character);
  const auto is_ink = [&](int column, int row) {
    if (column < 0 || column >= width - 2 || row < 0 || row >= kGlyphRows) return false;
    if (glyph != nullptr) return (((*glyph)[static_cast<std::size_t>(column)] >> row) & 1U) != 0;
    const bool edge = column == 0 || column == width - 3 || row == 0 || row == kGlyphRows - 2;
    return edge && row < kGlyphRows - 1;
  };
  for (int row = 0; row < kAscent + kDescent; ++row) {
    for (int column = 0; column < width; ++column) {
      Set(x + column, y + row, is_ink(column - 1, row - kGlyphTop) ? text_colour_ : background_colour_);
    }
  }
}

void DrawingSurface::MoveTo(int x, int y) {
  x_ = x;
  y_ = y;
}

void DrawingSurface::LineTo(int x, int y) {
  const int steps = std::max(std::abs(x - x_), std::abs(y - y_));
  for (int i = 0; i < steps; ++i) {
    // Rounded to the nearest pixel of the ideal line.
    const int dx = (2 * i * (x - x_) + (x >= x_ ? steps : -steps)) / (2 * steps);
    const int dy = (2 * i * (y - y_) + (y >= y_ ? steps : -steps)) / (2 * steps);
    Set(x_ + dx, y_ + dy, pen_);
  }
  MoveTo(x, y);
}

std::string DrawingSurface::Picture() const {
  std::string picture = "P6\n" + std::to_string(width_) + " " + std::to_string(height_) + "\n255\n";
  picture.reserve(picture.size() + pixels_.size() * 3);
  for (const Colour colour : pixels_) {
    for (const int shift : {0, 8, 16}) picture.push_back(static_cast<char>((colour >> shift) & 0xFFU));
  }
  return picture;
}

}  // namespace zentor::platform
