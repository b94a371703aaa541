#include "run_progress.h"

#include <fmt/format.h>

#include <algorithm>

namespace zentor::companion {

namespace {

constexpr std::uint64_t kNodeRecordBytes = 40;
constexpr double kLineInterval = 1.0;
constexpr double kTerminalInterval = 0.2;

}  // namespace

std::optional<std::uint64_t> NodeProgress::Done() const {
  const FileStamp now = StampOf(path_);
  if (!now.exists || now == before_) return std::nullopt;
  return now.size < kNodeRecordBytes ? 0 : now.size / kNodeRecordBytes - 1;
}

std::string ProgressText::At(std::optional<std::uint64_t> done, double seconds) {
  const std::uint64_t nodes = std::min(done.value_or(0), total_);
  if (nodes == 0) return fmt::format("running, {:.0f} s", seconds);
  if (nodes != done_) {
    done_ = nodes;
    changed_ = seconds;
  }
  std::string text = fmt::format("{} of {} nodes ({} %)", nodes, total_, 100 * nodes / total_);
  if (changed_ >= 1) {
    const double rate = static_cast<double>(nodes) / changed_;
    const double left = static_cast<double>(total_ - nodes) / rate - (seconds - changed_);
    text += fmt::format(", {:.0f} nodes/s, {:.0f} s left", rate, std::max(0.0, left));
  }
  return text;
}

void ProgressPrinter::Update(const std::string& text, double seconds) {
  if (seconds < next_ || text == last_) return;
  next_ = seconds + (terminal_ ? kTerminalInterval : kLineInterval);
  last_ = text;
  if (terminal_) {
    out_ << "\r\x1b[K" << text << std::flush;
  } else {
    out_ << text << std::endl;
  }
}

void ProgressPrinter::End() {
  if (terminal_ && !last_.empty()) out_ << "\r\x1b[K" << std::flush;
  last_.clear();
}

}  // namespace zentor::companion
