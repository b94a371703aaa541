// Warnings of a run: the most recent ones for the progress window, all of them for the run summary.
#pragma once

#include <deque>
#include <mutex>
#include <string>
#include <string_view>

namespace zentor {

// Invariant: at most rows + 1 recent warnings are held; the log holds every warning of the run. Any thread.
class WarningStore {
 public:
  explicit WarningStore(int rows) : capacity_(static_cast<std::size_t>(rows) + 1) {}

  // log line: step text "+" elapsed time "+" warning.
  void Record(std::u16string_view warning, std::u16string_view step, std::u16string_view elapsed);

  // Each followed by a line feed, oldest first.
  std::u16string RecentText() const;
  std::u16string LogText() const;

 private:
  mutable std::mutex mutex_;
  std::size_t capacity_;
  std::deque<std::u16string> recent_;
  std::u16string log_;
};

}  // namespace zentor
