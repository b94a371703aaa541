#include "shell/console_screen.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace zentor {
namespace {

std::u16string ThreeCells(const ConsoleScreen& screen, int row, int first) {
  return {screen.Character(row, first), screen.Character(row, first + 1), screen.Character(row, first + 2)};
}

TEST(Screen, WhatLiesOutsideTheGridIsCutOff) {
  ConsoleScreen screen(70, 20);
  screen.DrawCells(u"abcdef", 19, 68, 1, 0);
  EXPECT_EQ(ThreeCells(screen, 19, 68), u"abc");
  EXPECT_EQ(ThreeCells(screen, 20, 1), u"   ");
  EXPECT_EQ(screen.Position(20, 1), 0) << "a full row leaves the next one alone";
  for (const auto& [row, column] : {std::pair(21, 1), {1, 71}, {0, 1}, {1, 0}})
    screen.DrawCells(u"abc", row, column, 1, 0);
  screen.DrawCells(u"", 1, 1, 1, 0);
  EXPECT_EQ(ThreeCells(screen, 1, 1), u"   ");
}

}  // namespace
}  // namespace zentor
