// Rainflow counting of one history into a range-mean matrix.
//
// The history is taken as one period of a periodic loading: what stays open at its end is closed by feeding
// the unclosed beginning once more, so every range becomes a full cycle. For such a closed history the
// three-point rule gives the same cycles as range pairs counted from the largest value on. Sources: Matsuishi
// and Endo 1968; de Jonge 1969 (range pairs); Clormann and Seeger 1986 (residue). All arithmetic is single
// precision, operation by operation as written in rainflow.cpp.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "fatigue/extremes.h"
#include "fatigue/inner_cycles.h"
#include "fatigue/reversal_reader.h"
#include "fatigue/reversals.h"

namespace zentor {

// Full cycles per (range bin, mean bin) of the last count. Range bin 1 is centred on range 0 and the last one
// on the history's span; mean bin 1 is centred on the smallest value and the last one on the largest.
struct RangeMeanMatrix {
  int range_bins = 0;                // R
  int mean_bins = 0;                 // M
  std::vector<std::int32_t> counts;  // shape (M, R), range bin fastest
  float range_width = 0.0F;          // (max - min) / (R - 1); max - min when R is 1
  float mean_width = 0.0F;
  float range_origin = 0.0F;  // lower edge of range bin 1
  float mean_origin = 0.0F;
  std::vector<float> range_centres;  // (R)
  std::vector<float> mean_centres;   // (M)
  std::int64_t cycles_reading = 0;   // closed while the history was read
  std::int64_t cycles_closing = 0;   // closed by the fed-back beginning
  // First and last mean bin with any count, 0 when there is none; set by the printing of the matrix.
  int first_mean = 0;
  int last_mean = 0;

  std::int64_t TotalCycles() const { return cycles_reading + cycles_closing; }
  // Range bin i = 1 .. R, mean bin j = 1 .. M.
  std::size_t Index(int i, int j) const {
    return static_cast<std::size_t>(j - 1) * static_cast<std::size_t>(range_bins) +
           static_cast<std::size_t>(i - 1);
  }
  std::int32_t Count(int i, int j) const { return counts[Index(i, j)]; }
};

// State of the counting kernel between its calls, kept by the caller so that counts allocate nothing once it
// has grown. Points 1 .. top of the stack are open; those up to `base` are never closed while reading.
struct RainflowState {
  std::vector<float> stack;  // stack[0] is unused
  std::size_t top = 0;       // p
  std::size_t base = 0;      // b, 1 <= base <= top once started
  float direction = 1.0F;    // d: +1 when the last range rises, else -1
  float last = 0.0F;         // last value passed on
  InnerCycles inner;         // workspace of CountHistory
  ReversalReader reader;     // these two of FilterAndCount
  std::vector<float> ahead;  // reversals read before the count began
};

// Room for a history of `points` values, so that counting it does not grow the stack step by step.
void ReserveRainflow(RainflowState& state, std::size_t points);

// The four modes of the kernel, in the order of their use: init sets the bin geometry from the largest and
// smallest value and clears the counts; start takes the first two values; add takes each further value;
// finish closes.
void InitCount(int range_bins, int mean_bins, const Extremes& extremes, RangeMeanMatrix& matrix);
HistoryCondition StartCount(float first, float second, RainflowState& state);
void AddToCount(std::span<const float> values, RainflowState& state, RangeMeanMatrix& matrix);
void FinishCount(RainflowState& state, RangeMeanMatrix& matrix);

// One whole count. REQUIRES: 1 <= range_bins, mean_bins. kFirstEqual when the first two values are equal or
// there are fewer than two; the matrix then has its geometry and no cycles.
HistoryCondition CountHistory(int range_bins, int mean_bins, std::span<const float> values,
                              RainflowState& state, RangeMeanMatrix& matrix);

// Filters a history and counts its reversals, block by block. kConstant when it has no turn; the matrix is
// then left as it was. REQUIRES: as CountHistory.
HistoryCondition FilterAndCount(int range_bins, int mean_bins, float filter_percent,
                                std::span<const float> values, RainflowState& state, RangeMeanMatrix& matrix);

// The same as CountHistory, point by point through the kernel alone: what it means, its reference in tests
// and bench.
HistoryCondition CountHistoryByPoint(int range_bins, int mean_bins, std::span<const float> values,
                                     RainflowState& state, RangeMeanMatrix& matrix);

}  // namespace zentor
