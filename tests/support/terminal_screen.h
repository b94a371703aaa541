// What a terminal of a given size would show: just enough of one to read a panel from its output.
#pragma once

#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zentor::test {

// Understands cursor home, positions, erasing, line feeds, wrapping, the alternate screen and the cursor's
// visibility; colours are ignored. Every character takes one cell.
class TerminalScreen {
 public:
  TerminalScreen(int columns, int rows) { Resize(columns, rows); }

  void Resize(int columns, int rows) {
    columns_ = columns;
    rows_ = rows;
    for (Buffer* buffer : {&main_, &alternate_}) {
      buffer->resize(static_cast<std::size_t>(rows));
      for (auto& line : *buffer) line.resize(static_cast<std::size_t>(columns), " ");
    }
    row_ = std::min(row_, rows - 1);
    column_ = std::min(column_, columns - 1);
  }

  void Feed(std::string_view bytes) {
    for (const char byte : bytes) FeedOne(byte);
  }

  std::string Line(int row) const {
    std::string line;
    for (const auto& cell : (in_alternate_ ? alternate_ : main_)[static_cast<std::size_t>(row)]) line += cell;
    return line.substr(0, line.find_last_not_of(' ') + 1);
  }
  std::string Text() const {
    std::string text;
    for (int row = 0; row < rows_; ++row) text += Line(row) + '\n';
    return text;
  }
  bool Shows(std::string_view text) const { return Text().find(text) != std::string::npos; }
  bool InAlternate() const { return in_alternate_; }
  bool CursorVisible() const { return cursor_visible_; }

 private:
  using Buffer = std::vector<std::vector<std::string>>;

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
    Buffer& buffer = in_alternate_ ? alternate_ : main_;
    if (byte == '\r') {
      column_ = 0;
    } else if (byte == '\n') {
      LineFeed(buffer);
    } else if ((static_cast<unsigned char>(byte) & 0xC0U) == 0x80U) {
      if (last_ != nullptr) *last_ += byte;
    } else if (std::iscntrl(static_cast<unsigned char>(byte)) == 0) {
      if (column_ >= columns_) {
        column_ = wraps_ ? 0 : columns_ - 1;
        if (wraps_) LineFeed(buffer);
      }
      last_ = &buffer[static_cast<std::size_t>(row_)][static_cast<std::size_t>(column_++)];
      last_->assign(1, byte);
    }
  }

  void LineFeed(Buffer& buffer) {
    if (++row_ < rows_) return;
    row_ = rows_ - 1;
    buffer.erase(buffer.begin());
    buffer.emplace_back(static_cast<std::size_t>(columns_), " ");
    last_ = nullptr;
  }

  void Act(const std::string& parameters, char final) {
    Buffer& buffer = in_alternate_ ? alternate_ : main_;
    if (final == 'H') {
      row_ = column_ = 0;
    } else if (final == 'K') {
      EraseLine(buffer, row_, column_);
    } else if (final == 'J') {
      if (parameters != "2") EraseLine(buffer, row_, column_);
      for (int row = parameters == "2" ? 0 : row_ + 1; row < rows_; ++row) EraseLine(buffer, row, 0);
    } else if (parameters == "?1049") {
      in_alternate_ = final == 'h';
      std::swap(row_, other_row_);
      std::swap(column_, other_column_);
    } else if (parameters == "?25") {
      cursor_visible_ = final == 'h';
    } else if (parameters == "?7") {
      wraps_ = final == 'h';
    }
  }

  void EraseLine(Buffer& buffer, int row, int from) {
    auto& line = buffer[static_cast<std::size_t>(row)];
    std::fill(line.begin() + std::min(from, columns_), line.end(), std::string(1, ' '));
  }

  int columns_ = 0, rows_ = 0;
  int row_ = 0, column_ = 0;              // of the cursor
  int other_row_ = 0, other_column_ = 0;  // of the screen that is not shown
  bool in_alternate_ = false, cursor_visible_ = true, wraps_ = true;
  Buffer main_, alternate_;
  std::string sequence_;         // an escape sequence that is not complete yet
  std::string* last_ = nullptr;  // cell of the last character
};

}  // namespace zentor::test
