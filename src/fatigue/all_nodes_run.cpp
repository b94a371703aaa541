#include "fatigue/all_nodes_run.h"

#include <omp.h>

#include <algorithm>
#include <array>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "database/edit.h"
#include "fatigue/conditions.h"
#include "fatigue/node_evaluator.h"
#include "fatigue/node_result_file.h"
#include "fatigue/sn_preparation.h"
#include "fatigue/usage_table.h"
#include "services/stop.h"
#include "stress/pair_evaluation.h"
#include "stress/pair_listing.h"

namespace zentor {
namespace {

constexpr int kNoStressFile = 9061;
constexpr int kRunStarted = 9062;
// Nodes per block and per turn of a thread. A node's own stress history can take seconds, and a block is the
// unit of progress; the pairs of a node take microseconds.
constexpr int kBlockNodes = 4096;
constexpr int kTurnNodes = 64;
constexpr int kHistoryBlockNodes = 32;
constexpr int kHistoryTurnNodes = 1;
constexpr int kMostThreads = 256;  // each has a workspace

NodeRecord RecordOf(const StudyState& study, const NodeEvaluator& evaluator, int node,
                    const LocationResult& result) {
  NodeRecord record;
  record.node = node;
  record.usage = result.usage;
  record.biaxiality = result.biaxiality;
  if (study.definition.event_count == 1) {
    record.life = evaluator.Life(result);
    record.factor_of_safety = evaluator.FactorOfSafety(result);
  }
  return record;
}

class NodeLoop {
 public:
  NodeLoop(FatigueRun& run, NodeResultFile& results_file)
      : run_(run),
        results_file_(results_file),
        threads_(run.store.InMemory() ? std::clamp(omp_get_max_threads(), 1, kMostThreads) : 1) {
    const StudyState& study = run.study;
    total_ = study.properties.SurfaceOnly == 1 ? study.surface.node_count : study.sizes.node_count;
    step_ = ProgressStep(total_);
    if (IsVariableAmplitude(study.properties) && study.properties.SharedHistory != 1) {
      block_nodes_ = kHistoryBlockNodes;
      turn_nodes_ = kHistoryTurnNodes;
    }
    evaluator_ = IsVariableAmplitude(study.properties) ? MakeVariableAmplitudeEvaluator(run, threads_)
                                                       : MakeConstantAmplitudeEvaluator(run, threads_);
  }

  void Evaluate() {
    const int highest = run_.study.sizes.highest_node;
    for (int node = 1; node <= highest;) {
      nodes_.clear();
      for (; node <= highest && static_cast<int>(nodes_.size()) < block_nodes_; ++node) {
        if (IsEvaluated(node)) nodes_.push_back(node);
      }
      if (nodes_.empty()) continue;
      if (count_ == 0) PrepareFirst(nodes_.front());
      EvaluateBlock();
      WriteBlock();
    }
    evaluator_->Finish();
    results_file_.Finish(run_.study);
  }

 private:
  bool IsEvaluated(int node) const {
    const StudyState& study = run_.study;
    if (IsMultiStudy(study.properties)) {
      return study.properties.SurfaceOnly != 1 || study.surface.node[node] != 0;
    }
    const bool gaps = study.sizes.highest_node != study.sizes.node_count;
    return !gaps || DbSlotOf(run_.context.database, DbTable::kNod, node) != 0;
  }

  // What keeps the first node's pairs from being formed is told before what is wrong with the curves.
  void PrepareFirst(int node) {
    const LocationResult formed = evaluator_->Evaluate(node, true, 0);
    if (ArisesBeforeLookup(formed.condition)) ActOnCondition(run_, formed.condition, 0, node, node);
    PrepareCurves(run_, node);
    if (!HasUsableCurve(run_.study)) StopWithoutCurve(run_);
  }

  // An exception must not leave a thread: the first one found ends the block and is thrown here. While the
  // run is held, every thread waits in front of its next node; when it is being ended, none is evaluated any
  // more.
  void EvaluateBlock() {
    SolverServices& services = run_.context.services;
    results_.resize(nodes_.size());
    const auto count = static_cast<std::int64_t>(nodes_.size());
    const bool answered = run_.above_curve_answered;
    std::exception_ptr fault;
#pragma omp parallel for schedule(dynamic, turn_nodes_) num_threads(threads_)
    for (std::int64_t i = 0; i < count; ++i) {
      if (!services.KeepGoing()) continue;
      try {
        results_[i] = evaluator_->Evaluate(nodes_[i], answered, omp_get_thread_num());
      } catch (...) {
#pragma omp critical
        if (!fault) fault = std::current_exception();
      }
    }
    if (fault) std::rethrow_exception(fault);
    PassGate(services);
  }

