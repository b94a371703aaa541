#include "shell/console_screen.h"

#include <gtest/gtest.h>

#include <string>

namespace zentor {
namespace {

constexpr platform::Colour kGrey = 0xC0C0C0, kBlack = 0x000000;

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
  int AllPixels() const { return screen_.CharacterWidth() * screen_.LineHeight(); }

  ConsoleScreen screen_{70, 20};
};

TEST_F(Screen, NewTextErasesAsManyOldCharactersAsItHas) {
  screen_.DrawCells(u"ABC", 3, 10, 1, 0);
  const std::string written = screen_.Surface().Picture();
  screen_.DrawCells(u"X", 3, 10, 1, 0);
  EXPECT_EQ(std::u16string({screen_.Character(3, 10), screen_.Character(3, 11), screen_.Character(3, 12)}),
            u"XBC");
  ConsoleScreen expected(70, 20);
  expected.DrawCells(u"XBC", 3, 10, 1, 0);
  EXPECT_EQ(screen_.Surface().Picture(), expected.Surface().Picture());
  screen_.Repaint();
  expected.Repaint();
  EXPECT_EQ(screen_.Surface().Picture(), expected.Surface().Picture()) << "a repaint shows the same";
  EXPECT_NE(screen_.Surface().Picture(), written);
}

TEST_F(Screen, CharactersOfATextFollowEachOtherAndTextsStartAtTheirColumn) {
  screen_.DrawCells(u"ab", 2, 5, 1, 0);
  const int advance = platform::DrawingSurface::AdvanceWidth(u'a');
  EXPECT_EQ(screen_.Position(2, 5), 4 * screen_.CharacterWidth());
  EXPECT_EQ(screen_.Position(2, 6), 4 * screen_.CharacterWidth() + advance);
  screen_.DrawCells(u"\tcd", 4, 2, 1, 0);
  EXPECT_EQ(screen_.Character(4, 2), u' ');
  EXPECT_EQ(screen_.Position(4, 2), 10 * screen_.CharacterWidth()) << "a tab moves the text nine widths";
  EXPECT_EQ(Pixels(kBlack, 4, 1, 10), 0);
  EXPECT_GT(Pixels(kBlack, 4, 11, 14), 0);
}

TEST_F(Screen, ColoursAreThoseOfTheTable) {
  screen_.DrawCells(u"|", 5, 5, 3, 9);
  EXPECT_EQ(Pixels(0x0000FF, 5, 5, 5), 7) << "red ink";
  EXPECT_EQ(Pixels(0x008000, 5, 5, 5), 7 * 13 - 7) << "green ground";
  EXPECT_EQ(screen_.BackgroundColour(5, 5), 9);
  screen_.DrawCells(u"|", 6, 5, 1, 0);
  EXPECT_EQ(Pixels(kBlack, 6, 5, 5), 7) << "the next text has its own colours";
  EXPECT_EQ(ScreenColour(12), 0xFF8080U);
  EXPECT_EQ(ScreenColour(13), kGrey);
}

TEST_F(Screen, ARepaintLeavesOutTheFirstAndTheLastRow) {
  for (const int row : {1, 10, 20}) screen_.DrawCells(u"||||", row, 30, 1, 0);
  ConsoleScreen fresh(70, 20);
  screen_.ClearArea(0, 0, 99, 99);
  EXPECT_EQ(screen_.Surface().Picture(), fresh.Surface().Picture())
      << "everything is erased, colours selected again";
  EXPECT_EQ(screen_.Character(10, 30), u' ');
  EXPECT_EQ(screen_.Position(10, 30), 0);
  for (const int row : {1, 10, 20}) screen_.DrawCells(u"|", row, 30, 1, 0);
  screen_.DrawCells(u"|", 10, 30, 3, 0);
  screen_.DrawCells(u"    ", 10, 40, 3, 0);
  EXPECT_EQ(Pixels(0x0000FF, 10, 30, 30), 7);
  screen_.Repaint();
  EXPECT_EQ(Pixels(0x0000FF, 10, 30, 30), 7);
}

TEST_F(Screen, WhatLiesOutsideTheGridIsCutOff) {
  screen_.DrawCells(u"abcdef", 20, 68, 1, 0);
  EXPECT_EQ(screen_.Character(20, 70), u'c');
  screen_.DrawCells(u"abc", 21, 1, 1, 0);
  screen_.DrawCells(u"abc", 1, 71, 1, 0);
  screen_.DrawCells(u"abc", 0, 1, 1, 0);
  screen_.DrawCells(u"", 1, 1, 1, 0);
  EXPECT_EQ(screen_.Character(1, 1), u' ');
}

// A raised ring outside two sunken ones.
TEST(EtchedFrame, RingsOfThicknessThree) {
  constexpr platform::Colour kShadow = 0x808080, kHighlight = 0xFFFFFF;
  platform::DrawingSurface surface(20, 12, kGrey);
  DrawEtchedFrame(surface, 0, 0, 20, 12, 3);
  const auto row = [&](int y) {
    std::string text;
    for (int x = 0; x < 20; ++x) {
      const platform::Colour colour = surface.Pixel(x, y);
      text += colour == kShadow ? 's' : colour == kHighlight ? 'h' : '.';
    }
    return text;
  };
  EXPECT_EQ(row(6), "hss..............hhs");
  EXPECT_EQ(row(0), "hhhhhhhhhhhhhhhhhhhh");
  EXPECT_EQ(row(1), "hsssssssssssssssssss");
  EXPECT_EQ(row(11), "hsssssssssssssssssss");
}

}  // namespace
}  // namespace zentor
