#include "stress/node_usage.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <utility>

#include "stress/cycle_consumption.h"
#include "stress/mean_stress_correction.h"
#include "stress/pair_scans.h"
#include "stress/pair_stress.h"

namespace zentor {
namespace {

using Known = UsageWorkspace::Known;

constexpr double kNone = -std::numeric_limits<double>::infinity();
constexpr double kNowhere = std::numeric_limits<double>::infinity();
constexpr double kGroupFraction = 0.99F;  // as in SortPairs
// Values that differ by more than this part of the larger are in their exact order.
constexpr double kApart = 4.0 * kStressError;

// What evaluates the pairs of a node exactly, one by one and each at most once.
class ExactPairs {
 public:
  ExactPairs(const StudyState& study, const UsagePlan& plan, int material, UsageWorkspace& work)
      : study_(study),
        plan_(plan),
        material_(material),
        strength_(StrengthOf(study, material)),
        work_(work) {}

  // The values of all pairs are set: those of the scalar statement, or approximate with NaN where they must
  // be exact.
  void Begin(bool exact) {
    std::fill_n(work_.known.begin(), plan_.pairs, exact ? Known::kExactStress : Known::kApproximate);
  }
  bool HasExactStress(std::size_t p) const { return work_.known[p] != Known::kApproximate; }
  void MakeExact(std::size_t p) {
    if (work_.known[p] == Known::kApproximate) Evaluate(p);
  }
  // What EvaluatePairs computes for the pair; also mean stress and biaxiality.
  void Evaluate(std::size_t p) {
    if (work_.known[p] == Known::kEvaluated) return;
    PairStress stress = EvaluatePair(study_.properties, StateOf(plan_.first[p]), StateOf(plan_.second[p]));
    AddLost(study_, material_, stress, lost_);
    CorrectMeanStress(study_.properties.MeanStressCorrection, strength_, stress.alternating, stress.mean);
    work_.alternating[p] = stress.alternating;
    work_.mean[p] = stress.mean;
    work_.biaxiality[p] = stress.biaxiality;
    work_.known[p] = Known::kEvaluated;
    if (!std::isfinite(stress.alternating)) damaged_ = true;
  }
  // Only the biaxiality of a pair whose mean stress does not matter.
  void EvaluateBiaxiality(std::size_t p) {
    if (work_.known[p] == Known::kEvaluated) return;
    work_.biaxiality[p] =
        BiaxialityOfPair(study_.properties, StateOf(plan_.first[p]), StateOf(plan_.second[p]));
    work_.mean[p] = 0.0;
  }
  // A stress came out that is no finite number; the scalar statement's sort must place it.
  bool Damaged() const { return damaged_; }
  // By formulas as stated, of the pairs that were evaluated.
  const LostStress& Lost() const { return lost_; }

 private:
  StressTensor StateOf(std::size_t loading) const {
    StressTensor state;
    for (std::size_t c = 0; c < state.size(); ++c) state[c] = work_.stress[c][loading];
    return state;
  }

  const StudyState& study_;
  const UsagePlan& plan_;
  int material_;
  MaterialStrength strength_;
  UsageWorkspace& work_;
  bool damaged_ = false;
  LostStress lost_;
};

// Takes the pairs of a node in the order of SortPairs as far as any have cycles. Values are compared within
// their error; where that does not decide, the pairs in question are made exact first.
class UsageWalk {
 public:
  UsageWalk(const UsagePlan& plan, const PairScans& scans, UsageWorkspace& work, ExactPairs& exact,
            CycleConsumption& consumption)
      : plan_(plan),
        scans_(scans),
        work_(work),
        exact_(exact),
        consumption_(consumption),
        places_(RoundedUp(plan.pairs, kScanBlock)) {
    for (std::uint64_t rest = plan.paired_events; rest != 0; rest &= rest - 1) {
      const int event = std::countr_zero(rest);
      if (!consumption_.HasCycles(event)) dead_ |= EventBit(event);
    }
  }

