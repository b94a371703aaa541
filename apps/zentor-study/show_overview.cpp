#include <fmt/format.h>
#include <fmt/ostream.h>

#include <functional>

#include "binary_file.h"
#include "commands.h"
#include "platform/text.h"
#include "services/faults.h"
#include "show.h"
#include "study/extended_options.h"
#include "study_results.h"

namespace zentor::companion {

namespace {

constexpr std::size_t kMostUsedShown = 3;

void ShowFiles(StudyTables& tables, std::ostream& out) {
  fmt::print(out, "\nFiles\n");
  for (const FileKind& kind : FileKinds()) {
    if (!tables.HasFile(kind.extension)) continue;
    const std::uint64_t size = BinaryFile(tables.Path(kind.extension)).size();
    fmt::print(out, "  {}  {:>14} bytes  {}\n", kind.extension, size, kind.content);
  }
}

void ShowSettings(const StudySettings& settings, std::ostream& out) {
  fmt::print(out, "\nOptions\n");
  for (const OptionLine& line : DescribeSettings(settings)) {
    fmt::print(out, "  {:<32} {:>8}  {}\n", line.name, line.value, line.meaning);
  }
}

void ShowExtendedOptions(const StudyTables& tables, std::ostream& out) {
  using namespace ftx_format;
  const ExtendedOptions options = ReadExtendedOptions(platform::NativeFileSystem(), tables.Path(kExtension));
  for (const SwitchKey& key : kSwitches) {
    fmt::print(out, "  {:<32} {:>8}\n", key.key, options.*key.member ? key.on : key.off);
  }
  for (const TextKey& key : kTexts) {
    const std::string& text = options.*key.member;
    if (!text.empty()) fmt::print(out, "  {:<32} {}\n", key.key, platform::Printable(text));
  }
}

void ShowModel(StudyTables& tables, std::ostream& out) {
  fmt::print(out, "\nModel\n");
  const auto line = [&](std::string_view name, DbTable table) {
    if (tables.Find(table) == nullptr) return;
    fmt::print(out, "  {:<20} {:>9}, highest number {}\n", name, tables.Count(table), tables.MaxId(table));
  };
  line("nodes", DbTable::kNod);
  line("elements", DbTable::kEle);
  line("element groups", DbTable::kEgr);
  line("coordinate systems", DbTable::kCsy);
  line("materials", DbTable::kMat);
}

void ShowNodeSummary(StudyTables& tables, std::ostream& out) {
  if (!tables.HasFile(".FTR")) return;
  // What a killed run leaves is no damage.
  if (NodeResultsUnfinished(tables.Path(".FTR"))) {
    fmt::print(out, "  .FTR: the run that wrote it did not finish\n");
    return;
  }
  const NodeResults results = ReadNodeResults(tables.Path(".FTR"));
  fmt::print(out, "  .FTR: {} nodes", results.nodes.size());
  const char* separator = "; most used: ";
  for (const std::size_t i : MostUsed(results, kMostUsedShown)) {
    fmt::print(out, "{}node {} ({})", separator, results.nodes[i].node, results.nodes[i].usage);
    separator = ", ";
  }
  fmt::print(out, "\n");
}

void ShowLocationSummary(StudyTables& tables, std::ostream& out) {
  if (!tables.HasFile(".FTI")) return;
  const auto runs = ReadLocationResults(tables.Path(".FTI"));
  fmt::print(out, "  .FTI: {} runs of a single location", runs.size());
  if (!runs.empty()) {
    fmt::print(out, "; the last: location {}, node {}", runs.back().location, runs.back().node);
    if (!runs.back().usage.empty()) fmt::print(out, ", usage factor {}", runs.back().usage.back());
  }
  fmt::print(out, "\n");
}

void ShowMatrixSummary(StudyTables& tables, const StudySettings& settings, std::ostream& out) {
  if (!tables.HasFile(".FTD")) return;
  constexpr std::uint64_t kHeaderBytes = 400;
  if (BinaryFile(tables.Path(".FTD")).size() < kHeaderBytes) {
    fmt::print(out, "  .FTD: the run that wrote it did not finish\n");
    return;
  }
  const MatrixFile file(tables.Path(".FTD"), settings.Bins());
  fmt::print(out, "  .FTD: matrices of {} histories and {} nodes, {} x {} bins\n", file.event_count(),
             file.node_count(), file.range_bins(), file.mean_bins());
}

}  // namespace

void ShowOverview(StudyTables& tables, std::ostream& out) {
  bool any = false;
  for (const FileKind& kind : FileKinds()) any = any || tables.HasFile(kind.extension);
  if (!any) throw CommandFailure(tables.base() + ": no study of this name");

  int faults = 0;
  // A damaged file hides its own part of the overview only.
  const auto part = [&](const std::function<void()>& show) {
    try {
      show();
    } catch (const InputFault& fault) {
      fmt::print(out, "  ! {}\n", fault.what());
      ++faults;
    } catch (const platform::FileError& error) {
      fmt::print(out, "  ! {}\n", error.what());
      ++faults;
    }
  };
  StudySettings settings;
  part([&] { settings = ReadStudySettings(tables); });
  fmt::print(out, "Study {}\nTitle {}\n", tables.base(), platform::Printable(settings.title));
  part([&] { ShowFiles(tables, out); });
  ShowSettings(settings, out);
  part([&] { ShowExtendedOptions(tables, out); });
  part([&] { ShowModel(tables, out); });
  part([&] { ShowDefinition(tables, settings, out); });
  fmt::print(out, "\nResults\n");
  part([&] { ShowNodeSummary(tables, out); });
  part([&] { ShowLocationSummary(tables, out); });
  part([&] { ShowMatrixSummary(tables, settings, out); });
  const std::string_view listing = settings.ListingExtension();
  if (tables.HasFile(listing)) fmt::print(out, "  listing: {}\n", tables.Path(listing));
  if (faults > 0) throw CommandFailure(fmt::format("{} parts of the study could not be read", faults));
}

}  // namespace zentor::companion
