#include <fmt/format.h>
#include <fmt/ostream.h>

#include <algorithm>
#include <optional>

#include "binary_file.h"
#include "commands.h"
#include "show.h"

namespace zentor::companion {

namespace {

struct HistoryCurve {
  std::int32_t start = 0;  // word
  std::int32_t points = 0;
  bool present() const { return start != 0; }
};

HistoryCurve ReadCurve(BinaryFile& file, int curve) {
  const std::uint64_t entry = 4 * (10 + 2 * static_cast<std::uint64_t>(curve - 1));
  const std::string place = "curve " + std::to_string(curve);
  HistoryCurve result{file.Int(entry, place + ", start word"),
                      file.Int(entry + 4, place + ", number of points")};
  if (result.present()) {
    if (result.start < 0) file.Fault(place + ", start word", std::to_string(result.start), "0 or more");
    if (result.points < 0)
      file.Fault(place + ", number of points", std::to_string(result.points), "0 or more");
    const auto start = static_cast<std::uint64_t>(result.start),
               points = static_cast<std::uint64_t>(result.points);
    if (!file.Holds(4 * start, 8 * points)) {
      file.Fault(place, fmt::format("{} points from word {}", points, start), "points inside the file");
    }
  }
  return result;
}

void ShowCurve(BinaryFile& file, int curve, bool times, const ShowRequest& request, std::ostream& out) {
  const HistoryCurve c = ReadCurve(file, curve);
  if (!c.present()) throw CommandFailure(fmt::format("{}: curve {} is absent", file.path(), curve));
  fmt::print(out, "curve {}: {} points\n  {:>8}", curve, c.points, "point");
  if (times) fmt::print(out, "  {:>14}", "time");
  fmt::print(out, "  {:>14}\n", "value");
  const std::uint64_t time_start = 4 * static_cast<std::uint64_t>(c.start);
  const std::uint64_t value_start = time_start + 4 * static_cast<std::uint64_t>(c.points);
  const auto shown = std::min<std::uint64_t>(static_cast<std::uint64_t>(c.points), request.limit);
  const auto values = file.Reals(value_start, shown, "values");
  const auto time_values = times ? file.Reals(time_start, shown, "times") : std::vector<float>{};
  RowLimit rows(request.limit);
  for (std::size_t i = 0; i < values.size() && rows.Next(); ++i) {
    fmt::print(out, "  {:>8}", i + 1);
    if (times) fmt::print(out, "  {:>14}", time_values[i]);
    fmt::print(out, "  {:>14}\n", values[i]);
  }
  rows.End(out, static_cast<std::uint64_t>(c.points), "points");
}

void ListCurve(BinaryFile& file, int curve, bool times, std::ostream& out) {
  const HistoryCurve c = ReadCurve(file, curve);
  if (!c.present()) {
    fmt::print(out, "  {:>6}  absent\n", curve);
    return;
  }
  const std::uint64_t start = 4 * static_cast<std::uint64_t>(c.start);
  const auto points = static_cast<std::uint64_t>(c.points);
  const auto values = file.Reals(start + 4 * points, points, "values");
  fmt::print(out, "  {:>6}  {:>10}", curve, c.points);
  if (!values.empty()) {
    const auto [low, high] = std::minmax_element(values.begin(), values.end());
    fmt::print(out, "  {:>14}  {:>14}", *low, *high);
    if (times) {
      fmt::print(out, "  {:>14}  {:>14}", file.Real(start, "first time"),
                 file.Real(start + 4 * (points - 1), "last time"));
    }
  }
  fmt::print(out, "\n");
}

// Entries of the load-case table: the second word says how many there are, as far as it can be believed.
int TemperatureCases(BinaryFile& file, std::uint64_t base) {
  constexpr int kMostCases = 100;
  const std::int32_t stored = file.Int(4, "number of load cases");
  const std::uint64_t room = (file.size() - base) / 8;
  if (room == 0) {
    file.Fault("word 0, place of the load-case table", std::to_string(base), "a table inside the file");
  }
  if (stored >= 1 && static_cast<std::uint64_t>(stored) <= room) return stored;
  return static_cast<int>(std::min<std::uint64_t>(kMostCases, room));
}

void ShowCaseTemperatures(StudyTables& tables, BinaryFile& file, int load_case, int entry,
                          const ShowRequest& request, std::ostream& out) {
  constexpr std::uint64_t kRecord = 48;
  const int nodes = tables.MaxId(DbTable::kNod);
  fmt::print(out, "load case {}\n  {:>8}  {:>14}\n", load_case, "node", "temperature");
  RowLimit rows(request.limit);
  std::uint64_t record = static_cast<std::uint64_t>(entry) - 1;
  for (int node = 1; node <= nodes && !rows.Full(); ++node) {
    if (!tables.Has(DbTable::kNod, node) || !rows.Next()) continue;
    fmt::print(out, "  {:>8}  {:>14}\n", node, file.Real(record * kRecord + 8, fmt::format("node {}", node)));
    ++record;
  }
  rows.End(out, static_cast<std::uint64_t>(tables.Count(DbTable::kNod)), "nodes");
}

}  // namespace

void ShowHistories(const std::string& path, const ShowRequest& request, std::ostream& out) {
  BinaryFile file(path);
  const std::int32_t curves = file.Int(4, "word 1, number of curves");
  const bool times = file.Int(8, "word 2, times flag") != 0;
  if (curves < 0 || !file.Holds(40, 8 * static_cast<std::uint64_t>(curves))) {
    file.Fault("word 1, number of curves", std::to_string(curves), "a curve table inside the file");
  }
  if (request.Chosen(0)) {
    const int curve = request.numbers[0];
    if (curve < 1 || curve > curves) {
      throw CommandFailure(fmt::format("{}: no curve {}, the file holds {}", path, curve, curves));
    }
    return ShowCurve(file, curve, times, request, out);
  }
  fmt::print(out, "{}\n  {} curves, {} times\n\n", path, curves, times ? "with" : "without");
  fmt::print(out, "  {:>6}  {:>10}  {:>14}  {:>14}", "curve", "points", "lowest", "highest");
  if (times) fmt::print(out, "  {:>14}  {:>14}", "first time", "last time");
  fmt::print(out, "\n");
  RowLimit rows(request.limit);
  for (int curve = 1; curve <= curves && rows.Next(); ++curve) ListCurve(file, curve, times, out);
  rows.End(out, static_cast<std::uint64_t>(curves), "curves");
}

void ShowTemperatures(StudyTables& tables, const ShowRequest& request, std::ostream& out) {
  BinaryFile file(tables.Path(".HTO"));
  const std::int32_t base = file.Int(0, "word 0, place of the load-case table");
  if (base < 0 || static_cast<std::uint64_t>(base) > file.size()) {
    file.Fault("word 0, place of the load-case table", std::to_string(base), "a byte inside the file");
  }
  const int cases = TemperatureCases(file, static_cast<std::uint64_t>(base));
  const auto entry = [&](int load_case) {
    const std::string place = "entry of load case " + std::to_string(load_case);
    const std::int32_t value =
        file.Int(static_cast<std::uint64_t>(base) + 8 * static_cast<std::uint64_t>(load_case - 1), place);
    if (value < 0) file.Fault(place, std::to_string(value), "0 or more");
    return value;
  };
  if (!request.Chosen(0)) fmt::print(out, "{}\n  load-case table at byte {}\n\n", file.path(), base);
  bool found = false;
  for (int load_case = 1; load_case <= cases; ++load_case) {
    if (request.Chosen(0) && load_case != request.numbers[0]) continue;
    const int first = entry(load_case);
    if (first == 0) continue;
    ShowCaseTemperatures(tables, file, load_case, first, request, out);
    found = true;
  }
  if (request.Chosen(0) && !found) {
    throw CommandFailure(fmt::format("{}: no temperatures of load case {}", file.path(), request.numbers[0]));
  }
}

void ShowSurfaceFaces(const std::string& path, const ShowRequest& request, std::ostream& out) {
  constexpr std::uint64_t kRecord = 80;
  constexpr int kMostNodes = 7;
  BinaryFile file(path);
  const std::int32_t records = file.Int(4, "word 2, number of records");
  if (records < 0 || static_cast<std::uint64_t>(records) > file.size() / kRecord + 1) {
    file.Fault("word 2, number of records", std::to_string(records), "records inside the file");
  }
  const auto faces = static_cast<std::uint64_t>(std::max(0, records - 1));
  fmt::print(out, "{}\n  {} faces\n\n  {:>8}  {:>8}  {}\n", path, faces, "face", "element", "nodes");
  RowLimit rows(request.limit);
  for (std::uint64_t face = 1; face <= faces && rows.Next(); ++face) {
    const auto words = file.Ints(face * kRecord, 11, "face " + std::to_string(face));
    fmt::print(out, "  {:>8}  {:>8} ", face, words[1]);
    for (int i = 0; i < std::clamp(words[3], 0, kMostNodes); ++i) {
      fmt::print(out, " {}", words[4 + static_cast<std::size_t>(i)]);
    }
    if (words[3] > kMostNodes) fmt::print(out, " ... ({} nodes)", words[3]);
    fmt::print(out, "\n");
  }
  rows.End(out, faces, "faces");
}

}  // namespace zentor::companion
