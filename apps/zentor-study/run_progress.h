// Progress of a run on standard error: in a terminal one line that changes, elsewhere lines at most once a
// second.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <ostream>
#include <string>

#include "run_verdict.h"

namespace zentor::companion {

// Nodes written to ".FTR" so far; nothing while the file is not yet that of this run.
class NodeProgress {
 public:
  explicit NodeProgress(std::string path) : path_(std::move(path)), before_(StampOf(path_)) {}
  std::optional<std::uint64_t> Done() const;

 private:
  std::string path_;
  FileStamp before_;
};

// Turns counts of nodes, which come in large steps, into the text for a state of the run: "4000 of 27000
// nodes (14 %), 1300 nodes/s, 18 s left". The rate is that of the latest step, so it does not sink while the
// next one is awaited.
class ProgressText {
 public:
  explicit ProgressText(std::uint64_t total) : total_(total) {}
  std::string At(std::optional<std::uint64_t> done, double seconds);

 private:
  std::uint64_t total_;
  std::uint64_t done_ = 0;
  double changed_ = 0;  // seconds, when done_ came
};

class ProgressPrinter {
 public:
  ProgressPrinter(std::ostream& out, bool terminal) : out_(out), terminal_(terminal) {}
  // Seconds since the start of the run. Repeats nothing and keeps the rate of lines.
  void Update(const std::string& text, double seconds);
  // Leaves the terminal's line clean.
  void End();

 private:
  std::ostream& out_;
  bool terminal_;
  std::string last_;
  double next_ = 0;
};

}  // namespace zentor::companion
