// The elapsed time of a run.
#pragma once

#include <cstdint>
#include <mutex>

namespace zentor {

// Counts whole seconds from a start and stands still while somebody is asked something. Any thread.
class RunClock {
 public:
  // Counts from that moment, in seconds since 1970.
  void StartAt(std::int64_t start);
  // Counted: the clock goes on after as many Continue as there were Stop.
  void Stop();
  void Continue();
  std::int64_t Elapsed() const;

 private:
  mutable std::mutex mutex_;
  std::int64_t start_ = 0;  // moved forward by the time for which the clock stood
  std::int64_t stopped_at_ = 0;
  int stops_ = 0;
};

}  // namespace zentor
