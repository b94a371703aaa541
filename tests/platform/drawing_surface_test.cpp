#include "platform/drawing_surface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace zentor::platform {
namespace {

constexpr Colour kGround = 0xC0C0C0, kInk = 0x0000FF;

int CountOf(const DrawingSurface& surface, Colour colour) {
  int count = 0;
  for (int y = 0; y < surface.Height(); ++y) {
    for (int x = 0; x < surface.Width(); ++x) count += surface.Pixel(x, y) == colour ? 1 : 0;
  }
  return count;
}

TEST(Surface, TextFillsItsCellsAndIsErasedByItsGround) {
  DrawingSurface surface(40, 13, kGround);
  surface.SetTextColour(kInk);
  surface.SetBackgroundColour(0xFFFFFF);
  surface.DrawText(7, 0, u"|");
  EXPECT_EQ(CountOf(surface, kInk), 7) << "a bar of seven dots";
  EXPECT_EQ(surface.Pixel(7 + 3, 5), kInk);
  EXPECT_EQ(CountOf(surface, 0xFFFFFF), 7 * 13 - 7);
  EXPECT_EQ(surface.Pixel(6, 5), kGround);
  EXPECT_EQ(surface.Pixel(14, 5), kGround);
  surface.SetTextColour(kGround);
  surface.SetBackgroundColour(kGround);
  surface.DrawText(7, 0, u"|");
  EXPECT_EQ(CountOf(surface, kGround), 40 * 13);
}

TEST(Surface, EveryPrintableCharacterLooksDifferent) {
  std::vector<std::string> pictures;
  for (char16_t c = 0x20; c < 0x7F; ++c) {
    DrawingSurface surface(DrawingSurface::AdvanceWidth(c), 13, kGround);
    surface.DrawText(0, 0, std::u16string_view(&c, 1));
    pictures.push_back(surface.Picture());
  }
  std::sort(pictures.begin(), pictures.end());
  EXPECT_EQ(std::adjacent_find(pictures.begin(), pictures.end()), pictures.end());
  EXPECT_EQ(DrawingSurface::AdvanceWidth(u'\u7814'), 2 * DrawingSurface::AdvanceWidth(u'a'));
}

TEST(Surface, LinesEndBeforeTheirLastPointAndStayInside) {
  DrawingSurface surface(10, 10, kGround);
  surface.SetPen(kInk);
  surface.MoveTo(2, 3);
  surface.LineTo(6, 3);
  EXPECT_EQ(CountOf(surface, kInk), 4);
  EXPECT_EQ(surface.Pixel(6, 3), kGround);
  surface.LineTo(6, 0);
  EXPECT_EQ(CountOf(surface, kInk), 7) << "upwards, from the point where the last line ended";
  surface.MoveTo(-5, 9);
  surface.LineTo(50, 9);
  EXPECT_EQ(CountOf(surface, kInk), 17);
}

TEST(Surface, PictureIsAPixmapOfRedGreenBlue) {
  DrawingSurface surface(2, 1, 0x010203);
  EXPECT_EQ(surface.Picture(), std::string("P6\n2 1\n255\n\x03\x02\x01\x03\x02\x01"));
}

}  // namespace
}  // namespace zentor::platform
