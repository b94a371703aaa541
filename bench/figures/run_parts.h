// The parts of an all-nodes run, each alone and as fast as the machine does it.
#pragma once

#include <string>

namespace zentor::bench {

struct PartSeconds {
  double reading = 1e30;     // the stress file in 1 MiB blocks, its parts shared by the threads
  double evaluating = 1e30;  // every node by the evaluator of the run, the nodes shared by the threads
  double formatting = 1e30;  // the node lines of the listing, shared by the threads
  double writing = 1e30;     // as many bytes as the run writes, in 1 MiB blocks
  double Sum() const { return reading + evaluating + formatting + writing; }
};

// The best of `rounds` of every part. The study has been run before: its results tell how much is written.
PartSeconds MeasureParts(const std::string& base, int threads, int rounds);

}  // namespace zentor::bench
