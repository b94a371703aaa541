// What a terminal of a given size would show: just enough of one to read a panel from its output.
#pragma once

#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zentor::test {

// Understands cursor home, erasing, line feeds, wrapping, the alternate screen and the cursor's visibility;
// colours are ignored. Every byte takes one cell.
class TerminalScreen {
 public:
  TerminalScreen(int columns, int rows) { Resize(columns, rows); }

  void Resize(int columns, int rows) {
    columns_ = static_cast<std::size_t>(columns);
    for (Lines* lines : {&shown_, &other_}) {
      lines->resize(static_cast<std::size_t>(rows));
      for (std::string& line : *lines) line.resize(columns_, ' ');
    }
    row_ = std::min(row_, shown_.size() - 1);
    column_ = std::min(column_, columns_ - 1);
  }

  void Feed(std::string_view bytes) {
    for (const char byte : bytes) FeedOne(byte);
  }

  std::string Line(std::size_t row) const {
    return shown_[row].substr(0, shown_[row].find_last_not_of(' ') + 1);
  }
  std::string Text() const {
    std::string text;
    for (std::size_t row = 0; row < shown_.size(); ++row) text += Line(row) + '\n';
    return text;
  }
  bool Shows(std::string_view text) const { return Text().find(text) != std::string::npos; }
  bool InAlternate() const { return in_alternate_; }
  bool CursorVisible() const { return cursor_visible_; }

 private:
  using Lines = std::vector<std::string>;

  void FeedOne(char byte) {
    if (sequence_.empty() && byte != '\x1b') return Print(byte);
    sequence_ += byte;
    if (sequence_.size() == 2 && byte != '[') return sequence_.clear();
    if (sequence_.size() > 2 && byte >= '@' && byte <= '~') {
      Act(sequence_.substr(2, sequence_.size() - 3), byte);
      sequence_.clear();
    }
  }

  void Print(char byte) {
    if (byte == '\r') {
      column_ = 0;
    } else if (byte == '\n') {
      LineFeed();
    } else if (std::iscntrl(static_cast<unsigned char>(byte)) == 0) {
      if (column_ >= columns_) {
        column_ = wraps_ ? 0 : columns_ - 1;
        if (wraps_) LineFeed();
      }
      shown_[row_][column_++] = byte;
    }
  }

  void LineFeed() {
    if (++row_ < shown_.size()) return;
    --row_;
    shown_.erase(shown_.begin());
    shown_.emplace_back(columns_, ' ');
  }

  void Act(const std::string& parameters, char final) {
    if (final == 'H') {
      row_ = column_ = 0;
    } else if (final == 'K' || final == 'J') {
      const bool all = final == 'J' && parameters == "2";
      if (!all)
        std::fill(shown_[row_].begin() + static_cast<std::ptrdiff_t>(column_), shown_[row_].end(), ' ');
      for (std::size_t row = all ? 0 : row_ + 1; final == 'J' && row < shown_.size(); ++row)
        shown_[row].assign(columns_, ' ');
    } else if (parameters == "?1049" && in_alternate_ != (final == 'h')) {
      in_alternate_ = final == 'h';
      std::swap(shown_, other_);
      std::swap(row_, other_row_);
      std::swap(column_, other_column_);
    } else if (parameters == "?25") {
      cursor_visible_ = final == 'h';
    } else if (parameters == "?7") {
      wraps_ = final == 'h';
    }
  }

  std::size_t columns_ = 0;
  std::size_t row_ = 0, column_ = 0;              // of the cursor
  std::size_t other_row_ = 0, other_column_ = 0;  // of the screen that is not shown
  bool in_alternate_ = false, cursor_visible_ = true, wraps_ = true;
  Lines shown_, other_;
  std::string sequence_;  // an escape sequence that is not complete yet
};

}  // namespace zentor::test
