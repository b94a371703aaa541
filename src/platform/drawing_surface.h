// A surface of pixels that text and lines are drawn on, with one built-in font.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zentor::platform {

using Colour = std::uint32_t;  // 0x00BBGGRR

enum class SystemColour { kButtonShadow, kButtonHighlight };
Colour ColourOf(SystemColour colour);

// Heights and widths in pixels.
struct FontMetrics {
  int ascent = 0;
  int descent = 0;
  int average_width = 0;
};

// Drawing beyond the edges is cut off. Not for use by two threads at once.
class DrawingSurface {
 public:
  // All pixels in `background`; sizes below 1 count as 1.
  DrawingSurface(int width, int height, Colour background);

  int Width() const { return width_; }
  int Height() const { return height_; }
  Colour Pixel(int x, int y) const;  // 0 outside

  static FontMetrics Metrics();
  // Characters without a glyph are drawn as a box, those of East Asian scripts as a wide one.
  static int AdvanceWidth(char16_t character);

  void SetTextColour(Colour colour) { text_colour_ = colour; }
  void SetBackgroundColour(Colour colour) { background_colour_ = colour; }
  // Opaque: the cell of every character is filled with the background colour. x, y: upper left corner.
  void DrawText(int x, int y, std::u16string_view text);

  void SetPen(Colour colour) { pen_ = colour; }
  void MoveTo(int x, int y);
  // A line, horizontal, vertical or oblique, from the current point up to but without (x, y), which becomes
  // the current point.
  void LineTo(int x, int y);

  // The surface as a portable pixmap ("P6").
  std::string Picture() const;

 private:
  void Set(int x, int y, Colour colour);
  void DrawGlyph(int x, int y, char16_t character);

  int width_, height_;
  std::vector<Colour> pixels_;
  Colour text_colour_ = 0, background_colour_, pen_ = 0;
  int x_ = 0, y_ = 0;
};

}  // namespace zentor::platform
