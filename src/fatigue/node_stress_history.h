// The equivalent stress history of a node under events that act together, and its count.
#pragma once

#include <span>
#include <vector>

#include "fatigue/combined_load_table.h"
#include "stress/pair_evaluation.h"
#include "stress/vector_forms.h"

namespace zentor {

// w: shape (P), signed von Mises stress at every combined point, of the sum over events e of load(p, e) *
// stress state of loading e, summed in event order in double precision; stored in single precision. As stated
// it is 0 where the principal stress of largest magnitude is at most 1e-20. REQUIRES: w.size() ==
// table.points. `form`: one that this processor runs; all give the same bits. Returns the points that lost
// their stress to the formulas as stated, and the largest of these von Mises stresses.
LostStress NodeStressHistory(const FatigueProperties& properties, const CombinedLoadTable& table,
                             const LoadingStates& states, std::span<float> w,
                             VectorForm form = BestVectorForm());

// The same point by point: what NodeStressHistory means, its reference in tests and bench. With exact
// principal stresses the two have the same bits; as stated they differ by the rounding of the last place at
// most, and in no sign.
void NodeStressHistoryByPoint(const FatigueProperties& properties, const CombinedLoadTable& table,
                              const LoadingStates& states, std::span<float> w);

}  // namespace zentor
