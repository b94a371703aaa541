#include "stress/node_usage.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <span>
#include <utility>

#include "stress/cycle_consumption.h"
#include "stress/equivalent_stress.h"
#include "stress/mean_stress_correction.h"
#include "stress/pair_scans.h"

namespace zentor {
namespace {

using Known = UsageWorkspace::Known;

constexpr double kNone = -std::numeric_limits<double>::infinity();
constexpr double kGroupFraction = 0.99F;  // as in SortPairs
// Values that differ by more than this part of the larger are in their exact order.
constexpr double kApart = 4.0 * kStressError;

// What evaluates the pairs of a node exactly, one by one and each at most once.
class ExactPairs {
 public:
  ExactPairs(const StudyState& study, const UsagePlan& plan, int material, UsageWorkspace& work)
      : plan_(plan),
        properties_(study.properties),
        kt_(study.properties.FatigueStrengthReductionFactor),
        strength_(StrengthOf(study, material)),
        work_(work) {}

  // The values of all pairs are set: exact ones (plane), or approximate with NaN where they must be exact.
  void Begin(bool exact) {
    std::fill_n(work_.known.begin(), plan_.pairs, exact ? Known::kExactStress : Known::kApproximate);
  }
  void MakeExact(std::size_t p) {
    if (work_.known[p] == Known::kApproximate) Evaluate(p);
  }
  // What EvaluatePairs computes for the pair; also mean stress and biaxiality.
  void Evaluate(std::size_t p) {
    if (work_.known[p] == Known::kEvaluated) return;
    StressTensor first;
    StressTensor second;
    for (std::size_t c = 0; c < 6; ++c) {
      first[c] = work_.stress[c][plan_.first[p]];
      second[c] = work_.stress[c][plan_.second[p]];
    }
    const PairTensors tensors = TensorsOfPair(first, second, kt_);
    PairStress stress =
        EvaluatePairStress(properties_.AlternatingStressType, tensors.difference, tensors.mean);
    CorrectMeanStress(properties_.MeanStressCorrection, strength_, stress.alternating, stress.mean);
    work_.alternating[p] = stress.alternating;
    work_.mean[p] = stress.mean;
    work_.biaxiality[p] = stress.biaxiality;
    work_.known[p] = Known::kEvaluated;
    if (!std::isfinite(stress.alternating)) damaged_ = true;
  }
  // A stress came out that is no finite number; the scalar statement's sort must place it.
  bool Damaged() const { return damaged_; }

 private:
  const UsagePlan& plan_;
  const FatigueProperties& properties_;
  double kt_;
  MaterialStrength strength_;
  UsageWorkspace& work_;
  bool damaged_ = false;
};

// Walks through the pairs of a node from the largest stress downwards as far as any have cycles. Values are
// compared within their error; where that does not decide, the pairs in question are made exact first.
class UsageWalk {
 public:
  UsageWalk(const UsagePlan& plan, const PairScans& scans, UsageWorkspace& work, ExactPairs& exact,
            CycleConsumption& consumption)
      : plan_(plan),
        scans_(scans),
        work_(work),
        exact_(exact),
        consumption_(consumption),
        places_((plan.pairs + kWideLanes - 1) / kWideLanes * kWideLanes) {
    for (int e = 1; e <= kMaxEvents; ++e) {
      if (!consumption_.HasCycles(e)) dead_ |= EventBit(e);
    }
  }

  void Run() {
    std::fill(work_.alternating.begin() + static_cast<std::ptrdiff_t>(plan_.pairs),
              work_.alternating.begin() + static_cast<std::ptrdiff_t>(places_), kNone);
    if (scans_.any_undecided(Values(), places_)) {
      for (std::size_t p = 0; p < plan_.pairs; ++p) {
        if (!(std::abs(work_.alternating[p]) <= 1e300)) exact_.Evaluate(p);
      }
    }
    if (plan_.prefer_same_event) WalkGroups();
    WalkByStress(kNone);
  }

