// The nodes of a run at which the formulas as stated lost stresses, and the warning that names them.
#pragma once

#include <array>

#include "services/solver_services.h"
#include "stress/lost_stress.h"

namespace zentor {

class LostStressNodes {
 public:
  // A node whose result stands; nothing when it lost none. Each node once: the order makes no difference.
  void Add(int node, const LostStress& lost);
  // Warns in the run's summary and, in a hidden run, on standard error; nothing when there are no such nodes.
  void Warn(SolverServices& services) const;

 private:
  struct Node {
    int number = 0;
    double stress = 0.0;
  };
  int count_ = 0;
  std::array<Node, 5> worst_{};  // largest lost stress first, the smaller number of equal ones
};

}  // namespace zentor