  void Run() {
    std::fill(work_.alternating.begin() + static_cast<std::ptrdiff_t>(plan_.pairs),
              work_.alternating.begin() + static_cast<std::ptrdiff_t>(places_), kNone);
    if (scans_.any_undecided(Values(), places_)) {
      for (std::size_t p = 0; p < plan_.pairs; ++p) {
        if (!(std::abs(work_.alternating[p]) <= kLargestDecided)) exact_.Evaluate(p);
      }
    }
    while (!ended_ && !exact_.Damaged()) {
      const double largest = scans_.largest_alive(Values(), plan_.events.data(), dead_, places_);
      if (largest == kNone) return;
      Consume(Next(largest));
    }
  }

 private:
  const double* Values() const { return work_.alternating.data(); }
  bool IsAlive(std::size_t p) const { return (plan_.events[p] & dead_) == 0; }
  bool JoinsOneEvent(std::size_t p) const { return (plan_.events[p] & kSameEvent) != 0; }

  // The order before same-event pairs are preferred, for exact values, or for values that are far enough
  // apart.
  bool Before(std::int32_t a, std::int32_t b) const {
    const double va = work_.alternating[a];
    const double vb = work_.alternating[b];
    return va != vb ? va > vb : plan_.number[a] < plan_.number[b];
  }

  // The pair with cycles that comes first; `largest`: the largest value of those with cycles.
  std::size_t Next(double largest) {
    const double error = kApart * std::abs(largest);
    const double group = plan_.prefer_same_event && largest > 0.0 ? kGroupFraction * largest : kNowhere;
    const NearPairs near = scans_.near(Values(), plan_.events.data(), dead_, largest - error, group - error,
                                       largest + error, places_, work_.found.data());
    std::size_t first = static_cast<std::size_t>(work_.found[0]);
    for (std::size_t i = 0; near.count > 1 && i < near.count; ++i) {
      const auto p = static_cast<std::size_t>(work_.found[i]);
      exact_.MakeExact(first);
      exact_.MakeExact(p);
      if (Before(work_.found[i], static_cast<std::int32_t>(first))) first = p;
    }
    // A pair of one event that has no cycles left, or is the first one anyway, changes nothing when it moves
    // to the front of its group. So the groups matter only where the first pair with cycles joins two
    // events and a pair of one event lies within one per cent below it.
    return near.same_event && !JoinsOneEvent(first) ? FirstOfGroupOf(first) : first;
  }

  void Consume(std::size_t p) {
    // Below the curve the bounds already say what the exact stress would; one curve knows no mean stress.
    if (consumption_.BelowCurve(work_.alternating[p]) ||
        (consumption_.HasOneCurve() && exact_.HasExactStress(p))) {
      exact_.EvaluateBiaxiality(p);
    } else {
      exact_.Evaluate(p);
      if (exact_.Damaged()) return;
    }
    const int first = plan_.event[plan_.first[p]];
    const int second = plan_.event[plan_.second[p]];
    PairTurn turn{first, second, work_.alternating[p], work_.mean[p], work_.biaxiality[p]};
    ended_ = !consumption_.Consume(turn);
    if (!consumption_.HasCycles(first)) dead_ |= EventBit(first);
    if (!consumption_.HasCycles(second)) dead_ |= EventBit(second);
  }

  // The first pair with cycles in the group of a pair with cycles, once SortPairs has preferred a pair of one
  // event. Groups follow each other from the largest value of all on, so every one before has to be passed.
  std::size_t FirstOfGroupOf(std::size_t pair) {
    if (group_end_ == 0) work_.bands.Begin(plan_, Values());
    while (!GroupHolds(pair)) {
      group_begin_ = group_end_;
      group_end_ = GroupEnd(group_begin_);
      group_sorted_ = false;
    }
    if (!group_sorted_) SortGroup();
    std::size_t i = group_begin_;
    while (!IsAlive(At(i))) ++i;
    return At(i);
  }

