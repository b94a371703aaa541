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
    open |= ~((v >= -1e300) & (v <= 1e300)) & ~(v == kNone);
  }
  return V::Any(open);
}

template <std::size_t kLanes>
ZENTOR_LANES double LargestAlive(const double* values, const std::uint64_t* events, std::uint64_t dead,
                                 std::size_t places) {
  using V = Vectors<kLanes>;
  typename V::Numbers largest = typename V::Numbers{} + kNone;
  for (std::size_t i = 0; i < places; i += kLanes) {
    typename V::Numbers v;
    typename V::Bits e;
    V::Load(values + i, v);
    V::Load(events + i, e);
    const typename V::Bits better = ((e & static_cast<std::int64_t>(dead)) == 0) & (v > largest);
    largest = better ? v : largest;
  }
  return V::Largest(largest);
}

template <std::size_t kLanes>
ZENTOR_LANES std::size_t Collect(const double* values, const std::uint64_t* events, std::uint64_t dead,
                                 double low, double high, std::size_t places, std::int32_t* found) {
  using V = Vectors<kLanes>;
  std::size_t count = 0;
  for (std::size_t i = 0; i < places; i += kLanes) {
    typename V::Numbers v;
    typename V::Bits e;
    V::Load(values + i, v);
    V::Load(events + i, e);
    const typename V::Bits wanted = ((e & static_cast<std::int64_t>(dead)) == 0) & (v > low) & (v <= high);
    if (!V::Any(wanted)) continue;
    std::int64_t each[kLanes];
    std::memcpy(each, &wanted, sizeof(each));
    for (std::size_t k = 0; k < kLanes; ++k) {
      if (each[k] != 0) found[count++] = static_cast<std::int32_t>(i + k);
    }
  }
  return count;
}

using Test = FormOf<bool(const double*, std::size_t)>;
using Alive = FormOf<double(const double*, const std::uint64_t*, std::uint64_t, std::size_t)>;
using Places = FormOf<std::size_t(const double*, const std::uint64_t*, std::uint64_t, double, double,
                                  std::size_t, std::int32_t*)>;

constexpr std::size_t kPairOfLanes = 2;
constexpr PairScans kBaseline = {Test::Baseline<AnyUndecided<kPairOfLanes>>,
                                 Alive::Baseline<LargestAlive<kPairOfLanes>>,
                                 Places::Baseline<Collect<kPairOfLanes>>};
#ifdef ZENTOR_X86_FORMS
constexpr PairScans kBits256 = {Test::Bits256<AnyUndecided<kNarrowLanes>>,
                                Alive::Bits256<LargestAlive<kNarrowLanes>>,
                                Places::Bits256<Collect<kNarrowLanes>>};
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
