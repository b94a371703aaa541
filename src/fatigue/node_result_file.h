// ".FTR": one record per evaluated node of an all-nodes run, for the post-processor (docs/formats/ftr.md).
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "fatigue/fatigue_run.h"

namespace zentor {

inline constexpr std::size_t kNodeRecordLength = 40;  // bytes: 10 words
inline constexpr double kUnlimitedLife = 1.0e32;      // stands for "no limit" in a node record

// What a node record holds; every value is stored in single precision.
struct NodeRecord {
  int node = 0;
  double life = 0.0;              // studies with one event only, else 0
  double usage = 0.0;             // cumulative usage factor
  double factor_of_safety = 0.0;  // studies with one event only, else 0
  double biaxiality = 0.0;        // cycle-weighted mean of the pairs
};

// Writes node records in the order they are added and the header last, so that a file without a header marks
// a run that did not finish. Throws FileError.
class NodeResultFile {
 public:
  // Replaces an older ".FTR" of the study.
  explicit NodeResultFile(RunContext& run);
  ~NodeResultFile();
  NodeResultFile(const NodeResultFile&) = delete;
  NodeResultFile& operator=(const NodeResultFile&) = delete;

  void Add(const NodeRecord& record);
  void Flush();                          // writes the gathered records
  void Finish(const StudyState& study);  // flushes, writes the header, closes

 private:
  std::unique_ptr<platform::RandomAccessFile> file_;  // null behind Finish
  std::vector<std::byte> pending_;
  std::uint64_t next_offset_ = kNodeRecordLength;
};

}  // namespace zentor
