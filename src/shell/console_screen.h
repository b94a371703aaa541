// The text screen of a run: a grid of cells drawn on a surface of pixels, with a copy of every cell so that
// it can draw itself again.
#pragma once

#include <cstdint>
#include <mutex>
#include <string_view>
#include <vector>

#include "platform/drawing_surface.h"

namespace zentor {

// Index of a colour in the table of the text screen.
inline constexpr int kScreenBackground = 0;  // light grey
inline constexpr int kScreenTextColour = 1;  // black

platform::Colour ScreenColour(int index);  // 0 to 12; any other counts as 0

// A frame of nested rings just inside the given rectangle (pixels, right and bottom exclusive); with a
// thickness of 3 the outer ring looks raised and the two inner ones sunken.
void DrawEtchedFrame(platform::DrawingSurface& surface, int left, int top, int right, int bottom,
                     int thickness);

// Rows and columns count from 1 in the interface. What lies outside the grid is cut off. The solver thread
// draws and the shell thread repaints; a lock that neither holds while it waits for the other keeps them
// apart.
class ConsoleScreen {
 public:
  // character_width: pixels from a column to the next, 0 for the font's average width and one more.
  ConsoleScreen(int columns, int rows, int character_width = 0);

  // Writes the text at (row, column); a leading tab becomes a blank and moves it 9 character widths right.
  // Text that was there is erased first, as many characters as the new text has from the first that is not
  // blank on.
  void DrawCells(std::u16string_view text, int row, int column, int text_colour, int background_colour);
  // Erases the block, both ends included. A cell at pixel 0 counts as never drawn, so what a text has in the
  // first column stays.
  void ClearArea(int first_row, int first_column, int last_row, int last_column);
  // Draws the cells of all rows but the first and the last again, and the frame.
  void Repaint();
  void DrawFrame();

  int Columns() const { return columns_; }
  int Rows() const { return rows_; }
  // Contents of a cell, for looking at the screen from outside.
  char16_t Character(int row, int column) const { return characters_[Index(row, column)]; }
  int Position(int row, int column) const { return positions_[Index(row, column)]; }
  int TextColour(int row, int column) const { return text_colours_[Index(row, column)]; }
  int BackgroundColour(int row, int column) const { return background_colours_[Index(row, column)]; }
  const platform::DrawingSurface& Surface() const { return surface_; }
  int LineHeight() const { return line_height_; }
  int CharacterWidth() const { return character_width_; }

 private:
  std::size_t Index(int row, int column) const {
    return static_cast<std::size_t>(row - 1) * static_cast<std::size_t>(columns_) +
           static_cast<std::size_t>(column - 1);
  }
  int Top(int row) const { return line_height_ * (row - 1); }
  void SelectColours(int text, int background);
  void EraseWith(std::size_t cell, std::size_t count, int row);
  void PutCharacters(std::u16string_view text, std::size_t first, int row, int text_colour, int background);

  int columns_, rows_;
  int line_height_, character_width_;
  std::mutex mutex_;
  platform::DrawingSurface surface_;
  // By cell, row after row. Position: of the character's left edge in pixels, 0 for a cell that was never
  // drawn.
  std::vector<char16_t> characters_;
  std::vector<int> positions_;
  std::vector<std::int16_t> text_colours_, background_colours_;
  std::vector<int> leftmost_, right_end_;  // written columns of each row
  int selected_text_ = kScreenTextColour;  // colours that the surface draws with
  int selected_background_ = kScreenBackground;
};

}  // namespace zentor
