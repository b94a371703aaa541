#include "platform/drawing_surface.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace zentor::platform
