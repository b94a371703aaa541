// ".FTD": range-mean matrices of a variable-amplitude run, for the post-processor (docs/formats/ftd.md).
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "fatigue/cycle_classes.h"
#include "fatigue/rainflow.h"
#include "study/run_context.h"
#include "study/study_state.h"

namespace zentor {

// Lower edges and widths of the bins of a matrix, in the unit of its values.
struct BinEdges {
  float range_origin = 0.0F, range_width = 0.0F;
  float mean_origin = 0.0F, mean_width = 0.0F;
};
BinEdges EdgesOf(const RangeMeanMatrix& matrix);
// Edges in load units turned into stresses of a node.
BinEdges Scaled(const BinEdges& edges, const StressScales& scales);

// The file of one run. Blocks are written once each, in the order of the calls; a write that fails throws
// FileError.
class MatrixFile {
 public:
  // Replaces an older file; writes the header with the provisional number of node block pairs.
  MatrixFile(RunContext& run, const StudyState& study);
  MatrixFile(const MatrixFile&) = delete;
  MatrixFile& operator=(const MatrixFile&) = delete;

  // Events 1 .. E in order, before any node.
  void WriteEvent(int event, const BinEdges& edges, std::span<const std::int32_t> counts);
  // The damage and cycle matrices of a node, each of shape (M, R). REQUIRES: fewer than kMostNodes pairs
  // written.
  void WriteNode(int node, const BinEdges& edges, std::span<const float> damage,
                 std::span<const std::int32_t> cycles);
  int nodes_written() const { return nodes_; }
  // End of an all-nodes run: the number of node block pairs goes into the header. Closes the file.
  void Finish();

  static constexpr int kMostNodes = 41;  // the listed nodes and the worst node

 private:
  void WriteWord(int word, std::int32_t value);
  template <typename Word>
  void WriteBlock(int block, int identifier, const BinEdges& edges, std::span<const Word> matrix);

  std::unique_ptr<platform::RandomAccessFile> file_;  // null behind Finish
  int events_ = 0;
  int nodes_ = 0;
  std::size_t block_words_ = 0;  // B
  std::vector<std::byte> block_;
};

}  // namespace zentor
