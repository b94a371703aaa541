#include "fatigue/all_nodes_run.h"

#include <omp.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "database/edit.h"
#include "fatigue/conditions.h"
#include "fatigue/node_evaluator.h"
#include "fatigue/node_result_file.h"
#include "fatigue/sn_preparation.h"
#include "fatigue/turn_queue.h"
#include "fatigue/usage_table.h"
#include "services/stop.h"
#include "stress/pair_evaluation.h"
#include "stress/pair_listing.h"

namespace zentor {
namespace {

constexpr int kNoStressFile = 9061;
constexpr int kRunStarted = 9062;
// Nodes that a thread evaluates in one go, and between two flushes of the listing. A node's own stress
// history can take seconds, the pairs of a node take microseconds.
constexpr std::size_t kTurnNodes = 256;
constexpr int kFlushNodes = 4096;
constexpr std::size_t kHistoryTurnNodes = 1;
constexpr int kHistoryFlushNodes = 32;
constexpr std::size_t kTurnsAhead = 64;  // evaluated before they are written
constexpr int kMostThreads = 256;        // each has a workspace

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

// Nodes that a thread evaluates in one go, and what came of them.
struct Turn {
  std::vector<int> nodes;
  std::vector<LocationResult> results;  // one per node
  std::exception_ptr fault;
  bool abandoned = false;  // the run is being ended
};

// Calls work(); what it throws is returned.
template <typename Work>
std::exception_ptr FaultOf(Work&& work) {
  try {
    work();
  } catch (...) {
    return std::current_exception();
  }
  return nullptr;
}

class NodeLoop {
 public:
  NodeLoop(FatigueRun& run, NodeResultFile& results_file)
      : run_(run),
        results_file_(results_file),
        threads_(run.store.InMemory() ? std::clamp(omp_get_max_threads(), 1, kMostThreads) : 1),
        answered_(run.above_curve_answered) {
    const StudyState& study = run.study;
    total_ = study.properties.SurfaceOnly == 1 ? study.surface.node_count : study.sizes.node_count;
    step_ = ProgressStep(total_);
    if (IsVariableAmplitude(study.properties) && study.properties.SharedHistory != 1) {
      turn_nodes_ = kHistoryTurnNodes;
      flush_nodes_ = kHistoryFlushNodes;
    }
    evaluator_ = IsVariableAmplitude(study.properties) ? MakeVariableAmplitudeEvaluator(run, threads_)
                                                       : MakeConstantAmplitudeEvaluator(run, threads_);
  }

  void Evaluate() {
    while (turns_offered_ < static_cast<std::int64_t>(kTurnsAhead) && OfferTurn()) {
    }
    if (turns_offered_ > 0) PrepareFirst(turns_.front().nodes.front());
    // An exception must not leave a thread.
    std::exception_ptr fault;
#pragma omp parallel num_threads(threads_)
    if (omp_get_thread_num() == 0) {
      fault = FaultOf([this] { WriteTurns(); });
      queue_.Close();
    } else {
      while (const auto turn = queue_.Take()) EvaluateTurn(*turn);
    }
    if (fault) std::rethrow_exception(fault);
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
    if (ArisesBeforeLookup(formed.condition)) {
      run_.lost.Add(node, formed.lost);
      ActOnCondition(run_, formed.condition, 0, node, node);
    }
    PrepareCurves(run_, node);
    if (!HasUsableCurve(run_.study)) StopWithoutCurve(run_);
  }

  Turn& PlaceOf(std::int64_t turn) { return turns_[static_cast<std::size_t>(turn) % turns_.size()]; }

  // Offers the next nodes of the run as a turn; false when there are none left.
  bool OfferTurn() {
    std::vector<int>& nodes = PlaceOf(turns_offered_).nodes;
    nodes.clear();
    const int highest = run_.study.sizes.highest_node;
    for (; next_node_ <= highest && nodes.size() < turn_nodes_; ++next_node_) {
      if (IsEvaluated(next_node_)) nodes.push_back(next_node_);
    }
    if (nodes.empty()) return false;
    queue_.Offer();
    ++turns_offered_;
    return true;
  }

  // Any thread. While the run is held, every thread waits in front of its next node; when it is being ended,
  // none is evaluated any more.
  void EvaluateTurn(std::int64_t number) {
    Turn& turn = PlaceOf(number);
    turn.fault = FaultOf([&] {
      const int thread = omp_get_thread_num();
      turn.results.resize(turn.nodes.size());
      for (std::size_t i = 0; i < turn.nodes.size() && !turn.abandoned; ++i) {
        turn.abandoned = !run_.context.services.KeepGoing();
        if (!turn.abandoned) turn.results[i] = evaluator_->Evaluate(turn.nodes[i], answered_, thread);
      }
    });
    queue_.Finish(number);
  }

  // Solver thread: writes the turns in order, and evaluates like the others while the next one is not ready.
  void WriteTurns() {
    for (std::int64_t number = 0; number < turns_offered_; ++number) {
      while (!queue_.IsFinished(number)) {
        if (const auto turn = queue_.TryTake()) {
          EvaluateTurn(*turn);
        } else {
          queue_.WaitFor(number);
        }
      }
      Turn& turn = PlaceOf(number);
      if (turn.fault) std::rethrow_exception(turn.fault);
      if (turn.abandoned) StopStatement();
      PassGate(run_.context.services);
      WriteTurn(turn);
      OfferTurn();
    }
    run_.context.listing.Flush();
  }

  // Conditions are acted on in node order. Once the user accepts stresses above the curve, the nodes that
  // were evaluated before the answer are evaluated again with it.
  void Settle(int node, LocationResult& result) {
    while (result.condition != LocationCondition::kNone) {
      const bool accepted = result.condition == LocationCondition::kAboveCurve && run_.above_curve_answered;
      if (!accepted) ActOnCondition(run_, result.condition, result.argument, node, node);
      answered_ = run_.above_curve_answered;
      result = evaluator_->Evaluate(node, true, 0);
    }
  }

  void WriteTurn(Turn& turn) {
    try {
      for (std::size_t i = 0; i < turn.nodes.size(); ++i) WriteNode(turn.nodes[i], turn.results[i]);
    } catch (...) {  // the nodes before the one that ends the run keep their lines
      FlushLines();
      throw;
    }
    FlushLines();
    if (count_ - flushed_ < flush_nodes_) return;
    run_.context.listing.Flush();
    flushed_ = count_;
  }

  void WriteNode(int node, LocationResult& result) {
    if (++count_ % step_ == 0) run_.context.services.ProgressBar(total_, count_);
    run_.lost.Add(node, result.lost);
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
  int count_ = 0;    // nodes written so far
  int flushed_ = 0;  // of them, those in front of the last flush of the listing
  int next_node_ = 1;
  std::size_t turn_nodes_ = kTurnNodes;
  int flush_nodes_ = kFlushNodes;
  std::vector<Turn> turns_{kTurnsAhead};  // by place
  TurnQueue queue_{kTurnsAhead};
  std::int64_t turns_offered_ = 0;
  std::atomic<bool> answered_;  // the question above the curve, as the threads may know
  std::unique_ptr<NodeEvaluator> evaluator_;
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