  std::size_t At(std::size_t rank) { return static_cast<std::size_t>(work_.bands[rank]); }
  double ValueAt(std::size_t rank) { return work_.alternating[At(rank)]; }
  bool GroupHolds(std::size_t pair) {
    for (std::size_t i = group_begin_; i < group_end_; ++i) {
      if (At(i) == pair) return true;
    }
    return false;
  }

  // The rank behind the group that begins at `begin`, exactly. Its values are above 0.
  std::size_t GroupEnd(std::size_t begin) {
    double limit = kGroupFraction * ValueAt(begin);
    const double error = kApart * limit;
    const std::size_t end = FirstUpTo(limit, begin + 1);
    const bool near =
        ValueAt(end - 1) <= limit + error || (end < plan_.pairs && ValueAt(end) >= limit - error);
    if (!near) return end;
    MakeExact(begin, FirstUpTo(ValueAt(begin) * (1.0 - kApart), begin + 1));
    limit = kGroupFraction * ValueAt(begin);
    const std::size_t first = FirstUpTo(limit + error, begin + 1);
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
    for (std::size_t i = begin; i < end; ++i) exact_.MakeExact(At(i));
    std::int32_t* const first = &work_.bands[begin];
    std::sort(first, first + (end - begin), [this](std::int32_t a, std::int32_t b) { return Before(a, b); });
  }

  // Puts the group in the order of SortPairs: exactly where values are too close to tell, and with the first
  // pair of one event in front.
  void SortGroup() {
    group_sorted_ = true;
    for (std::size_t i = group_begin_; i < group_end_;) {
      std::size_t next = i + 1;
      while (next < group_end_ && ValueAt(next - 1) - ValueAt(next) <= kApart * ValueAt(next - 1)) ++next;
      if (next > i + 1) MakeExact(i, next);
      i = next;
    }
    std::size_t same_event = group_begin_;
    while (same_event < group_end_ && !JoinsOneEvent(At(same_event))) ++same_event;
    if (same_event < group_end_) std::swap(work_.bands[group_begin_], work_.bands[same_event]);
  }

  const UsagePlan& plan_;
  const PairScans& scans_;
  UsageWorkspace& work_;
  ExactPairs& exact_;
  CycleConsumption& consumption_;
  std::size_t places_;
  std::uint64_t dead_ = 0;  // events without cycles
  bool ended_ = false;      // by a condition
  // The last group that was looked at, as ranks.
  std::size_t group_begin_ = 0;
  std::size_t group_end_ = 0;
  bool group_sorted_ = false;
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
  return true;
}

}  // namespace

LocationResult EvaluateUsage(const StudyState& study, const UsagePlan& plan, int material,
                             bool above_answered, UsageWorkspace& work, VectorForm form) {
  PairStressRequest request;
  if (!MakeRequest(study, material, request)) {
    return EvaluateAsStated(study, plan, material, above_answered, work);
  }
  bool decides = true;
  if (study.properties.ExactPrincipalStresses) {
    ExactPassOf(form)(request, plan, work.stress, work.alternating);
  } else if (AllPairsPlane(plan, work.stress, request.kt)) {
    PassesOf(form).plane(request, plan, work.stress, work.alternating);
  } else {
    PassesOf(form).general(request, plan, work.stress, work.alternating);
    decides = false;
  }
  ExactPairs exact(study, plan, material, work);
  exact.Begin(decides);
  CycleConsumption consumption(study, material, above_answered);
  UsageWalk(plan, ScansOf(form), work, exact, consumption).Run();
  if (exact.Damaged()) return EvaluateAsStated(study, plan, material, above_answered, work);
  LocationResult result = consumption.Result();
  result.lost = exact.Lost();
  return result;
}

void GatherStresses(const UsagePlan& plan, const LoadingStates& states, LoadingStresses& stress) {
  for (std::size_t i = 0; i < plan.loadings; ++i) {
    for (std::size_t c = 0; c < 6; ++c) stress[c][i] = states.stress[plan.loading[i]][c];
  }
}

}  // namespace zentor
