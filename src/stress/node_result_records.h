// Node stresses kept node by node instead of element by element: the table ".PL1" of the static solution and
// the step files ".PL3" and ".PL4" (docs/formats/node-records.md).
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "study/run_context.h"

namespace zentor {

// The kinds of step files; the numbers are those of the callers' requests.
enum class StepFileKind : int { kPl3 = 1, kPl4 = 3 };

// An open step file. Record numbers count from 1; node n of the step has record first_record + n.
struct StepFile {
  int unit = 0;
  std::int64_t first_record = 0;
  std::size_t record_length = 0;  // bytes
};

// Opens the step file of a kind for a step >= 1: 0, and 1 when there is none, which has then been reported
// (listing and message). The caller closes the unit. Throws FileError when it is there and cannot be opened.
int StepFileOpen(RunContext& run, int step, StepFileKind kind, StepFile& file);

// The node's values. Step 0: fields first .. last of its ".PL1" entity (zeros without one). Later steps: six
// values from the start of row `row` (from 1, rows of 144 bytes) of its step record, and the following four
// when last > 6. Throws InputFault when the step file does not hold the record or a value is not finite.
// REQUIRES: out has room for them.
void NodeResultRead(RunContext& run, int step, int node, int first, int last, std::span<float> out,
                    const StepFile& file, int row);

}  // namespace zentor
