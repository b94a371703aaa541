#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "input_context.h"

namespace zentor::companion {

namespace {

constexpr int kFewPathPoints = 17;

int NodeOf(const InputContext& context, TableReader& table) {
  const ErrorWatch watch(*context.errors);
  const int node = table.Integer("node", {1, kMaxModelNumber});
  const bool known = context.index.Node(node) != ModelIndex::kNone;
  if (watch.Clean() && context.Sound({Part::kModel}) && !known) {
    table.Report("node", "a node of the nodes table");
  }
  return node;
}

void ReadLocation(InputContext& context, TableReader& table, std::vector<int>& taken) {
  AuthoredLocation location;
  location.number = EntityNumber(table, taken.size(), kMaxAuthoredLocations, taken);
  table.Text("name", "");
  location.node = NodeOf(context, table);
  location.setting = table.Integer("setting", {0}, 0);
  if (table.Has("stress_factors")) {
    const std::vector<float> factors = table.Reals("stress_factors", 3, kAnyReal);
    std::copy(factors.begin(), factors.end(), location.stress_factors.begin());
  }
  table.Finish();
  context.study.locations.push_back(location);
}

// Null after an error, which may have been one of the location itself.
AuthoredLocation* LocationOf(InputContext& context, TableReader& table, const ConfigValue& value,
                             std::string_view key) {
  for (AuthoredLocation& location : context.study.locations) {
    if (value.kind == ConfigValue::Kind::kInteger && location.number == value.integer) return &location;
  }
  if (context.locations_numbered) table.ReportAt(value, key, "the number of a [[location]]");
  return nullptr;
}

// Empty after a reported error.
std::vector<AuthoredLocation*> EndsOf(InputContext& context, TableReader& table) {
  constexpr std::string_view kKey = "locations";
  const ConfigValue* value = table.Look(kKey);
  if (value == nullptr || value->kind != ConfigValue::Kind::kArray || value->items.size() != 2) {
    table.Report(kKey, "a list of 2 location numbers");
    return {};
  }
  std::vector<AuthoredLocation*> ends;
  for (const ConfigValue& item : value->items) {
    AuthoredLocation* end = LocationOf(context, table, item, kKey);
    if (end == nullptr) continue;
    if (end->section != 0) {
      table.ReportAt(item, kKey, fmt::format("a location outside section {}", end->section));
    }
    ends.push_back(end);
  }
  if (ends.size() < 2) return {};
  if (ends[0]->node == ends[1]->node) {
    table.ReportText(kKey, fmt::format("both lie at node {}, expected two different nodes", ends[0]->node));
  }
  return ends;
}

void ReadSection(InputContext& context, TableReader& table, std::vector<int>& taken) {
  const int number = EntityNumber(table, taken.size(), kMaxAuthoredSections, taken);
  table.Text("name", "");
  const std::vector<AuthoredLocation*> ends = EndsOf(context, table);
  const int points = table.Integer("path_points", {2, kMaxPathPoints}, kFewPathPoints);
  const float radius = table.Real("radius", kAnyReal, 0.0F);
  const bool no_bending = table.Boolean("no_path_bending", false);
  for (AuthoredLocation* end : ends) {
    end->section = number;
    end->path_points = points;
    end->radius = radius;
    end->bending_flag = no_bending ? 1 : 0;
  }
  if (points < kFewPathPoints) {
    const double intervals = points - 1;
    context.Warn(
        fmt::format("{} has {} path points: bending of a linear distribution is overestimated by {:.1f} %; "
                    "use at least {}",
                    table.path(), points, 200.0 / (intervals * intervals), kFewPathPoints));
  }
  if (no_bending && radius == 0.0F) {
    context.Warn(
        fmt::format("{}.no_path_bending has no effect on a straight section (radius 0)", table.path()));
  }
  table.Finish();
}

bool HasLoading(const InputContext& context, int number) {
  for (const AuthoredEvent& event : context.study.events) {
    for (const AuthoredLoading& loading : event.loadings) {
      if (loading.number == number) return true;
    }
  }
  return false;
}

template <std::size_t N>
std::optional<std::array<float, N>> Components(TableReader& table, std::string_view key) {
  if (!table.Has(key)) return std::nullopt;
  std::array<float, N> components{};
  const std::vector<float> values = table.Reals(key, N, kAnyReal);
  std::copy(values.begin(), values.end(), components.begin());
  return components;
}

void ReadCondition(InputContext& context, TableReader& table) {
  StoredCondition condition;
  const ErrorWatch watch(*context.errors);
  const ConfigValue* value = table.Look("location");
  if (value == nullptr) table.ReportMissing("location", "the number of a [[location]]");
  const AuthoredLocation* location =
      value != nullptr ? LocationOf(context, table, *value, "location") : nullptr;
  if (location != nullptr) condition.location = location->number;
  condition.loading = table.Integer("loading", {1, kMaxAuthoredLoadings});
  if (watch.Clean() && context.Sound({Part::kEvents}) && !HasLoading(context, condition.loading)) {
    table.Report("loading", "the number of a loading of an event");
  }
  condition.stress = Components<6>(table, "stress");
  condition.linearised = Components<4>(table, "linearised");
  if (table.Has("temperature")) condition.temperature = table.Real("temperature", kAnyReal);
  if (!condition.stress && !condition.linearised && !condition.temperature) {
    table.ReportMissing("stress", "at least one of stress, linearised and temperature");
  }
  for (const StoredCondition& other : context.study.stored_conditions) {
    if (other.location == condition.location && other.loading == condition.loading) {
      table.Report("loading",
                   fmt::format("one stored condition per location and loading (location {} has one already)",
                               condition.location));
    }
  }
  table.Finish();
  context.study.stored_conditions.push_back(condition);
}

}  // namespace

void ReadLocations(InputContext& context, TableReader& root) {
  if (context.MultiStudy()) {
    for (const std::string_view key : {"location", "section", "stored_condition"}) {
      root.Refuse(key, "has no meaning in the multi-study layout, which always evaluates all nodes");
    }
    return;
  }
  std::vector<int> taken;
  const ErrorWatch watch(*context.errors);
  for (TableReader& table : root.Tables("location")) ReadLocation(context, table, taken);
  context.locations_numbered = watch.Clean();
  taken.clear();
  for (TableReader& table : root.Tables("section")) ReadSection(context, table, taken);
  for (TableReader& table : root.Tables("stored_condition")) ReadCondition(context, table);
}

}  // namespace zentor::companion