 private:
  const double* Values() const { return work_.alternating.data(); }
  bool Ended() const { return ended_ || exact_.Damaged(); }
  double LargestAlive() const { return scans_.largest_alive(Values(), plan_.events.data(), dead_, places_); }
  // Places of the pairs with a value above low, up to high; only those that have cycles, or all.
  std::span<std::int32_t> Collect(std::uint64_t dead, double low, double high) {
    const std::size_t count =
        scans_.collect(Values(), plan_.events.data(), dead, low, high, places_, work_.found.data());
    return {work_.found.data(), count};
  }

  // The order of SortPairs for exact values, or for values that are far enough apart.
  bool Before(std::int32_t a, std::int32_t b) const {
    const double va = work_.alternating[a];
    const double vb = work_.alternating[b];
    return va != vb ? va > vb : plan_.number[a] < plan_.number[b];
  }

  void Consume(std::size_t p) {
    exact_.Evaluate(p);
    if (Ended()) return;
    const int first = plan_.event[plan_.first[p]];
    const int second = plan_.event[plan_.second[p]];
    PairTurn turn{first, second, work_.alternating[p], work_.mean[p], work_.biaxiality[p]};
    ended_ = !consumption_.Consume(turn);
    if (!consumption_.HasCycles(first)) dead_ |= EventBit(first);
    if (!consumption_.HasCycles(second)) dead_ |= EventBit(second);
  }

  // The pairs above `limit` that have cycles, in order of stress.
  void WalkByStress(double limit) {
    while (!Ended()) {
      const double largest = LargestAlive();
      if (!(largest > limit)) return;
      const double error = kApart * std::abs(largest);
      const std::span<const std::int32_t> leaders =
          Collect(dead_, std::nextafter(largest - error, kNone), largest);
      if (leaders.size() > 1) {
        for (const std::int32_t p : leaders) exact_.MakeExact(p);
      }
      Consume(*std::min_element(leaders.begin(), leaders.end(),
                                [this](std::int32_t a, std::int32_t b) { return Before(a, b); }));
    }
  }

  // Groups of stresses within one per cent of their leader, as SortPairs forms them. Pairs that have no
  // cycles count among them: where a group begins depends on all pairs before it. Once a single event has
  // cycles its pairs keep their order whatever the groups are, for all of them join one event; and from a
  // leader that is not above 0 on, every pair is a group of its own.
  void WalkGroups() {
    work_.bands.Begin(plan_, Values());
    std::size_t begin = 0;
    while (!Ended() && begin < plan_.pairs && std::popcount(plan_.paired_events & ~dead_) > 1) {
      if (!(ValueAt(begin) > 0.0)) return;
      const std::size_t end = GroupEnd(begin);
      WalkGroup(begin, end);
      begin = end;
    }
  }

  double ValueAt(std::size_t rank) { return work_.alternating[work_.bands[rank]]; }

  // The rank behind the group that begins at `begin`, exactly.
  std::size_t GroupEnd(std::size_t begin) {
    double limit = kGroupFraction * ValueAt(begin);
    const double error = kApart * limit;
    std::size_t end = FirstUpTo(limit, begin + 1);
    const bool near =
        ValueAt(end - 1) <= limit + error || (end < plan_.pairs && ValueAt(end) >= limit - error);
    if (!near) return end;
    MakeExact(begin, FirstUpTo(ValueAt(begin) * (1.0 - kApart), begin + 1));
    limit = kGroupFraction * ValueAt(begin);
    std::size_t first = begin + 1;
    while (first < plan_.pairs && ValueAt(first) > limit + error) ++first;
    MakeExact(first, FirstUpTo(limit - error, first));
    return FirstUpTo(limit, begin + 1);
  }

  std::size_t FirstUpTo(double limit, std::size_t rank) {
    while (rank < plan_.pairs && ValueAt(rank) > limit) ++rank;
    return rank;
  }

  // Makes a stretch of ranks exact and puts it in its exact order.
  void MakeExact(std::size_t begin, std::size_t end) {
    if (begin == end) return;
    for (std::size_t i = begin; i < end; ++i) exact_.MakeExact(work_.bands[i]);
    std::int32_t* const first = &work_.bands[begin];
    std::sort(first, first + (end - begin), [this](std::int32_t a, std::int32_t b) { return Before(a, b); });
  }

