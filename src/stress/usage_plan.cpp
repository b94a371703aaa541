#include "stress/usage_plan.h"

#include <algorithm>
#include <numeric>
#include <span>

namespace zentor {
namespace {

void CollectLoadings(const StudyState& study, bool by_event, UsagePlan& plan) {
  for (int k = 1; k <= kMaxLoadings; ++k) {
    if (study.definition.loadings[k].event >= 1) plan.loading[plan.loadings++] = k;
  }
  const auto event_of = [&](int k) { return study.definition.loadings[k].event; };
  const std::span<int> list(plan.loading.data(), plan.loadings);
  if (by_event) {
    std::stable_sort(list.begin(), list.end(), [&](int a, int b) { return event_of(a) < event_of(b); });
  }
  std::transform(list.begin(), list.end(), plan.event.begin(), event_of);
}

void AddPair(std::size_t first, std::size_t second, UsagePlan& plan) {
  const std::size_t p = plan.pairs++;
  const int e1 = plan.event[first];
  const int e2 = plan.event[second];
  plan.first[p] = static_cast<std::uint8_t>(first);
  plan.second[p] = static_cast<std::uint8_t>(second);
  plan.paired_events |= EventBit(e1) | EventBit(e2);
  plan.events[p] = EventBit(e1) | EventBit(e2) | (e1 == e2 ? kSameEvent : 0);
}

// Pairs are formed by first, then by second loading of the list.
void NumberPairs(UsagePlan& plan) {
  std::array<std::int32_t, kMaxPairs> order;
  const std::span<std::int32_t> pairs(order.data(), plan.pairs);
  std::iota(pairs.begin(), pairs.end(), 0);
  const auto key = [&](std::int32_t p) {
    return plan.loading[plan.first[p]] * (kMaxLoadings + 1) + plan.loading[plan.second[p]];
  };
  std::sort(pairs.begin(), pairs.end(), [&](auto a, auto b) { return key(a) < key(b); });
  for (std::size_t i = 0; i < pairs.size(); ++i) plan.number[pairs[i]] = static_cast<std::int32_t>(i);
}

}  // namespace

UsagePlan MakeUsagePlan(const StudyState& study) {
  UsagePlan plan;
  const bool same_event_only = study.properties.EventInteraction == 1;
  plan.prefer_same_event = !same_event_only && study.definition.event_count > 1;
  CollectLoadings(study, same_event_only, plan);
  for (std::size_t i = 0; i < plan.loadings; ++i) {
    std::size_t end = i + 1;
    while (end < plan.loadings && (!same_event_only || plan.event[end] == plan.event[i])) ++end;
    if (end == i + 1) continue;
    plan.row[plan.rows++] = {i, i + 1, end - i - 1, plan.pairs};
    for (std::size_t j = i + 1; j < end; ++j) AddPair(i, j, plan);
  }
  NumberPairs(plan);
  return plan;
}

}  // namespace zentor
