#include "shell/console_screen.h"

#include <algorithm>
#include <array>
#include <string>

namespace zentor {
namespace {

constexpr std::array<platform::Colour, 13> kColours = {
    0xC0C0C0, 0x000000, 0xFF0000, 0x0000FF, 0xFFFFFF, 0xFFFF00, 0x8000FF,
    0x004080, 0x000000, 0x008000, 0xFF00FF, 0x808040, 0xFF8080,
};
constexpr int kTabWidth = 9;  // character widths
constexpr int kFrameThickness = 3;

int LineHeightOfFont() {
  const platform::FontMetrics metrics = platform::DrawingSurface::Metrics();
  return metrics.ascent + metrics.descent;
}

}  // namespace

platform::Colour ScreenColour(int index) {
  const bool known = index >= 0 && index < static_cast<int>(kColours.size());
  return kColours[known ? static_cast<std::size_t>(index) : 0];
}

void DrawEtchedFrame(platform::DrawingSurface& surface, int left, int top, int right, int bottom,
                     int thickness) {
  const platform::Colour shadow = ColourOf(platform::SystemColour::kButtonShadow);
  const platform::Colour highlight = ColourOf(platform::SystemColour::kButtonHighlight);
  for (int ring = 0; ring < thickness; ++ring) {
    const bool raised = ring < thickness / 2;
    --right;
    --bottom;
    surface.SetPen(raised ? shadow : highlight);
    surface.MoveTo(left + 1, bottom);
    surface.LineTo(right, bottom);
    surface.LineTo(right, top);
    surface.SetPen(raised ? highlight : shadow);
    surface.LineTo(left, top);
    surface.LineTo(left, bottom + 1);
    ++top;
    ++left;
  }
}

ConsoleScreen::ConsoleScreen(int columns, int rows, int character_width)
    : columns_(columns),
      rows_(rows),
      line_height_(LineHeightOfFont()),
      character_width_(character_width > 0 ? character_width
                                           : platform::DrawingSurface::Metrics().average_width + 1),
      surface_(character_width_ * columns, line_height_ * rows, ScreenColour(kScreenBackground)) {
  const auto cells = static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows);
  characters_.assign(cells, u' ');
  positions_.assign(cells, 0);
  text_colours_.assign(cells, 0);
  background_colours_.assign(cells, 0);
  leftmost_.assign(static_cast<std::size_t>(rows), columns);
  right_end_.assign(static_cast<std::size_t>(rows), 1);
  surface_.SetTextColour(ScreenColour(selected_text_));
  surface_.SetBackgroundColour(ScreenColour(selected_background_));
}

void ConsoleScreen::SelectColours(int text, int background) {
  if (background != selected_background_) surface_.SetBackgroundColour(ScreenColour(background));
  if (text != selected_text_) surface_.SetTextColour(ScreenColour(text));
  selected_background_ = background;
  selected_text_ = text;
}

// Draws the old characters of the cells in the colour of the background.
void ConsoleScreen::EraseWith(std::size_t cell, std::size_t count, int row) {
  SelectColours(kScreenBackground, kScreenBackground);
  surface_.DrawText(positions_[cell], Top(row), std::u16string_view(characters_.data() + cell, count));
}

void ConsoleScreen::PutCharacters(std::u16string_view text, std::size_t first, int row, int text_colour,
                                  int background) {
  bool erased = false;
  for (std::size_t k = 0; k < text.size(); ++k) {
    const std::size_t cell = first + k;
    if (!erased && characters_[cell] != u' ') {
      EraseWith(cell, text.size() - k, row);
      erased = true;
    }
    characters_[cell] = text[k];
    // The place behind a text that fills its row is not that of the next row's first cell.
    if ((cell + 1) % static_cast<std::size_t>(columns_) != 0) {
      positions_[cell + 1] = positions_[cell] + platform::DrawingSurface::AdvanceWidth(text[k]);
    }
    text_colours_[cell] = static_cast<std::int16_t>(text_colour);
    background_colours_[cell] = static_cast<std::int16_t>(background);
  }
}

void ConsoleScreen::DrawCells(std::u16string_view text, int row, int column, int text_colour,
                              int background_colour) {
  if (row < 1 || row > rows_ || column < 1 || column > columns_) return;
  std::u16string shown(
      text.substr(0, static_cast<std::size_t>(columns_) - static_cast<std::size_t>(column) + 1));
  if (shown.empty()) return;
  const std::lock_guard lock(mutex_);
  const std::size_t first = Index(row, column);
  positions_[first] = character_width_ * (column - 1);
  if (shown.front() == u'\t') {
    shown.front() = u' ';
    positions_[first] += kTabWidth * character_width_;
  }
  PutCharacters(shown, first, row, text_colour, background_colour);
  SelectColours(text_colour, background_colour);
  int& leftmost = leftmost_[static_cast<std::size_t>(row) - 1];
  int& right_end = right_end_[static_cast<std::size_t>(row) - 1];
  leftmost = std::min(leftmost, column);
  right_end = std::max(right_end, column - 1 + static_cast<int>(shown.size()));
  surface_.DrawText(positions_[first], Top(row), shown);
}

void ConsoleScreen::ClearArea(int first_row, int first_column, int last_row, int last_column) {
  const std::lock_guard lock(mutex_);
  const int text = selected_text_, background = selected_background_;
  for (int row = std::max(first_row, 1); row <= std::min(last_row, rows_); ++row) {
    for (int column = std::max(first_column, 1); column <= std::min(last_column, columns_); ++column) {
      const std::size_t cell = Index(row, column);
      if (positions_[cell] == 0) continue;
      EraseWith(cell, 1, row);
      characters_[cell] = u' ';
      positions_[cell] = 0;
      text_colours_[cell] = background_colours_[cell] = kScreenBackground;
    }
  }
  SelectColours(text, background);
}

void ConsoleScreen::Repaint() {
  {
    const std::lock_guard lock(mutex_);
    for (int row = 2; row < rows_; ++row) {
      const int first = leftmost_[static_cast<std::size_t>(row) - 1];
      const int last = right_end_[static_cast<std::size_t>(row) - 1];
      for (int column = first; column <= last; ++column) {
        const std::size_t cell = Index(row, column);
        // Between two texts lie cells that were never drawn: without a place, their blanks would cover the
        // row's beginning. The first column's place is 0, too.
        if (positions_[cell] == 0 && column > 1) continue;
        SelectColours(text_colours_[cell], background_colours_[cell]);
        surface_.DrawText(positions_[cell], Top(row), std::u16string_view(&characters_[cell], 1));
      }
    }
  }
  DrawFrame();
}

void ConsoleScreen::DrawFrame() {
  const std::lock_guard lock(mutex_);
  DrawEtchedFrame(surface_, 0, 0, surface_.Width(), surface_.Height(), kFrameThickness);
}

}  // namespace zentor
