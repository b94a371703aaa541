#include <algorithm>
#include <bit>
#include <cstddef>
#include <utility>

#include "stress/pair_steps.h"

namespace zentor {
namespace {

using Order = std::array<std::int32_t, kMaxPairs>;

constexpr double kGroupFraction = 0.99F;  // single precision, widened

// An unsigned number that orders as the value does, NaN included, so that a sort always has a total order to
// work with whatever the stress files hold. Adding 0 makes -0 and +0 equal.
std::uint64_t OrderKey(double value) {
  const auto bits = std::bit_cast<std::uint64_t>(value + 0.0);
  constexpr std::uint64_t kSign = std::uint64_t{1} << 63U;
  return (bits & kSign) != 0 ? ~bits : bits | kSign;
}

struct Entry {
  std::uint64_t key;  // larger first
  std::int32_t pair;  // then in generation order
};

// The order of a stable insertion sort that moves an entry forward past strictly smaller ones: stress
// descending, generation number ascending, which is a total order and needs no stable algorithm.
void OrderByStress(const PairArrays& pairs, Order& order) {
  std::array<Entry, kMaxPairs> entries;
  for (int p = 0; p < pairs.count; ++p) {
    const auto at = static_cast<std::size_t>(p);
    entries[at] = {OrderKey(pairs.alternating[at]), p};
  }
  std::sort(entries.begin(), entries.begin() + pairs.count,
            [](const Entry& a, const Entry& b) { return a.key != b.key ? a.key > b.key : a.pair < b.pair; });
  for (std::size_t i = 0; i < static_cast<std::size_t>(pairs.count); ++i) order[i] = entries[i].pair;
}

void PreferSameEvent(const PairArrays& pairs, Order& order) {
  const auto count = static_cast<std::size_t>(pairs.count);
  const auto stress = [&](std::size_t i) { return pairs.alternating[static_cast<std::size_t>(order[i])]; };
  const auto same_event = [&](std::size_t i) {
    const auto p = static_cast<std::size_t>(order[i]);
    return pairs.first_event[p] == pairs.second_event[p];
  };
  std::size_t leader = 0;
  while (leader < count) {
    std::size_t end = leader + 1;
    while (end < count && stress(end) > kGroupFraction * stress(leader)) ++end;
    if (!same_event(leader)) {
      for (std::size_t i = leader + 1; i < end; ++i) {
        if (!same_event(i)) continue;
        std::swap(order[leader], order[i]);
        break;
      }
    }
    leader = end;
  }
}

template <typename T>
void Rearrange(std::array<T, kMaxPairs>& field, const Order& order, std::size_t count) {
  std::array<T, kMaxPairs> old;
  std::copy_n(field.begin(), count, old.begin());
  for (std::size_t i = 0; i < count; ++i) field[i] = old[static_cast<std::size_t>(order[i])];
}

}  // namespace

void SortPairs(bool prefer_same_event, bool section_mode, PairArrays& pairs) {
  Order order;
  OrderByStress(pairs, order);
  if (prefer_same_event) PreferSameEvent(pairs, order);

  const auto count = static_cast<std::size_t>(pairs.count);
  Rearrange(pairs.alternating, order, count);
  Rearrange(pairs.mean_stress, order, count);
  Rearrange(pairs.biaxiality, order, count);
  Rearrange(pairs.first_loading, order, count);
  Rearrange(pairs.second_loading, order, count);
  Rearrange(pairs.first_event, order, count);
  Rearrange(pairs.second_event, order, count);
  if (!section_mode) return;
  Rearrange(pairs.section_alternating, order, count);
  Rearrange(pairs.temperature, order, count);
}

}  // namespace zentor
