#include "run_summary.h"

#include <fmt/format.h>
#include <fmt/ostream.h>

#include <cmath>
#include <iterator>
#include <nlohmann/json.hpp>

#include "content_checks.h"
#include "mesh_reader.h"
#include "result_checks.h"

namespace zentor::companion {

namespace {

constexpr std::size_t kTopNodes = 10;
constexpr std::size_t kTopPairs = 10;

std::optional<std::array<float, 3>> PointOf(StudyTables& tables, int node) {
  if (!tables.Has(DbTable::kNod, node)) return std::nullopt;
  std::array<float, 3> point{};
  tables.Reals(DbTable::kNod, node, 2, point);
  return point;
}

void Append(std::vector<std::string>& warnings, std::vector<std::string> more) {
  std::move(more.begin(), more.end(), std::back_inserter(warnings));
}

void AddNodeResults(RunSummary& summary, StudyTables& tables, const std::optional<StudyDefinition>& content) {
  const NodeResults results = ReadNodeResults(tables.Path(".FTR"));
  if (content) Append(summary.warnings, CheckNodeResults(tables.base(), *content, results));
  summary.nodes_evaluated = results.nodes.size();
  for (const std::size_t i : MostUsed(results, kTopNodes)) {
    const NodeResult& node = results.nodes[i];
    summary.most_used.push_back({node.node, PointOf(tables, node.node), node.usage, results.Life(node)});
  }
}

void AddLocationResults(RunSummary& summary, StudyTables& tables,
                        const std::optional<StudyDefinition>& content) {
  const auto runs = ReadLocationResults(tables.Path(".FTI"));
  if (runs.empty()) return;
  const LocationResult& run = runs.back();
  if (content) Append(summary.warnings, CheckLocationResult(*content, run));
  summary.location = run.location;
  summary.has_usage = !run.usage.empty();
  const float usage = run.usage.empty() ? 0.0F : run.usage.back();
  summary.location_node = SummaryNode{run.node, PointOf(tables, run.node), usage, std::nullopt};
  summary.pairs = run.pairs;
  summary.elastic_plastic = run.elastic_plastic;
}

std::string PointText(const SummaryNode& node) {
  if (!node.point) return fmt::format("{:>12}  {:>12}  {:>12}", "-", "-", "-");
  const auto& p = *node.point;
  return fmt::format("{:>12g}  {:>12g}  {:>12g}", p[0], p[1], p[2]);
}

void PrintNodes(const RunSummary& summary, std::ostream& out) {
  const bool life = !summary.most_used.empty() && summary.most_used.front().life.has_value();
  fmt::print(out, "{} nodes evaluated; the most used:\n", summary.nodes_evaluated);
  fmt::print(out, "{:>8}  {:>12}  {:>12}  {:>12}  {:>13}  {:>14}", "node", "x", "y", "z", "usage factor",
             "factor of life");
  fmt::print(out, "{}\n", life ? fmt::format("  {:>13}", "life") : "");
  for (const SummaryNode& node : summary.most_used) {
    fmt::print(out, "{:>8}  {}  {:>13g}  {:>14}", node.node, PointText(node), node.usage,
               LimitText(LifeFactor(node.usage)));
    fmt::print(out, "{}\n", life ? fmt::format("  {:>13}", LimitText(node.life)) : "");
  }
}

// A loading with its event, where the record tells it.
std::string LoadingText(int loading, int event, bool has_event) {
  return has_event ? fmt::format("{} ({})", loading, event) : std::to_string(loading);
}

void PrintPairs(const RunSummary& summary, std::ostream& out) {
  if (summary.pairs.empty()) return;
  const bool events = !summary.elastic_plastic;
  fmt::print(out, "{:>11}  {:>11}  {:>9}  {:>13}  {:>13}  {:>13}", events ? "a (event)" : "a",
             events ? "b (event)" : "b", "used", "allowed", "alternating", "partial usage");
  fmt::print(out, "{}\n", events ? "" : fmt::format("  {:>8}", "Ke"));
  for (std::size_t i = 0; i < std::min(kTopPairs, summary.pairs.size()); ++i) {
    const PairRecord& pair = summary.pairs[i];
    fmt::print(out, "{:>11}  {:>11}  {:>9}  {:>13g}  {:>13g}  {:>13g}",
               LoadingText(pair.loading_a, pair.event_a, events),
               LoadingText(pair.loading_b, pair.event_b, events), pair.used_cycles, pair.allowed_cycles,
               pair.alternating_stress, pair.partial_usage);
    fmt::print(out, "{}\n", events ? "" : fmt::format("  {:>8g}", pair.ke));
  }
  if (summary.pairs.size() > kTopPairs) {
    fmt::print(out, "  ... {} more pairs\n", summary.pairs.size() - kTopPairs);
  }
}

void PrintLocation(const RunSummary& summary, std::ostream& out) {
  if (!summary.location_node) return;
  const SummaryNode& node = *summary.location_node;
  fmt::print(out, "location {}, node {}", *summary.location, node.node);
  if (node.point) fmt::print(out, " at {:g} {:g} {:g}", (*node.point)[0], (*node.point)[1], (*node.point)[2]);
  fmt::print(out, "\n");
  PrintPairs(summary, out);
  if (!summary.has_usage) {
    fmt::print(out, "no usage factor: the S-N curve has fewer than two points\n");
    return;
  }
  fmt::print(out, "usage factor {:g}, factor of life {}\n", node.usage, LimitText(LifeFactor(node.usage)));
}

// The shortest number that is this value in single precision. Not a number and infinite values have no form
// there.
nlohmann::ordered_json Number(float value) {
  if (!std::isfinite(value)) return nullptr;
  return std::stod(fmt::format("{}", value));
}
nlohmann::ordered_json Number(std::optional<float> value) {
  return value ? Number(*value) : nlohmann::ordered_json(nullptr);
}

// Objects are made as such: one that grows out of null is left in pieces when there is no memory for it.
nlohmann::ordered_json NodeJson(const SummaryNode& node) {
  nlohmann::ordered_json json = nlohmann::ordered_json::object();
  json["node"] = node.node;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    json[std::string(1, static_cast<char>('x' + axis))] =
        node.point ? Number((*node.point)[axis]) : nlohmann::ordered_json(nullptr);
  }
  json["usage_factor"] = Number(node.usage);
  json["life_factor"] = Number(LifeFactor(node.usage));
  json["life"] = Number(node.life);
  json["unlimited"] = std::isinf(LifeFactor(node.usage)) || (node.life && std::isinf(*node.life));
  return json;
}

nlohmann::ordered_json PairJson(const PairRecord& pair, bool elastic_plastic) {
  nlohmann::ordered_json json = nlohmann::ordered_json::object();
  json["loading_a"] = pair.loading_a;
  json["loading_b"] = pair.loading_b;
  if (elastic_plastic) {
    json["temperature"] = Number(pair.temperature);
    json["ke"] = Number(pair.ke);
    json["sn"] = Number(pair.sn);
  } else {
    json["event_a"] = pair.event_a;
    json["event_b"] = pair.event_b;
  }
  json["used_cycles"] = pair.used_cycles;
  json["allowed_cycles"] = Number(pair.allowed_cycles);
  json["alternating_stress"] = Number(pair.alternating_stress);
  json["partial_usage"] = Number(pair.partial_usage);
  return json;
}

}  // namespace

