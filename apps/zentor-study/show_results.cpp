#include <fmt/format.h>
#include <fmt/ostream.h>

#include <algorithm>
#include <cmath>

#include "commands.h"
#include "show.h"
#include "study_results.h"

namespace zentor::companion {

namespace {

void ShowNodeResult(const NodeResults& results, const NodeResult& node, std::ostream& out) {
  const auto text = [](std::optional<float> value) {
    return value && std::isfinite(*value) ? fmt::format("{}", *value) : LimitText(value);
  };
  fmt::print(out, "  {:>8}  {:>14}  {:>14}  {:>14}  {:>14}\n", node.node, node.usage,
             text(results.Life(node)), text(results.FactorOfSafety(node)), node.biaxiality);
}

void ShowPair(const PairRecord& pair, const LocationResult& run, std::ostream& out) {
  if (run.elastic_plastic) {
    fmt::print(out, "  {:>4} {:>4}  {:>9}  {:>12}  {:>11}  {:>9}  {:>12}  {:>12}  {:>13}\n", pair.loading_a,
               pair.loading_b, pair.used_cycles, pair.allowed_cycles, pair.temperature, pair.ke,
               pair.alternating_stress, pair.sn, pair.partial_usage);
  } else if (!run.usage_evaluated) {
    fmt::print(out, "  {:>4} ({:>2}) {:>4} ({:>2})  {:>12}\n", pair.loading_a, pair.event_a, pair.loading_b,
               pair.event_b, pair.alternating_stress);
  } else {
    fmt::print(out, "  {:>4} ({:>2}) {:>4} ({:>2})  {:>9}  {:>12}  {:>12}  {:>13}\n", pair.loading_a,
               pair.event_a, pair.loading_b, pair.event_b, pair.used_cycles, pair.allowed_cycles,
               pair.alternating_stress, pair.partial_usage);
  }
}

void ShowPairHeading(const LocationResult& run, std::ostream& out) {
  if (run.elastic_plastic) {
    fmt::print(out, "  {:>4} {:>4}  {:>9}  {:>12}  {:>11}  {:>9}  {:>12}  {:>12}  {:>13}\n", "a", "b", "used",
               "allowed", "temperature", "Ke", "alternating", "Sn", "partial usage");
  } else if (!run.usage_evaluated) {
    fmt::print(out, "  {:>9} {:>9}  {:>12}\n", "a (event)", "b (event)", "alternating");
  } else {
    fmt::print(out, "  {:>9} {:>9}  {:>9}  {:>12}  {:>12}  {:>13}\n", "a (event)", "b (event)", "used",
               "allowed", "alternating", "partial usage");
  }
}

void ShowLocationRun(const LocationResult& run, std::size_t number, const ShowRequest& request,
                     std::ostream& out) {
  fmt::print(out, "run {}: location {}, node {}, shell surface {}, shell layer {}{}\n", number, run.location,
             run.node, run.shell_surface, run.shell_layer, run.elastic_plastic ? ", elastic-plastic" : "");
  if (!run.pairs.empty()) ShowPairHeading(run, out);
  RowLimit rows(request.limit);
  for (const PairRecord& pair : run.pairs) {
    if (rows.Next()) ShowPair(pair, run, out);
  }
  rows.End(out, run.pairs.size(), "pairs");
  if (!run.usage.empty()) fmt::print(out, "  cumulative usage factor {}\n", run.usage.back());
}

std::string_view KindText(MatrixKind kind) {
  switch (kind) {
    case MatrixKind::kHistory:
      return "cycles of event";
    case MatrixKind::kDamage:
      return "damage of node";
    case MatrixKind::kCycles:
      return "cycles of node";
  }
  return "";
}

double Sum(const RangeMeanBlock& block) {
  double sum = 0;
  for (const double value : block.values) sum += value;
  return sum;
}

std::uint64_t OccupiedBins(const RangeMeanBlock& block) {
  return static_cast<std::uint64_t>(
      std::count_if(block.values.begin(), block.values.end(), [](double value) { return value != 0; }));
}

void ShowBlock(const RangeMeanBlock& block, const ShowRequest& request, std::ostream& out) {
  fmt::print(out, "{} {}\n", KindText(block.kind), block.identifier);
  fmt::print(out, "  range bins from {} in steps of {}, mean bins from {} in steps of {}\n",
             block.range_origin, block.range_width, block.mean_origin, block.mean_width);
  fmt::print(out, "  sum {:g}\n  {:>5} {:>5}  {:>27}  {:>27}  {}\n", Sum(block), "i", "j", "range", "mean",
             "value");
  RowLimit rows(request.limit);
  for (int i = block.range_bins; i >= 1; --i) {
    for (int j = 1; j <= block.mean_bins; ++j) {
      if (block.At(i, j) == 0 || !rows.Next()) continue;
      const auto edge = [](float origin, float width, int bin) {
        return origin + width * static_cast<float>(bin);
      };
      fmt::print(out, "  {:>5} {:>5}  {:>12} to {:>11}  {:>12} to {:>11}  {}\n", i, j,
                 edge(block.range_origin, block.range_width, i - 1),
                 edge(block.range_origin, block.range_width, i),
                 edge(block.mean_origin, block.mean_width, j - 1),
                 edge(block.mean_origin, block.mean_width, j), block.At(i, j));
    }
  }
  rows.End(out, OccupiedBins(block), "occupied bins");
}

}  // namespace

void ShowNodeResults(const std::string& path, const ShowRequest& request, std::ostream& out) {
  const NodeResults results = ReadNodeResults(path);
  if (!request.Chosen(0)) {
    fmt::print(out, "{}\n  {} nodes evaluated, highest node {}, {} elements, {} {}, {} amplitude\n\n", path,
               results.nodes.size(), results.visited_nodes, results.element_count, results.event_count,
               results.variable_amplitude ? "histories" : "events",
               results.variable_amplitude ? "variable" : "constant");
  }
  fmt::print(out, "  {:>8}  {:>14}  {:>14}  {:>14}  {:>14}\n", "node", "usage factor", "life",
             "safety factor", "biaxiality");
  if (request.Chosen(0)) {
    const auto found = std::find_if(results.nodes.begin(), results.nodes.end(),
                                    [&](const NodeResult& node) { return node.node == request.numbers[0]; });
    if (found == results.nodes.end())
      throw CommandFailure(fmt::format("{}: no node {}", path, request.numbers[0]));
    return ShowNodeResult(results, *found, out);
  }
  RowLimit rows(request.limit);
  for (const NodeResult& node : results.nodes) {
    if (!rows.Next()) break;
    ShowNodeResult(results, node, out);
  }
  rows.End(out, results.nodes.size(), "nodes");
}

void ShowLocationResults(const std::string& path, const ShowRequest& request, std::ostream& out) {
  const auto runs = ReadLocationResults(path);
  if (request.Chosen(0)) {
    const int run = request.numbers[0];
    if (run < 1 || static_cast<std::size_t>(run) > runs.size()) {
      throw CommandFailure(fmt::format("{}: no run {}, the file holds {}", path, run, runs.size()));
    }
    return ShowLocationRun(runs[static_cast<std::size_t>(run) - 1], static_cast<std::size_t>(run), request,
                           out);
  }
  fmt::print(out, "{}\n  {} runs of a single location\n\n", path, runs.size());
  // The last runs are the interesting ones.
  const std::size_t shown = static_cast<std::size_t>(std::min<std::uint64_t>(request.limit, runs.size()));
  if (shown < runs.size()) fmt::print(out, "  ... {} earlier runs (--all shows them)\n", runs.size() - shown);
  for (std::size_t i = runs.size() - shown; i < runs.size(); ++i)
    ShowLocationRun(runs[i], i + 1, request, out);
}

void ShowMatrices(StudyTables& tables, const ShowRequest& request, std::ostream& out) {
  MatrixFile file(tables.Path(".FTD"), ReadStudySettings(tables).Bins());
  if (request.Chosen(0)) return ShowBlock(file.Block(request.numbers[0]), request, out);
  fmt::print(out, "{}\n  {} range bins, {} mean bins, {} histories, {} nodes with matrices, filter {} %\n\n",
             tables.Path(".FTD"), file.range_bins(), file.mean_bins(), file.event_count(), file.node_count(),
             file.filter_percent());
  fmt::print(out, "  {:>6}  {:<24}  {:>14}  {}\n", "matrix", "content", "sum", "occupied bins");
  for (int block = 1; block <= file.block_count(); ++block) {
    const RangeMeanBlock content = file.Block(block);
    fmt::print(out, "  {:>6}  {:<24}  {:>14g}  {}\n", block,
               fmt::format("{} {}", KindText(content.kind), content.identifier), Sum(content),
               OccupiedBins(content));
  }
  fmt::print(out, "\n");
  for (int block = 1; block <= file.event_count(); ++block) ShowBlock(file.Block(block), request, out);
}

}  // namespace zentor::companion
