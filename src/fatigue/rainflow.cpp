#include "fatigue/rainflow.h"

#include <algorithm>

#include "fatigue/cycle_bins.h"

namespace zentor {
namespace {

constexpr std::size_t kStackStep = 20000;
constexpr std::size_t kReadAhead = std::size_t{1} << 18U;  // 1 MiB

// With one bin there is no step between centres: the bin is as wide as the span and the limits below put
// every cycle into it.
float BinWidth(const Extremes& extremes, int bins) {
  const float span = extremes.largest - extremes.smallest;
  return bins > 1 ? span / static_cast<float>(bins - 1) : span;
}

void FillCentres(float origin, float width, int bins, std::vector<float>& centres) {
  centres.resize(static_cast<std::size_t>(bins));
  for (int i = 0; i < bins; ++i) {
    centres[static_cast<std::size_t>(i)] = origin + width / 2.0F + static_cast<float>(i) * width;
  }
}

CycleBins BinsOf(const RangeMeanMatrix& m) {
  return {m.range_origin, m.range_width, m.mean_origin, m.mean_width, m.range_bins, m.mean_bins};
}

void CountCycle(float a, float b, RangeMeanMatrix& m) {
  ++m.counts[static_cast<std::size_t>(BinsOf(m).IndexOf(a, b))];
}

void Push(RainflowState& s, float x) {
  s.direction = -s.direction;
  ++s.top;
  if (s.top >= s.stack.size()) {
    // By half at least, so that a history that never closes is still copied a constant number of times per
    // point.
    s.stack.resize(s.stack.size() + std::max(kStackStep, s.stack.size() / 2));
  }
  s.stack[s.top] = x;
}

// Closes what the last pushed point closes and returns the number of cycles counted. While reading, a range
// that starts at the base stays open: an equal one waits, a larger one moves the base past it.
template <bool kReading>
std::int64_t Close(RainflowState& state, RangeMeanMatrix& matrix) {
  float* const s = state.stack.data();
  std::size_t p = state.top;
  std::int64_t cycles = 0;
  while (p > state.base) {
    const float x = (s[p] - s[p - 1]) * state.direction;
    if (x <= 0.0F) {  // the previous point was no reversal
      s[p - 1] = s[p];
      --p;
      state.direction = -state.direction;
      continue;
    }
    if (p < state.base + 2) break;
    const float y = (s[p - 2] - s[p - 1]) * state.direction;
    if (y > x) break;
    if (kReading && state.base == p - 2) {
      if (y != x) ++state.base;
      break;
    }
    CountCycle(s[p - 2], s[p - 1], matrix);
    s[p - 2] = s[p];
    p -= 2;
    ++cycles;
  }
  state.top = p;
  return cycles;
}

}  // namespace

void ReserveRainflow(RainflowState& state, std::size_t points) {
  if (state.stack.size() < points + 1) state.stack.resize(points + 1);
}

void InitCount(int range_bins, int mean_bins, const Extremes& extremes, RangeMeanMatrix& m) {
  m.range_bins = range_bins;
  m.mean_bins = mean_bins;
  m.range_width = BinWidth(extremes, range_bins);
  m.mean_width = BinWidth(extremes, mean_bins);
  m.range_origin = -m.range_width / 2.0F;
  m.mean_origin = extremes.smallest - m.mean_width / 2.0F;
  FillCentres(m.range_origin, m.range_width, range_bins, m.range_centres);
  FillCentres(m.mean_origin, m.mean_width, mean_bins, m.mean_centres);
  m.cycles_reading = m.cycles_closing = 0;
  m.counts.assign(static_cast<std::size_t>(range_bins) * static_cast<std::size_t>(mean_bins), 0);
}

HistoryCondition StartCount(float first, float second, RainflowState& state) {
  if (first == second) return HistoryCondition::kFirstEqual;
  ReserveRainflow(state, 3);
  state.stack[1] = first;
  state.stack[2] = second;
  state.top = 2;
  state.base = 1;
  state.direction = second > first ? 1.0F : -1.0F;
  state.last = second;
  return HistoryCondition::kNone;
}

void AddToCount(std::span<const float> values, RainflowState& state, RangeMeanMatrix& matrix) {
  for (const float x : values) {
    if (x == state.last) continue;
    state.last = x;
    Push(state, x);
    matrix.cycles_reading += Close<true>(state, matrix);
  }
}

void FinishCount(RainflowState& state, RangeMeanMatrix& matrix) {
  // The base stays where reading left it, so the points fed back are those whose ranges could not close.
  for (std::size_t r = 1; r <= state.base; ++r) {
    Push(state, state.stack[r]);
    matrix.cycles_closing += Close<false>(state, matrix);
  }
}

namespace {

void CountBlocks(std::span<const float> values, RainflowState& state, RangeMeanMatrix& matrix) {
  InnerCycles& inner = state.inner;
  for (std::size_t first = 0; first < values.size(); first += kInnerBlock) {
    TakeInnerCycles(values.subspan(first, std::min(kInnerBlock, values.size() - first)), inner);
    CountInnerCycles(BinsOf(matrix), inner, matrix.counts);
    matrix.cycles_reading += static_cast<std::int64_t>(inner.cycles);
    AddToCount(std::span(inner.points).first(inner.count), state, matrix);
  }
}

struct ReadCount {
  HistoryCondition condition = HistoryCondition::kNone;
  Extremes extremes;  // of the reversals
};

// Without a filter the bins are not known yet: reads so many reversals ahead as the caches keep, and returns
// the extremes of all.
Extremes ReadAhead(RainflowState& state) {
  std::vector<float>& ahead = state.ahead;
  while (ahead.size() < kReadAhead) {
    const std::span<const float> block = state.reader.Next();
    if (block.empty()) return ExtremesOf(ahead);
    ahead.insert(ahead.end(), block.begin(), block.end());
  }
  return Union(ExtremesOf(ahead), ExtremesOf(state.reader.Rest()));
}

// Counts what was read ahead and what the started reader gives into the initialised matrix.
ReadCount CountReversals(RainflowState& state, RangeMeanMatrix& matrix) {
  std::span<const float> block = state.ahead.empty() ? state.reader.Next() : std::span(state.ahead);
  ReadCount read = {StartCount(block[0], block[1], state), ExtremesOf(block)};
  if (read.condition != HistoryCondition::kNone) return read;
  CountBlocks(block.subspan(2), state, matrix);
  for (block = state.reader.Next(); !block.empty(); block = state.reader.Next()) {
    read.extremes = Union(read.extremes, ExtremesOf(block));
    CountBlocks(block, state, matrix);
  }
  FinishCount(state, matrix);
  return read;
}

}  // namespace

HistoryCondition CountHistory(int range_bins, int mean_bins, std::span<const float> values,
                              RainflowState& state, RangeMeanMatrix& matrix) {
  InitCount(range_bins, mean_bins, ExtremesOf(values), matrix);
  if (values.size() < 2) return HistoryCondition::kFirstEqual;
  const HistoryCondition condition = StartCount(values[0], values[1], state);
  if (condition != HistoryCondition::kNone) return condition;
  CountBlocks(values.subspan(2), state, matrix);
  FinishCount(state, matrix);
  return HistoryCondition::kNone;
}

HistoryCondition FilterAndCount(int range_bins, int mean_bins, float filter_percent,
                                std::span<const float> values, RainflowState& state,
                                RangeMeanMatrix& matrix) {
  const bool filters = filter_percent > kSmallestFilterPercent;
  Extremes extremes = filters ? ExtremesOf(values) : Extremes();
  const float threshold = FilterThreshold(extremes, filter_percent);
  if (state.reader.Start(values, threshold) != HistoryCondition::kNone) return HistoryCondition::kConstant;
  state.ahead.clear();
  if (!filters) extremes = ReadAhead(state);
  InitCount(range_bins, mean_bins, extremes, matrix);
  ReadCount read = CountReversals(state, matrix);
  if (read.extremes != extremes) {
    // The filter has ignored the largest or smallest value (beside a start close to it): once more with the
    // right bins.
    state.reader.Start(values, threshold);
    state.ahead.clear();
    InitCount(range_bins, mean_bins, read.extremes, matrix);
    read = CountReversals(state, matrix);
  }
  return read.condition;
}

HistoryCondition CountHistoryByPoint(int range_bins, int mean_bins, std::span<const float> values,
                                     RainflowState& state, RangeMeanMatrix& matrix) {
  InitCount(range_bins, mean_bins, ExtremesByPoint(values), matrix);
  if (values.size() < 2) return HistoryCondition::kFirstEqual;
  const HistoryCondition condition = StartCount(values[0], values[1], state);
  if (condition != HistoryCondition::kNone) return condition;
  AddToCount(values.subspan(2), state, matrix);
  FinishCount(state, matrix);
  return HistoryCondition::kNone;
}

}  // namespace zentor
