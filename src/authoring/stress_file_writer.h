// Writes a stress result file (".STE", ".STN", ".STP") step by step and element by element
// (docs/formats/stress-files.md); needs 12 bytes of memory per element and one buffer.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "authoring/study_definition.h"
#include "platform/files.h"

namespace zentor {

struct StressFilePlan {
  StressFileKind kind = StressFileKind::kSte;
  int pointer_width = 1;  // header word 18: 0 and 1 mean 32-bit pointers, 2 means 64-bit pointers
  int steps = 0;
  int step_capacity = 0;  // entries of the step table when more than steps
  int highest_element = 0;
};

// The stresses of one element. values, in the order SX SY SZ TXY TXZ TYZ:
//   line elements (types 1, 8): one value
//   shells:                     shape (layers, 2, nodes, 6), top before bottom
//   every other type:           shape (layers, nodes, 6)
struct ElementStress {
  int element = 0;
  int type_code = 0;
  int layers = 1;
  std::span<const std::int32_t> nodes;
  std::span<const float> values;
};

// Number of values that an element of that type, node count and layer count takes; 0 for a type without
// stresses.
std::size_t StressValueCount(int type_code, int nodes, int layers);

class StressFileWriter {
 public:
  // Replaces the file. Until Finish has run it has no header, so that nobody takes a part of it for the
  // whole.
  StressFileWriter(platform::FileSystem& files, const std::string& path, const StressFilePlan& plan);

  // Starts the next step (the first call: step 1); SkipStep leaves it without data.
  void BeginStep();
  void SkipStep();
  // Adds an element to the step. The first step that is begun fixes which elements have records, and how long
  // these are; a later step may leave some out, and is written fastest in the same order. Throws
  // std::invalid_argument naming the element when it does not fit.
  void Add(const ElementStress& stress);
  // Writes the tables and the header. Throws std::length_error when the pointers need two words and have one.
  void Finish();

 private:
  void PlaceRecord(const ElementStress& stress, std::int64_t words);
  std::span<std::byte> Buffered(std::uint64_t offset, std::size_t bytes);
  void Flush();
  void NextStep();
  void EndStep();
  std::vector<std::byte> Pointers(std::span<const std::int64_t> pointers, std::size_t count) const;

  std::unique_ptr<platform::RandomAccessFile> file_;
  std::string path_;
  StressFilePlan plan_;
  std::vector<std::int64_t> step_offsets_;      // bytes, 0: no data
  std::vector<std::int64_t> element_pointers_;  // words from 1, 0: no record
  std::vector<std::int32_t> record_words_;
  std::int64_t block_words_ = 0;  // length of a step's block
  bool layout_fixed_ = false;     // the block of the first step is complete
  bool step_open_ = false;
  std::uint64_t step_start_ = 0, next_start_ = 0;
  std::uint64_t buffer_start_ = 0;  // file offset of buffer_
  std::vector<std::byte> buffer_;
};

}  // namespace zentor
