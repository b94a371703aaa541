#include "stress/pair_bands.h"

#include <algorithm>

namespace zentor {
namespace {

constexpr std::size_t kFewPairs = 100;
constexpr std::size_t kFewBands = 64;
constexpr std::size_t kInsertionPairs = 24;

}  // namespace

// Bands are equally wide from the largest value down to 0; everything below shares the last one.
void PairBands::Begin(const UsagePlan& plan, const double* values) {
  plan_ = &plan;
  values_ = values;
  sorted_ = 0;
  band_ = 0;
  const std::size_t pairs = plan.pairs;
  const std::size_t bands = pairs <= kFewPairs ? kFewBands : kMostBands;
  double largest = values[0];
  for (std::size_t p = 1; p < pairs; ++p) largest = std::max(largest, values[p]);
  const double last = static_cast<double>(bands - 1);
  const double scale = largest > 1e-290 ? last / largest : 0.0;
  for (std::size_t p = 0; p < pairs; ++p) {
    const double band = (largest - values[p]) * scale;
    band_of_[p] = static_cast<std::uint16_t>(static_cast<std::int32_t>(band < last ? band : last));
  }
  std::fill_n(end_.begin(), bands, std::uint16_t{0});
  for (std::size_t p = 0; p < pairs; ++p) ++end_[band_of_[p]];
  unsigned before = 0;
  for (std::size_t b = 0; b < bands; ++b) {
    const unsigned count = end_[b];
    end_[b] = static_cast<std::uint16_t>(before);
    before += count;
  }
  // Each band's entry grows from its begin to its end.
  for (std::size_t p = 0; p < pairs; ++p) order_[end_[band_of_[p]]++] = static_cast<std::int32_t>(p);
}

void PairBands::SortNextBand() {
  const std::size_t end = end_[band_++];
  const auto before = [this](std::int32_t a, std::int32_t b) {
    return values_[a] != values_[b] ? values_[a] > values_[b] : plan_->number[a] < plan_->number[b];
  };
  const auto first = order_.begin() + static_cast<std::ptrdiff_t>(sorted_);
  const auto last = order_.begin() + static_cast<std::ptrdiff_t>(end);
  sorted_ = end;
  if (last - first > static_cast<std::ptrdiff_t>(kInsertionPairs)) return std::sort(first, last, before);
  for (auto next = first; next < last; ++next) {
    const std::int32_t pair = *next;
    auto to = next;
    for (; to > first && before(pair, *(to - 1)); --to) *to = *(to - 1);
    *to = pair;
  }
}

}  // namespace zentor
