// Whole runs of a study, each in a process of its own, so that neither its memory nor its time owes anything
// to what was measured before.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace zentor::bench {

struct ChildRun {
  double seconds = 0.0;                 // the whole run
  double store_seconds = 0.0;           // until the first node: study input and nodal stress store
  double processor_seconds = 0.0;       // of all threads, which other work on the machine hardly changes
  double node_processor_seconds = 0.0;  // of them, from the first node to the last
  std::uint64_t peak_bytes = 0;
};

// Runs the all-nodes study in a child process with that many threads. Throws std::runtime_error when the run
// does not come to its regular end.
ChildRun RunInChild(const std::string& base, int threads);

// The child's side: when the arguments of the program are those of such a child, makes the run, prints its
// ChildRun and returns the exit code. To be asked first in main.
std::optional<int> RunAsChild(int argc, char** argv);

}  // namespace zentor::bench
