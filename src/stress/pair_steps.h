// The steps of EvaluatePairs, one after the other over the pairs of a location.
#pragma once

#include "stress/mean_stress_correction.h"
#include "stress/pair_evaluation.h"

namespace zentor {

// Forms the pairs of the loadings that belong to an event, by first and then by second loading: every two of
// them with random interaction, those of the same event with no interaction. Fills count, the loading and
// event numbers and, in section mode, the section differences and the temperature. REQUIRES: event numbers of
// loadings at most kMaxEvents.
void FormPairs(const StudyState& study, const LoadingStates& states, PairArrays& pairs);

// Alternating stress, signed mean stress and biaxiality ratio of every pair, before any correction, and what
// was lost; in section mode the section alternating stress too. `material`: the node's material (0 none).
void EvaluatePairStresses(const StudyState& study, const LoadingStates& states, int material,
                          PairArrays& pairs);

// Corrects every pair for its mean stress; stops at the first pair without a usable strength.
LocationCondition CorrectPairs(int correction, const MaterialStrength& strength, PairArrays& pairs);

// Sorts by alternating stress, largest first, pairs of equal stress in generation order. With
// `prefer_same_event` the leader of a group of stresses within one per cent then changes places with the
// first pair of the group that joins two loadings of one event, unless it is one itself. The section
// differences stay in generation order: nothing reads them afterwards.
void SortPairs(bool prefer_same_event, bool section_mode, PairArrays& pairs);

}  // namespace zentor
