#include "fatigue/cycle_bins.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace zentor {
namespace {

ZENTOR_LANES void FindBins(const CycleBins& matrix, const InnerCycles& inner, std::int32_t* index) {
  const CycleBins bins = matrix;  // which no store can change
  ZENTOR_INDEPENDENT
  for (std::size_t k = 0; k < inner.cycles; ++k) index[k] = bins.IndexOf(inner.first[k], inner.second[k]);
}

using Forms = FormOf<void(const CycleBins&, const InnerCycles&, std::int32_t*)>;

auto* BestFindBins() {
#ifdef ZENTOR_X86_FORMS
  if (BestVectorForm() != VectorForm::kBaseline) return Forms::Bits256<FindBins>;
#endif
  return Forms::Baseline<FindBins>;
}

// Neighbouring cycles often fall into the same bin, and a count must be stored before it is counted up again:
// several counts of a bin go on side by side.
constexpr std::size_t kMostSpreadBins = 1024;

void CountSpread(std::span<const std::int32_t> index, std::span<std::int32_t> counts) {
  std::array<std::array<std::int32_t, kMostSpreadBins>, 3> more;
  for (auto& table : more) std::fill_n(table.begin(), counts.size(), 0);
  std::size_t k = 0;
  for (; k + 4 <= index.size(); k += 4) {
    ++counts[static_cast<std::size_t>(index[k])];
    ++more[0][static_cast<std::size_t>(index[k + 1])];
    ++more[1][static_cast<std::size_t>(index[k + 2])];
    ++more[2][static_cast<std::size_t>(index[k + 3])];
  }
  for (; k < index.size(); ++k) ++counts[static_cast<std::size_t>(index[k])];
  for (std::size_t bin = 0; bin < counts.size(); ++bin) {
    counts[bin] += more[0][bin] + more[1][bin] + more[2][bin];
  }
}

}  // namespace

void CountInnerCycles(const CycleBins& bins, const InnerCycles& inner, std::span<std::int32_t> counts) {
  static auto* const find_bins = BestFindBins();
  std::array<std::int32_t, kInnerBlock> indices;
  find_bins(bins, inner, indices.data());
  const std::span<const std::int32_t> index = std::span(indices).first(inner.cycles);
  if (counts.size() <= kMostSpreadBins && counts.size() <= index.size()) return CountSpread(index, counts);
  for (const std::int32_t bin : index) ++counts[static_cast<std::size_t>(bin)];
}

}  // namespace zentor
