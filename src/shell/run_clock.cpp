#include "shell/run_clock.h"

#include "platform/system.h"

namespace zentor {

void RunClock::StartAt(std::int64_t start) {
  const std::lock_guard lock(mutex_);
  start_ = start;
}

void RunClock::Stop() {
  const std::lock_guard lock(mutex_);
  if (stops_++ == 0) stopped_at_ = platform::SecondsSince1970();
}

void RunClock::Continue() {
  const std::lock_guard lock(mutex_);
  if (stops_ > 0 && --stops_ == 0) start_ += platform::SecondsSince1970() - stopped_at_;
}

std::int64_t RunClock::Elapsed() const {
  const std::lock_guard lock(mutex_);
  return (stops_ > 0 ? stopped_at_ : platform::SecondsSince1970()) - start_;
}

}  // namespace zentor
