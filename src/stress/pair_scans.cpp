#include "stress/pair_scans.h"

#include <cstring>
#include <limits>

#include "stress/usage_plan.h"

namespace zentor {
namespace {

constexpr double kNone = -std::numeric_limits<double>::infinity();

// Maxima and tests over several numbers at a time do not come out of plain loops, so these are written with
// the compilers' vector types. Neither depends on the order.
template <std::size_t kLanes>
struct Vectors {
  typedef double Numbers __attribute__((vector_size(kLanes * sizeof(double))));
  typedef std::int64_t Bits __attribute__((vector_size(kLanes * sizeof(double))));

  ZENTOR_LANES static void Load(const double* from, Numbers& to) { std::memcpy(&to, from, sizeof(to)); }
  ZENTOR_LANES static void Load(const std::uint64_t* from, Bits& to) { std::memcpy(&to, from, sizeof(to)); }
  ZENTOR_LANES static double Largest(const Numbers& v) {
    double each[kLanes];
    std::memcpy(each, &v, sizeof(each));
    double largest = each[0];
    for (std::size_t k = 1; k < kLanes; ++k) largest = each[k] > largest ? each[k] : largest;
    return largest;
  }
  ZENTOR_LANES static std::int64_t Sum(const Bits& v) {
    std::int64_t each[kLanes];
    std::memcpy(each, &v, sizeof(each));
    std::int64_t sum = each[0];
    for (std::size_t k = 1; k < kLanes; ++k) sum += each[k];
    return sum;
  }
  ZENTOR_LANES static bool Any(const Bits& v) {
    std::int64_t each[kLanes];
    std::memcpy(each, &v, sizeof(each));
    std::int64_t any = each[0];
    for (std::size_t k = 1; k < kLanes; ++k) any |= each[k];
    return any != 0;
  }
};

template <std::size_t kLanes>
ZENTOR_LANES bool AnyUndecided(const double* values, std::size_t places) {
  using V = Vectors<kLanes>;
  typename V::Bits open{};
  for (std::size_t i = 0; i < places; i += kLanes) {
    typename V::Numbers v;
    V::Load(values + i, v);
    open |= ~((v >= -kLargestDecided) & (v <= kLargestDecided)) & ~(v == kNone);
  }
  return V::Any(open);
}

template <std::size_t kLanes>
ZENTOR_LANES double LargestAlive(const double* values, const std::uint64_t* events, std::uint64_t dead,
                                 std::size_t places) {
  using V = Vectors<kLanes>;
  const typename V::Numbers none = typename V::Numbers{} + kNone;
  typename V::Numbers largest[2] = {none, none};
  for (std::size_t i = 0; i < places; i += 2 * kLanes) {
    for (std::size_t half = 0; half < 2; ++half) {  // two chains of comparisons side by side
      typename V::Numbers v;
      typename V::Bits e;
      V::Load(values + i + half * kLanes, v);
      V::Load(events + i + half * kLanes, e);
      v = (e & static_cast<std::int64_t>(dead)) == 0 ? v : none;
      largest[half] = v > largest[half] ? v : largest[half];
    }
  }
  return V::Largest(largest[0] > largest[1] ? largest[0] : largest[1]);
}

// Without wide comparisons of integers vectors do not pay.
NearPairs NearOneByOne(const double* values, const std::uint64_t* events, std::uint64_t dead, double low,
                       double group_low, double group_high, std::size_t places, std::int32_t* found) {
  NearPairs near;
  for (std::size_t i = 0; i < places; ++i) {
    if (values[i] >= low && (events[i] & dead) == 0) found[near.count++] = static_cast<std::int32_t>(i);
    if (values[i] >= group_low && values[i] <= group_high && (events[i] & kSameEvent) != 0) {
      near.same_event = true;
    }
  }
  return near;
}

// Nearly always a single pair is near, so the vectors only count the pairs and sum their places; with more
// the places are collected in a second loop.
template <std::size_t kLanes>
ZENTOR_LANES NearPairs Near(const double* values, const std::uint64_t* events, std::uint64_t dead, double low,
                            double group_low, double group_high, std::size_t places, std::int32_t* found) {
  using V = Vectors<kLanes>;
  typename V::Bits same_event{};
  typename V::Bits count{};
  typename V::Bits sum{};
  typename V::Bits place{};
  std::int64_t first_places[kLanes];
  for (std::size_t k = 0; k < kLanes; ++k) first_places[k] = static_cast<std::int64_t>(k);
  std::memcpy(&place, first_places, sizeof(place));
  for (std::size_t i = 0; i < places; i += kLanes) {
    typename V::Numbers v;
    typename V::Bits e;
    V::Load(values + i, v);
    V::Load(events + i, e);
    const typename V::Bits near = ((e & static_cast<std::int64_t>(dead)) == 0) & (v >= low);
    count += near;
    sum += place & near;
    place += static_cast<std::int64_t>(kLanes);
    same_event |= (e < 0) & (v >= group_low) & (v <= group_high);  // kSameEvent is the sign bit
  }
  NearPairs near;
  near.same_event = V::Any(same_event);
  near.count = static_cast<std::size_t>(-V::Sum(count));
  found[0] = static_cast<std::int32_t>(V::Sum(sum));
  if (near.count == 1) return near;
  return NearOneByOne(values, events, dead, low, group_low, group_high, places, found);
}

static_assert(kSameEvent == std::uint64_t{1} << 63U);

using Test = FormOf<bool(const double*, std::size_t)>;
using Alive = FormOf<double(const double*, const std::uint64_t*, std::uint64_t, std::size_t)>;
using Places = FormOf<NearPairs(const double*, const std::uint64_t*, std::uint64_t, double, double, double,
                                std::size_t, std::int32_t*)>;

constexpr std::size_t kPairOfLanes = 2;
constexpr PairScans kBaseline = {Test::Baseline<AnyUndecided<kPairOfLanes>>,
                                 Alive::Baseline<LargestAlive<kPairOfLanes>>, NearOneByOne};
#ifdef ZENTOR_X86_FORMS
constexpr PairScans kBits256 = {Test::Bits256<AnyUndecided<kNarrowLanes>>,
                                Alive::Bits256<LargestAlive<kNarrowLanes>>,
                                Places::Bits256<Near<kNarrowLanes>>};
#endif

}  // namespace

const PairScans& ScansOf(VectorForm form) {
#ifdef ZENTOR_X86_FORMS
  // Compilers take 512-bit comparisons of vector types apart; 256 bits serve both.
  if (form != VectorForm::kBaseline) return kBits256;
#endif
  static_cast<void>(form);
  return kBaseline;
}

}  // namespace zentor
