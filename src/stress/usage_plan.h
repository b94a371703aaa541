// What the evaluation of every node of an all-nodes run has in common: which loadings form pairs, and how the
// pairs are laid out for loops over them. Made once per run, const afterwards.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "stress/pair_evaluation.h"
#include "stress/vector_forms.h"

namespace zentor {

constexpr std::size_t RoundedUp(std::size_t count, std::size_t step) {
  return (count + step - 1) / step * step;
}

// Places of the loading arrays and of the pair arrays, with room for the last vector of a row.
inline constexpr std::size_t kLoadingPlaces = kMaxLoadings + kWideLanes;
inline constexpr std::size_t kPairPlaces = RoundedUp(kMaxPairs, 16) + 16;

// The pairs of one loading with the loadings behind it: `first` with second .. second + count - 1, at the
// places place .. place + count - 1 of the pair arrays.
struct PairsOfLoading {
  std::size_t first = 0, second = 0, count = 0, place = 0;
};

struct UsagePlan {
  // Loadings that belong to an event. With random interaction in list order; with no interaction by event, so
  // that the partners of a loading always lie side by side.
  std::size_t loadings = 0;
  std::array<int, kMaxLoadings> loading{};  // number in the study's list
  std::array<int, kMaxLoadings> event{};
  // Events with a loading that has a partner.
  std::uint64_t paired_events = 0;

  std::size_t rows = 0;
  std::array<PairsOfLoading, kMaxLoadings> row{};
  std::size_t pairs = 0;
  // Per pair: its loadings, its place in the order of forming (which decides between equal stresses), the
  // bits of its two events (event e is bit e), and kSameEvent where these are one.
  std::array<std::uint8_t, kPairPlaces> first{}, second{};
  std::array<std::int32_t, kPairPlaces> number{};
  std::array<std::uint64_t, kPairPlaces> events{};
  bool prefer_same_event = false;  // see SortPairs
};

inline constexpr std::uint64_t kSameEvent = std::uint64_t{1} << 63U;
inline constexpr std::uint64_t EventBit(int event) {
  return std::uint64_t{1} << static_cast<unsigned>(event);
}
static_assert(kMaxEvents < 63);

// REQUIRES: event numbers of the loadings at most kMaxEvents.
UsagePlan MakeUsagePlan(const StudyState& study);

}  // namespace zentor
