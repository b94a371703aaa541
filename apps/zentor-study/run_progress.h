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

// The text for a state of the run: "4000 of 27000 nodes (14 %), 1300 nodes/s, 18 s left".
std::string ProgressText(std::optional<std::uint64_t> done, std::uint64_t total, double seconds);

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
