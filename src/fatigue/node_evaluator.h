// The evaluation of a node as the node loops see it: constant or variable amplitude.
#pragma once

#include <memory>
#include <vector>

#include "fatigue/fatigue_run.h"
#include "stress/pair_evaluation.h"

namespace zentor {

// Results are a pure function of the study, the stress store and the node. Calls with different thread
// numbers may run at once.
class NodeEvaluator {
 public:
  virtual ~NodeEvaluator() = default;
  // thread: 0 .. threads - 1; above_answered: the user accepted stresses above the S-N curve.
  virtual LocationResult Evaluate(int node, bool above_answered, int thread) = 0;
  // What a node record holds beyond the usage factor, by the study's kind.
  virtual double Life(const LocationResult& result) const = 0;            // studies with one event
  virtual double FactorOfSafety(const LocationResult& result) const = 0;  // studies with one event
  // Called in node order for every evaluated node once its result stands.
  virtual void Settled(int node, const LocationResult& result) = 0;
  // Called once behind the last node.
  virtual void Finish() = 0;
};

// `threads` workspaces are allocated once; a node allocates nothing.
std::unique_ptr<NodeEvaluator> MakeConstantAmplitudeEvaluator(FatigueRun& run, int threads);
// Writes the matrices of the listed nodes and, at the end, of the worst node.
std::unique_ptr<NodeEvaluator> MakeVariableAmplitudeEvaluator(FatigueRun& run, int threads);

}  // namespace zentor