  void WalkGroup(std::size_t begin, std::size_t end) {
    std::size_t alive = 0;
    std::size_t last_alive = begin;
    bool same_event = false;
    for (std::size_t i = begin; i < end; ++i) {
      const std::uint64_t events = plan_.events[work_.bands[i]];
      same_event = same_event || (events & kSameEvent) != 0;
      if ((events & dead_) != 0) continue;
      ++alive;
      last_alive = i;
    }
    if (alive == 0) return;
    if (alive == 1) return Consume(work_.bands[last_alive]);
    SortExactly(begin, end);
    if (same_event) PreferSameEvent(begin, end);
    for (std::size_t i = begin; i < end && !Ended(); ++i) {
      if ((plan_.events[work_.bands[i]] & dead_) == 0) Consume(work_.bands[i]);
    }
  }

  void PreferSameEvent(std::size_t begin, std::size_t end) {
    std::size_t found = begin;
    while (found < end && (plan_.events[work_.bands[found]] & kSameEvent) == 0) ++found;
    if (found < end) std::swap(work_.bands[begin], work_.bands[found]);
  }

  // Makes the stretches of ranks exact whose values are too close to tell their order.
  void SortExactly(std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end;) {
      std::size_t next = i + 1;
      while (next < end && ValueAt(next - 1) - ValueAt(next) <= kApart * ValueAt(next - 1)) ++next;
      if (next > i + 1) MakeExact(i, next);
      i = next;
    }
  }

  const UsagePlan& plan_;
  const PairScans& scans_;
  UsageWorkspace& work_;
  ExactPairs& exact_;
  CycleConsumption& consumption_;
  std::size_t places_;
  std::uint64_t dead_ = 0;  // events without cycles
  bool ended_ = false;      // by a condition
};

// The scalar statement.
LocationResult EvaluateAsStated(const StudyState& study, const UsagePlan& plan, int material,
                                bool above_answered, UsageWorkspace& work) {
  for (std::size_t i = 0; i < plan.loadings; ++i) {
    for (std::size_t c = 0; c < 6; ++c) work.states.stress[plan.loading[i]][c] = work.stress[c][i];
  }
  LocationResult result;
  result.condition = EvaluatePairs(study, work.states, material, work.pairs);
  if (result.condition != LocationCondition::kNone) return result;
  return ConsumePairs(study, work.states, material, above_answered, work.pairs);
}

// False: the strength of the material is none that the loops can correct with.
bool MakeRequest(const StudyState& study, int material, PairStressRequest& request) {
  const FatigueProperties& properties = study.properties;
  request.alternating_type = properties.AlternatingStressType;
  request.kt = properties.FatigueStrengthReductionFactor;
  const int correction = properties.MeanStressCorrection;
  if (correction != kSoderberg && correction != kGoodman && correction != kGerber) return true;
  const MaterialStrength strength = StrengthOf(study, material);
  if (strength.value <= 0.0) return strength.may_be_missing;  // left uncorrected, or a condition
  request.correction = correction;
  request.strength = strength.value;
  return strength.value <= kLargestStrength;
}

}  // namespace

LocationResult EvaluateUsage(const StudyState& study, const UsagePlan& plan, int material,
                             bool above_answered, UsageWorkspace& work, VectorForm form) {
  PairStressRequest request;
  if (!MakeRequest(study, material, request)) {
    return EvaluateAsStated(study, plan, material, above_answered, work);
  }
  const bool plane = AllPairsPlane(plan, work.stress, request.kt);
  if (plane) {
    PassesOf(form).plane(request, plan, work.stress, work.alternating);
  } else {
    PassesOf(form).general(request, plan, work.stress, work.alternating, work.mean);
  }
  ExactPairs exact(study, plan, material, work);
  exact.Begin(plane);
  CycleConsumption consumption(study, material, above_answered);
  UsageWalk(plan, ScansOf(form), work, exact, consumption).Run();
  if (exact.Damaged()) return EvaluateAsStated(study, plan, material, above_answered, work);
  return consumption.Result();
}

void GatherStresses(const UsagePlan& plan, const LoadingStates& states, LoadingStresses& stress) {
  for (std::size_t i = 0; i < plan.loadings; ++i) {
    for (std::size_t c = 0; c < 6; ++c) stress[c][i] = states.stress[plan.loading[i]][c];
  }
}

}  // namespace zentor
