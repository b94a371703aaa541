// Evaluation of one node of a variable-amplitude study, and what all nodes have in common.
#pragma once

#include <cstdint>
#include <vector>

#include "fatigue/combined_load_table.h"
#include "fatigue/cycle_classes.h"
#include "fatigue/load_history.h"
#include "fatigue/matrix_file.h"
#include "fatigue/rainflow.h"

namespace zentor {

// Made once per run, const to the evaluation of the nodes.
struct VariableAmplitude {
  LoadHistory history;
  CombinedLoadTable table;    // without a shared history
  RangeMeanMatrix counted;    // the event counted last; of a shared history the one every node uses
  CycleClasses load_classes;  // shared history
};

// Everything the evaluation of a node writes; one per thread. After EvaluateVariableNode it holds the node's
// classes and the edges of its bins.
struct VariableWorkspace {
  std::vector<float> history;  // equivalent stress history
  RainflowState rainflow;
  RangeMeanMatrix matrix;
  CycleClasses classes;
  StressScales scales;
  BinEdges edges;
  std::vector<float> damage;         // filled by NodeMatrices when the node gets blocks in ".FTD"
  std::vector<std::int32_t> cycles;  // the same
};

// Study input: loads the histories of all events and, without a shared history, combines them. Stops and
// faults as LoadEventHistories and BuildCombinedLoadTable say.
void PrepareHistories(RunContext& run, StudyState& study, VariableAmplitude& variable);

// Counts every event's history in event order and writes its block; prints the matrix of a shared history
// into the listing and forms its classes. A study with one range bin gets a warning (message 9072). Stops the
// run with message 9060 or 9071 (argument 0) for a history that cannot be counted.
void CountEventHistories(RunContext& run, const StudyState& study, MatrixFile& file,
                         VariableAmplitude& variable);

// REQUIRES: CountEventHistories done.
VariableWorkspace MakeVariableWorkspace(const StudyState& study, const VariableAmplitude& variable);

// A pure function of the study, the prepared histories and the node's stress states (each loading's stored
// stresses times its scale factor; loading e belongs to event e). Allocates nothing once the workspace's
// stack has grown.
LocationResult EvaluateVariableNode(const StudyState& study, const VariableAmplitude& variable,
                                    const LoadingStates& states, int material, bool above_answered,
                                    VariableWorkspace& work);

// Writes the blocks of the node evaluated last.
void WriteNodeMatrices(const StudyState& study, int node, MatrixFile& file, VariableWorkspace& work);

}  // namespace zentor
