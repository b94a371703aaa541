#include "shell/console_screen.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace zentor {
namespace {

constexpr platform::Colour kGrey = 0xC0C0C0, kBlack = 0x000000, kRed = 0x0000FF;

class Screen : public ::testing::Test {
 protected:
  // Pixels of a colour in the cells first .. last of a row.
  int Pixels(platform::Colour colour, int row, int first, int last) const {
    int count = 0;
    for (int y = screen_.LineHeight() * (row - 1); y < screen_.LineHeight() * row; ++y) {
      for (int x = screen_.CharacterWidth() * (first - 1); x < screen_.CharacterWidth() * last; ++x) {
        count += screen_.Surface().Pixel(x, y) == colour ? 1 : 0;
      }
    }
    return count;
  }
  std::u16string Cells(int row, int first) const {  // three of them
    return {screen_.Character(row, first), screen_.Character(row, first + 1),
            screen_.Character(row, first + 2)};
  }

  ConsoleScreen screen_{70, 20};
};

TEST_F(Screen, NewTextErasesAsManyOldCharactersAsItHas) {
  ConsoleScreen expected(70, 20);
  screen_.DrawCells(u"ABC", 3, 10, 1, 0);
  screen_.DrawCells(u"X", 3, 10, 1, 0);
  expected.DrawCells(u"XBC", 3, 10, 1, 0);
  EXPECT_EQ(Cells(3, 10), u"XBC");
  EXPECT_EQ(screen_.Surface().Picture(), expected.Surface().Picture());
  screen_.Repaint();
  expected.Repaint();
  EXPECT_EQ(screen_.Surface().Picture(), expected.Surface().Picture()) << "a repaint shows the same";
  const int behind = Pixels(kBlack, 3, 11, 12);
  screen_.DrawCells(u"--", 3, 9, 1, 0);
  EXPECT_EQ(Pixels(kBlack, 3, 11, 12), behind) << "only what the new text covers is erased";
}

TEST_F(Screen, CharactersFollowEachOtherAndTextsStartAtTheirColumn) {
  const int width = screen_.CharacterWidth(), advance = platform::DrawingSurface::AdvanceWidth(u'a');
  screen_.DrawCells(u"ab", 2, 5, 1, 0);
  EXPECT_EQ(screen_.Position(2, 5), 4 * width);
  EXPECT_EQ(screen_.Position(2, 6), 4 * width + advance);
  screen_.DrawCells(u"\tcd", 4, 2, 1, 0);
  EXPECT_EQ(Cells(4, 2), u" cd");
  EXPECT_EQ(screen_.Position(4, 2), 10 * width) << "a tab moves the text nine widths";
  EXPECT_EQ(Pixels(kBlack, 4, 1, 10), 0);
  EXPECT_GT(Pixels(kBlack, 4, 11, 14), 0);
}

TEST_F(Screen, ColoursAreThoseOfTheTable) {
  screen_.DrawCells(u"|", 5, 5, 3, 9);
  EXPECT_EQ(Pixels(kRed, 5, 5, 5), 7) << "red ink";
  EXPECT_EQ(Pixels(0x008000, 5, 5, 5), 7 * 13 - 7) << "green ground";
  screen_.DrawCells(u"|", 6, 5, 1, 0);
  EXPECT_EQ(Pixels(kBlack, 6, 5, 5), 7) << "the next text has its own colours";
  EXPECT_EQ(ScreenColour(12), 0xFF8080U);
  EXPECT_EQ(ScreenColour(13), kGrey);
}

// A tabbed text of blanks covers what stands nine columns behind its cells.
TEST_F(Screen, ARepaintShowsTheCellsOfAllRowsButTheFirstAndTheLast) {
  for (const int row : {1, 2, 19, 20}) {
    screen_.DrawCells(u"||||", row, 30, 3, 0);
    screen_.DrawCells(u"\t     ", row, 21, 3, 0);
    screen_.DrawCells(u"|", row, 60, 3, 0);
    EXPECT_EQ(Pixels(kRed, row, 30, 34), 0);
  }
  screen_.DrawCells(u"|", 10, 1, 3, 9);
  screen_.DrawCells(u"|", 10, 40, 3, 0);
  screen_.Repaint();
  for (const int row : {1, 2, 19, 20}) EXPECT_EQ(Pixels(kRed, row, 30, 34), row == 1 || row == 20 ? 0 : 28);
  EXPECT_EQ(Pixels(0x008000, 10, 1, 1), 7 * 13 - 7 - 3 * 13)
      << "the cells between two texts cover nothing, the frame three columns of pixels";
}

TEST_F(Screen, AnErasedAreaIsAsNewAndTheColoursAreSelectedAgain) {
  for (const int row : {1, 10, 20}) screen_.DrawCells(u"||||", row, 30, 3, 0);
  screen_.ClearArea(0, 0, 99, 99);
  EXPECT_EQ(screen_.Surface().Picture(), ConsoleScreen(70, 20).Surface().Picture());
  EXPECT_EQ(Cells(10, 30), u"   ");
  EXPECT_EQ(screen_.Position(10, 30), 0);
  screen_.DrawCells(u"|", 10, 30, 3, 0);
  EXPECT_EQ(Pixels(kRed, 10, 30, 30), 7);
}

TEST_F(Screen, WhatLiesOutsideTheGridIsCutOff) {
  screen_.DrawCells(u"abcdef", 19, 68, 1, 0);
  EXPECT_EQ(Cells(19, 68), u"abc");
  EXPECT_EQ(Cells(20, 1), u"   ");
  EXPECT_EQ(screen_.Position(20, 1), 0) << "a full row leaves the next one alone";
  for (const auto& [row, column] : {std::pair(21, 1), {1, 71}, {0, 1}, {1, 0}})
    screen_.DrawCells(u"abc", row, column, 1, 0);
  screen_.DrawCells(u"", 1, 1, 1, 0);
  EXPECT_EQ(Cells(1, 1), u"   ");
}

// A raised ring outside two sunken ones.
TEST(EtchedFrame, RingsOfThicknessThree) {
  platform::DrawingSurface surface(20, 12, kGrey);
  DrawEtchedFrame(surface, 0, 0, 20, 12, 3);
  const auto row = [&](int y) {
    std::string text;
    for (int x = 0; x < 20; ++x) {
      const platform::Colour colour = surface.Pixel(x, y);
      text += colour == 0x808080 ? 's' : colour == 0xFFFFFF ? 'h' : '.';
    }
    return text;
  };
  EXPECT_EQ(row(0), "hhhhhhhhhhhhhhhhhhhh");
  EXPECT_EQ(row(1), "hsssssssssssssssssss");
  EXPECT_EQ(row(6), "hss..............hhs");
  EXPECT_EQ(row(11), "hsssssssssssssssssss");
}

}  // namespace
}  // namespace zentor
