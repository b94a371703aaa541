#include "progress/progress_rate.h"

#include <algorithm>

namespace zentor::progress {
namespace {

constexpr std::size_t kReports = 11;

}  // namespace

void ActiveClock::SetHeld(bool held, double now) {
  active_ = At(now);
  since_ = now;
  held_ = held;
}

void RateMeter::Add(std::int64_t count, double seconds) {
  if (!reports_.empty() && count < reports_.back().count) reports_.clear();
  if (reports_.empty()) first_ = {count, seconds};
  reports_.push_back({count, seconds});
  if (reports_.size() > kReports) reports_.pop_front();
}

std::optional<double> RateMeter::Between(const Report& from, const Report& to) {
  const double seconds = to.seconds - from.seconds;
  const auto count = static_cast<double>(to.count - from.count);
  if (seconds <= 0 || count <= 0) return std::nullopt;
  return count / seconds;
}

std::optional<double> RateMeter::PerSecond() const {
  return reports_.empty() ? std::nullopt : Between(reports_.front(), reports_.back());
}

std::optional<double> RateMeter::AveragePerSecond() const {
  return reports_.empty() ? std::nullopt : Between(first_, reports_.back());
}

std::optional<double> RateMeter::SecondsLeft(std::int64_t total, double seconds) const {
  const auto rate = PerSecond();
  if (!rate) return std::nullopt;
  const auto remaining = static_cast<double>(total - reports_.back().count);
  return std::max(0.0, remaining / *rate - (seconds - reports_.back().seconds));
}

}  // namespace zentor::progress
