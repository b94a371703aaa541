// Warnings of a run: the most recent ones for the progress window, all of them for the run summary.
#pragma once

#include <deque>
#include <mutex>
#include <string>
#include <string_view>

namespace zentor {

// Invariant: at most rows + 1 recent warnings are held, and their text has at most (rows + 10) (columns + 1)
// characters; the log holds every warning of the run. Any thread.
class WarningStore {
 public:
  WarningStore(int rows, int columns)
      : most_(static_cast<std::size_t>(rows) + 1),
        room_(static_cast<std::size_t>(rows + 10) * static_cast<std::size_t>(columns + 1)) {}

  // log line: step text "+" elapsed time "+" warning.
  void Record(std::u16string_view warning, std::u16string_view step, std::u16string_view elapsed);

  // Each followed by a line feed, oldest first. A warning that is longer than the whole text is cut.
  std::u16string RecentText() const;
  std::u16string LogText() const;

 private:
  mutable std::mutex mutex_;
  std::size_t most_;  // recent warnings
  std::size_t room_;  // characters of their text
  std::size_t used_ = 0;
  std::deque<std::u16string> recent_;  // each with its line feed
  std::u16string log_;
};

}  // namespace zentor