void AddResults(RunSummary& summary, StudyTables& tables, const StudySettings& settings,
                const std::optional<StudyDefinition>& content) {
  summary.all_nodes = IsAllNodes(settings.properties);
  if (summary.all_nodes) {
    AddNodeResults(summary, tables, content);
  } else {
    AddLocationResults(summary, tables, content);
  }
}

void PrintSummary(const RunSummary& summary, std::ostream& out) {
  fmt::print(out, "{}: {}\n", summary.study, summary.verdict.completed ? "completed" : "not completed");
  if (!summary.verdict.completed) fmt::print(out, "{}\n", summary.verdict.reason);
  if (summary.verdict.completed && summary.all_nodes) PrintNodes(summary, out);
  if (summary.verdict.completed && !summary.all_nodes) PrintLocation(summary, out);
  const std::string factor = StrengthReductionText(summary.strength_reduction_factor);
  if (!factor.empty()) fmt::print(out, "{}\n", factor);
  fmt::print(out, "warnings: {}\n", summary.warnings.size());
  for (const std::string& warning : summary.warnings) fmt::print(out, "  {}\n", warning);
  fmt::print(out, "listing: {}\n", summary.listing);
}

nlohmann::ordered_json SummaryJson(const RunSummary& summary) {
  nlohmann::ordered_json json = nlohmann::ordered_json::object();
  json["study"] = summary.study;
  json["title"] = summary.title;
  json["completed"] = summary.verdict.completed;
  json["reason"] = nullptr;
  if (!summary.verdict.completed) json["reason"] = summary.verdict.reason;
  json["listing"] = summary.listing;
  json["seconds"] = summary.seconds;
  json["solution_seconds"] = summary.solution_seconds ? nlohmann::ordered_json(*summary.solution_seconds)
                                                      : nlohmann::ordered_json(nullptr);
  json["solver_exit_code"] = summary.solver_exit_code;
  json["strength_reduction_factor"] = Number(summary.strength_reduction_factor);
  json["warnings"] = summary.warnings;
  json["all_nodes"] = summary.all_nodes;
  if (summary.all_nodes) {
    json["nodes_evaluated"] = summary.nodes_evaluated;
    json["most_used"] = nlohmann::ordered_json::array();
    for (const SummaryNode& node : summary.most_used) json["most_used"].push_back(NodeJson(node));
  } else if (summary.location_node) {
    nlohmann::ordered_json location = NodeJson(*summary.location_node);
    location["location"] = *summary.location;
    if (!summary.has_usage) {
      location["usage_factor"] = nullptr;
      location["unlimited"] = false;
    }
    location["pairs"] = nlohmann::ordered_json::array();
    for (const PairRecord& pair : summary.pairs)
      location["pairs"].push_back(PairJson(pair, summary.elastic_plastic));
    json["location"] = location;
  }
  return json;
}

std::string JsonText(const RunSummary& summary) {
  using nlohmann::ordered_json;
  const std::string text = SummaryJson(summary).dump(2, ' ', false, ordered_json::error_handler_t::replace);
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : '\0');
    const bool two_bytes = byte == 0xC2 && next < 0xA0;  // U+0080 to U+009F
    if (two_bytes || byte == 0x7F) {
      out += fmt::format("\\u{:04x}", two_bytes ? next : byte);
      i += two_bytes ? 1 : 0;
    } else {
      out += text[i];
    }
  }
  return out;
}

}  // namespace zentor::companion