  // Conditions are acted on in node order. Once the user accepts stresses above the curve, the nodes that
  // were evaluated before the answer are evaluated again with it.
  void Settle(int node, LocationResult& result) {
    while (result.condition != LocationCondition::kNone) {
      const bool accepted = result.condition == LocationCondition::kAboveCurve && run_.above_curve_answered;
      if (!accepted) ActOnCondition(run_, result.condition, result.argument, node, node);
      result = evaluator_->Evaluate(node, true, 0);
    }
  }

  void WriteBlock() {
    lines_.clear();
    try {
      for (std::size_t i = 0; i < nodes_.size(); ++i) WriteNode(nodes_[i], results_[i]);
    } catch (...) {  // the nodes before the one that ends the run keep their lines
      FlushLines();
      throw;
    }
    FlushLines();
    run_.context.listing.Flush();
  }

  void WriteNode(int node, LocationResult& result) {
    if (++count_ % step_ == 0) run_.context.services.ProgressBar(total_, count_);
    if (result.condition != LocationCondition::kNone) {
      FlushLines();
      Settle(node, result);
    }
    if (count_ == 1) WriteAllNodesHeading(run_.context.listing);
    AppendAllNodesLine(lines_, node, result.usage);
    StoreNodeUsage(run_, node, result.usage);
    results_file_.Add(RecordOf(run_.study, *evaluator_, node, result));
    evaluator_->Settled(node, result);
  }

  void FlushLines() {
    run_.context.listing.Append(lines_);
    lines_.clear();
  }

  FatigueRun& run_;
  NodeResultFile& results_file_;
  int threads_;
  int total_ = 0;
  int step_ = 1;
  int count_ = 0;  // nodes evaluated so far
  int block_nodes_ = kBlockNodes;
  int turn_nodes_ = kTurnNodes;
  std::unique_ptr<NodeEvaluator> evaluator_;
  std::vector<int> nodes_;  // of the current block
  std::vector<LocationResult> results_;
  std::string lines_;
};

// In multi-study mode every loading looks for its own file while the store is built.
void RequireStressFile(FatigueRun& run) {
  if (IsMultiStudy(run.study.properties) || IsVariableAmplitude(run.study.properties)) return;
  SolverServices& services = run.context.services;
  const std::array<Extension, 3> extensions = {".STP", ".STN", ".STE"};
  const bool found = std::any_of(extensions.begin(), extensions.end(),
                                 [&](Extension e) { return services.StudyFileExists(e); });
  if (found) return;
  run.context.listing.Line("  ERROR - No stress file");
  StopWithMessage(services, kNoStressFile);
}

void BuildStoreForAllNodes(FatigueRun& run) {
  std::vector<StoreLoading> loadings;
  for (const Loading& loading : run.study.definition.loadings) {
    loadings.push_back({loading.load_case, loading.time_step});
  }
  run.store = BuildNodalStressStore(run.context, run.study, loadings);
}

}  // namespace

int ProgressStep(int total) {
  if (total < 100) return 10;
  if (total < 250) return 25;
  if (total < 500) return 50;
  if (total < 1000) return 100;
  return total / 50;
}

void RunAllNodes(FatigueRun& run) {
  NodeResultFile results_file(run.context);
  RequireStressFile(run);
  BuildStoreForAllNodes(run);
  run.context.services.ShowMessage(kRunStarted, {}, Severity::kInformation);
  run.context.services.ProgressBar(0, 0);
  if (IsVariableAmplitude(run.study.properties)) {
    CountEventHistories(run.context, run.study, *run.matrices, run.variable);
  }
  NodeLoop(run, results_file).Evaluate();
  if (run.matrices) run.matrices->Finish();
  run.context.services.ProgressBar(100, 100);
  MarkUsageComplete(run);
}

}  // namespace zentor
