#include <fmt/format.h>

#include <cmath>
#include <iterator>
#include <limits>

#include "results.h"

namespace zentor::companion {

namespace {

// A number that reads back as the same single-precision value; empty for NaN, "inf" for an infinite one.
void AppendField(std::string& line, float value) {
  line += ',';
  if (!std::isnan(value)) fmt::format_to(std::back_inserter(line), "{}", value);
}

std::string_view MatrixName(MatrixKind kind) {
  switch (kind) {
    case MatrixKind::kHistory:
      return "event_cycles";
    case MatrixKind::kDamage:
      return "node_damage";
    case MatrixKind::kCycles:
      return "node_cycles";
  }
  return "";
}

}  // namespace

ExportedResult Exported(const NodeResults& results, const NodeResult& node) {
  constexpr float kNone = std::numeric_limits<float>::quiet_NaN();
  return {.usage = node.usage,
          .life = results.Life(node).value_or(kNone),
          .life_factor = LifeFactor(node.usage),
          .factor_of_safety = results.FactorOfSafety(node).value_or(kNone),
          .biaxiality = node.biaxiality};
}

void WriteNodeCsv(const Mesh& mesh, const NodeResults& results, OutputFile& out) {
  out.Write("node,x,y,z,usage_factor,life,life_factor,factor_of_safety,biaxiality_ratio\n");
  std::string line;
  for (const NodeResult& node : results.nodes) {
    line = std::to_string(node.node);
    const auto place = FindNode(mesh, node.node);
    for (std::size_t axis = 0; axis < 3; ++axis) {
      AppendField(line, place ? mesh.points[*place][axis] : std::numeric_limits<float>::quiet_NaN());
    }
    const ExportedResult r = Exported(results, node);
    for (const float value : {r.usage, r.life, r.life_factor, r.factor_of_safety, r.biaxiality}) {
      AppendField(line, value);
    }
    line += '\n';
    out.Write(line);
  }
}

void WriteMatrixCsv(MatrixFile& matrices, OutputFile& out) {
  out.Write("matrix,number,range_bin,mean_bin,range_from,range_to,mean_from,mean_to,value\n");
  for (int b = 1; b <= matrices.block_count(); ++b) {
    const RangeMeanBlock block = matrices.Block(b);
    const auto range = [&](int i) { return block.range_origin + block.range_width * static_cast<float>(i); };
    const auto mean = [&](int j) { return block.mean_origin + block.mean_width * static_cast<float>(j); };
    for (int j = 1; j <= block.mean_bins; ++j) {
      for (int i = 1; i <= block.range_bins; ++i) {
        if (block.At(i, j) == 0) continue;
        std::string line = fmt::format("{},{},{},{}", MatrixName(block.kind), block.identifier, i, j);
        for (const float edge : {range(i - 1), range(i), mean(j - 1), mean(j)}) AppendField(line, edge);
        // Both contents are exact in single precision or whole numbers.
        if (block.kind == MatrixKind::kDamage) {
          AppendField(line, static_cast<float>(block.At(i, j)));
        } else {
          fmt::format_to(std::back_inserter(line), ",{:.0f}", block.At(i, j));
        }
        out.Write(line + '\n');
      }
    }
  }
}

void WritePairCsv(const LocationResult& run, OutputFile& out) {
  out.Write(
      "loading_a,event_a,loading_b,event_b,used_cycles,allowed_cycles,alternating_stress,partial_usage,"
      "temperature,ke,sn\n");
  constexpr float kNone = std::numeric_limits<float>::quiet_NaN();
  for (const PairRecord& pair : run.pairs) {
    const bool has_events = !run.elastic_plastic;
    std::string line =
        fmt::format("{},{},{},{},", pair.loading_a, has_events ? std::to_string(pair.event_a) : "",
                    pair.loading_b, has_events ? std::to_string(pair.event_b) : "");
    if (run.usage_evaluated) line += std::to_string(pair.used_cycles);
    AppendField(line, run.usage_evaluated ? pair.allowed_cycles : kNone);
    AppendField(line, pair.alternating_stress);
    AppendField(line, run.usage_evaluated ? pair.partial_usage : kNone);
    for (const float value : {pair.temperature, pair.ke, pair.sn}) {
      AppendField(line, run.elastic_plastic ? value : kNone);
    }
    out.Write(line + '\n');
  }
}

}  // namespace zentor::companion
