// The element stresses of one step, added up at the nodes.
#pragma once

#include <array>
#include <cstdint>
#include <mutex>
#include <span>

#include "stress/stress_result_file.h"
#include "study/run_context.h"

namespace zentor {

// Thrown when an element record has fewer layers than the requested one; only the solver thread may report
// it.
struct LayerNotStored {
  int element = 0;
};

// Nodes of line elements, which their stress records do not hold, from the model database. May be asked from
// several threads while the solver thread does nothing else with the database.
class LineElements {
 public:
  explicit LineElements(ModelDatabase& database) : database_(database) {}
  std::array<std::int32_t, 2> NodesOf(int element);  // zeros when the element does not exist
  std::string path() const;
  bool KeepGoing() const;  // the gate of the run

 private:
  ModelDatabase& database_;
  std::mutex mutex_;
};

// What is read of a stress file: which step, whose elements, which layer and surface.
struct StepSelection {
  int step = 0;
  int element_count = 0;  // elements 1 .. element_count have pointers and are in the model
  int layer = 1;
  Surface surface = Surface::kTop;
};

// Sums (6 per node) and number of contributions of nodes 1 .. counts.size().
struct NodalSums {
  std::span<float> sums;
  std::span<std::int32_t> counts;
};

// Adds the contributions of every element in ascending element number, in single precision. Elements without
// a pointer and records of another element add nothing. A line element, or one with direct stresses only,
// adds nothing to a node that has exactly one contribution. Throws InputFault for a record that cannot be
// true and for a node outside the model, LayerNotStored. A pure function of the file: any thread may call it.
// Stops early, with incomplete sums, when the run is being ended.
void AddStep(const StressResultFile& file, const StepSelection& selection, LineElements& lines,
             NodalSums nodal);

// Turns sums into means: multiplies them by 1 / count in single precision. False when a mean is not a finite
// number.
bool AverageNodes(NodalSums nodal);

// Finds the stress that keeps a mean from being finite and throws InputFault with element, node and
// component.
[[noreturn]] void ThrowNotFinite(const StressResultFile& file, const StepSelection& selection,
                                 LineElements& lines, int highest_node);

}  // namespace zentor
