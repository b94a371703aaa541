#include "fatigue/reversal_reader.h"

#include <algorithm>

namespace zentor {

HistoryCondition ReversalReader::Start(std::span<const float> values, float threshold) {
  std::size_t first = 1;
  while (first < values.size() && values[first] == values[0]) ++first;
  if (first >= values.size()) return HistoryCondition::kConstant;
  values_ = values;
  threshold_ = threshold;
  next_ = first + 1;
  finished_ = passed_over_ = many_ignored_ = false;
  trust_ = wait_ = 0;
  const bool rising = values[first] > values[0];
  reversals_[0] = values[0];
  if (threshold <= 0.0F) {
    finder_ = TurnFinder(rising, reversals_.data(), 1);
  } else {
    finder_ = TurnFinder(rising, turns_.data(), 0);
    filter_ = TurnFilter(values[first], rising, threshold, reversals_.data(), 1);
  }
  return HistoryCondition::kNone;
}

std::span<const float> ReversalReader::Next() {
  if (finished_) return {};
  return std::span(reversals_).first(threshold_ <= 0.0F ? ReadTurns() : ReadFiltered());
}

std::size_t ReversalReader::ReadTurns() {
  for (; HasStretch() && finder_.count() < kFullTurns; next_ += kMaskBits) {
    finder_.TakeMask(values_.data(), next_);
  }
  std::size_t count = finder_.count();
  if (count < kFullTurns) {
    finder_.TakePoints(values_.data(), next_, values_.size());
    count = finder_.count();
    reversals_[count++] = values_.back();
    finished_ = true;
  }
  finder_.Clear();
  return count;
}

std::size_t ReversalReader::ReadFiltered() {
  for (; HasStretch() && filter_.count() < kFullFiltered; next_ += kMaskBits) TakeStretch();
  if (filter_.count() < kFullFiltered) {
    FilterTurns();
    filter_.TakePoints(values_.subspan(next_ - 1));
    filter_.Finish();
    finished_ = true;
  }
  const std::size_t count = filter_.count();
  filter_.Clear();
  return count;
}

void ReversalReader::TakeStretch() {
  if (PassesOver()) return;
  if (passed_over_) {
    // The last point passed over may be a turn: it is taken as if it were one, here or by the finder or
    // twice.
    filter_.TakePoints(values_.subspan(next_ - 1, 1));
    passed_over_ = false;
  }
  finder_.TakeMask(values_.data(), next_);
  if (finder_.count() > kTurns) FilterTurns();
}

bool ReversalReader::PassesOver() {
  if (wait_ > 0) {
    --wait_;
    return false;
  }
  FilterTurns();
  if (filter_.TakesWhole(values_.data() + next_ - 1)) {
    trust_ = std::min(trust_ + 1, kMostTrust);
    passed_over_ = true;
    return true;
  }
  trust_ -= kLossOfTrust;
  if (trust_ < 0) {
    trust_ = 0;
    wait_ = kPause;
  }
  return false;
}

// Where many turns are ignored most of them are found side by side before the next ones are filtered.
void ReversalReader::FilterTurns() {
  const std::size_t count = finder_.count();
  if (count == 0) return;
  const std::size_t before = filter_.count();
  if (many_ignored_) {
    DropSmallSwings(std::span(turns_).first(count), threshold_, inner_);
    filter_.TakeTurns(inner_.points.data(), inner_.count);
  } else {
    filter_.TakeTurns(turns_.data(), count);
  }
  many_ignored_ = (filter_.count() - before) * 4 < count * 3;
  finder_.Clear();
}

}  // namespace zentor
