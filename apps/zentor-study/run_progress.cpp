#include "run_progress.h"

#include <fmt/format.h>

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

std::string ProgressText(std::optional<std::uint64_t> done, std::uint64_t total, double seconds) {
  if (!done || *done == 0 || total == 0) return fmt::format("running, {:.0f} s", seconds);
  const std::uint64_t nodes = std::min(*done, total);
  std::string text = fmt::format("{} of {} nodes ({} %)", nodes, total, 100 * nodes / total);
  if (seconds >= 1) {
    const double rate = static_cast<double>(nodes) / seconds;
    text += fmt::format(", {:.0f} nodes/s, {:.0f} s left", rate, static_cast<double>(total - nodes) / rate);
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
