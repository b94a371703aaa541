#include "platform/drawing_surface.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace zentor::platform {
namespace {

// Ink, ground and untouched pixels one row at a time.
TEST(Surface, TextAndLinesStayInsideTheSurface) {
  DrawingSurface surface(10, 14, 0);
  surface.SetTextColour(1);
  surface.SetBackgroundColour(2);
  surface.SetPen(3);
  surface.DrawText(-4, 2, u"||");
  surface.MoveTo(2, 1);
  surface.LineTo(6, 1);  // without its last point
  surface.LineTo(6, -5);
  surface.MoveTo(-5, 13);
  surface.LineTo(9, 13);
  std::string rows;
  for (const int y : {0, 1, 4, 5, 13}) {
    for (int x = 0; x < 10; ++x) rows += static_cast<char>('0' + surface.Pixel(x, y));
    rows += ' ';
  }
  EXPECT_EQ(rows, "0000003000 0033333000 2222222222 2222221222 3333333332 ");
}

TEST(Surface, EveryPrintableCharacterLooksDifferent) {
  std::set<std::string> pictures;
  for (char16_t c = 0x20; c < 0x7F; ++c) {
    DrawingSurface surface(DrawingSurface::AdvanceWidth(c), 13, 0xC0C0C0);
    surface.DrawText(0, 0, std::u16string_view(&c, 1));
    pictures.insert(surface.Picture());
  }
  EXPECT_EQ(pictures.size(), 95U);
  EXPECT_EQ(DrawingSurface::AdvanceWidth(u'\u7814'), 2 * DrawingSurface::AdvanceWidth(u'a'));
}

TEST(Surface, PictureIsAPixmapOfRedGreenBlue) {
  EXPECT_EQ(DrawingSurface(2, 1, 0x010203).Picture(), std::string("P6\n2 1\n255\n\x03\x02\x01\x03\x02\x01"));
}

}  // namespace
}  // namespace zentor::platform
