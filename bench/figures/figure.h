// The figures of the performance report: each is a ratio of two things measured in the same run.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace zentor::bench {

struct ReportOptions {
  bool quick = false;  // smaller inputs and fewer rounds: the whole report within two minutes
};

enum class Sense : int {
  kAtLeast,  // the measured value should be the goal or more
  kAtMost    // the goal or less
};

struct Figure {
  std::string name;
  std::string reference;  // what the value is a ratio to
  double measured = 0.0;
  Sense sense = Sense::kAtLeast;
  double goal = 0.0;
  double stretch = 0.0;
  std::string unit = "x";  // of the three values
  std::string note;        // absolute rates, sizes
};

inline bool Reaches(const Figure& figure, double bar) {
  return figure.sense == Sense::kAtLeast ? figure.measured >= bar : figure.measured <= bar;
}

// printf into a text.
[[gnu::format(printf, 1, 2)]] std::string Formatted(const char* format, ...);

// Says on standard error what is being measured.
void Announce(const std::string& what);

// Seconds of one call, wall clock.
double SecondsOf(const std::function<void()>& work);

// A reference and its fast form, timed in turn `rounds` times, so that what else the machine does falls on
// both alike.
struct Paired {
  double reference_seconds = 0.0;  // medians
  double seconds = 0.0;
  double ratio = 0.0;  // median of reference / fast, round by round
};
Paired TimePaired(int rounds, const std::function<void()>& reference, const std::function<void()>& fast);

// What one part of the report measures; each in a file of its own.
using Measurement = std::vector<Figure> (*)(const ReportOptions& options);

}  // namespace zentor::bench
