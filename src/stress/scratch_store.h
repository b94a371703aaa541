// ".SFA": the scratch file of the nodal stress store (docs/formats/sfa.md). Always created; it
// holds stresses only when they do not fit into memory.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "stress/step_stresses.h"
#include "stress/stress_result_file.h"
#include "study/run_context.h"

namespace zentor {

class ScratchStore {
 public:
  // Replaces an older file; its records 1 to 4 are written, record 1 as "not complete". Throws FileError.
  ScratchStore(RunContext& run, const FatigueProperties& properties, const StressResultFile& stresses);

  // Appends one record per node with contributions, in ascending node number. Slots are written in order.
  void WriteSlot(NodalSums nodal);
  // Marks the file as complete.
  void Finish();

  // The six components; zeros for a node without contributions. Neighbouring nodes of a slot share one read.
  // One thread. Throws FileError; InputFault when the file has become shorter.
  void Read(int node, int slot, std::span<float, 6> out);

 private:
  using CompactNumbers = std::vector<std::int32_t>;  // by node: 1, 2, ... in ascending node number, or 0
  struct Slot {
    std::int64_t first_record = 0;
    std::shared_ptr<const CompactNumbers> compact;  // slots with the same nodes share them
    // Records held in memory.
    std::int64_t held_first = 0;
    std::vector<std::byte> held;
  };

  void WriteWords(std::int64_t record, std::span<const std::int32_t> words);
  void Hold(Slot& slot, std::int64_t record);

  std::string path_;
  std::unique_ptr<platform::RandomAccessFile> file_;
  std::int64_t last_record_ = 0;
  std::vector<Slot> slots_;
};

}  // namespace zentor
