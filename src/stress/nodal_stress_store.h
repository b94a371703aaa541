// The averaged nodal stresses of every distinct loading of a study.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "study/run_context.h"
#include "study/stress_tensor.h"
#include "study/study_state.h"

namespace zentor {

// A loading as the store sees it: load case (0, negative ones and kZeroLoadCase own nothing) and time step
// (multi-study mode: line of the study list).
struct StoreLoading {
  int load_case = 0;
  int time_step = 0;
};

// Six single-precision components per node and slot: SX, SY, SZ, TXY, TXZ, TYZ; nodes 1 .. node_count, slots
// 1 .. n in order of first appearance in the loading list. Held in memory, or in the scratch file ".SFA" when
// it does not fit.
class NodalStressStore {
 public:
  NodalStressStore();
  NodalStressStore(NodalStressStore&&) noexcept;
  NodalStressStore& operator=(NodalStressStore&&) noexcept;
  ~NodalStressStore();

  int slot_count() const;
  int node_count() const;
  bool InMemory() const;
  // Slot of loading k (1-based place in the list the store was built for), 0 when it owns none.
  int SlotOf(int loading) const;
  // The six components as stored, zeros for a node without contributions or outside 1 .. node_count.
  // Memory mode: safe from several threads at once. File mode: one thread; throws FileError.
  StressTensor NodalStress(int node, int slot) const;
  // Memory mode only: 6 floats per node of a slot, node-major, (node - 1) * 6 first; empty in file mode.
  std::span<const float> Slot(int slot) const;
  // Whether the run created ".SFA".
  bool CreatedScratchFile() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
  friend NodalStressStore BuildNodalStressStore(RunContext& run, StudyState& study,
                                                std::span<const StoreLoading> loadings);
};

// Reads and averages the stresses of every distinct loading for nodes 1 .. study.sizes.highest_node with the
// study's shell surface and layer. Stops the run (RunStopped) or throws InputFault as
// docs/formats/stress-files.md lists. Replaces study.properties.PointerWidth by the file's, and
// study.stress_kind in multi-study mode.
NodalStressStore BuildNodalStressStore(RunContext& run, StudyState& study,
                                       std::span<const StoreLoading> loadings);

// The slot of a loading whose stresses are needed. Stops the run when the store has none for it.
int RequireSlot(RunContext& run, const FatigueProperties& properties, const NodalStressStore& store,
                int loading, int load_case);

// Node stress from the nodal result records (no stress file of any kind): step 0 reads ".PL1", a positive
// step the step file ".PL4". False when the node does not exist or the model has no nodes. Stops the run for
// a negative step or a missing step file.
bool NodeStressFromResultRecords(RunContext& run, const StudyState& study, int step, int node,
                                 StressTensor& out);

}  // namespace zentor
