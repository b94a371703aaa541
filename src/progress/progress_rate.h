// Speed of a run and the time it still needs, from the counts that the solver reports now and then.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>

namespace zentor::progress {

// A clock that stands still while the run is held. Seconds; `now` never decreases from call to call.
class ActiveClock {
 public:
  void SetHeld(bool held, double now);
  double At(double now) const { return held_ ? active_ : active_ + (now - since_); }

 private:
  double active_ = 0;  // up to `since_`
  double since_ = 0;
  bool held_ = false;
};

// Counts per second over the last reports: a fifth of the usual run, so that the rate follows a model whose
// nodes take unequal time.
class RateMeter {
 public:
  // `count` items are done at `seconds` of active time. A count below the last one starts anew.
  void Add(std::int64_t count, double seconds);
  // Nothing until two reports lie apart in time.
  std::optional<double> PerSecond() const;
  // Of all reports since the count began.
  std::optional<double> AveragePerSecond() const;
  // Seconds until `total` at the present rate, counted down since the last report; never negative.
  std::optional<double> SecondsLeft(std::int64_t total, double seconds) const;

 private:
  struct Report {
    std::int64_t count;
    double seconds;
  };
  static std::optional<double> Between(const Report& from, const Report& to);

  std::deque<Report> reports_;  // the last ones, oldest first
  Report first_{};
};

}  // namespace zentor::progress
