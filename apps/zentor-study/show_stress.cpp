#include <fmt/format.h>
#include <fmt/ostream.h>

#include <algorithm>
#include <array>

#include "authoring/element_kind.h"
#include "binary_file.h"
#include "commands.h"
#include "database/element_layouts.h"
#include "show.h"
#include "stress_file.h"

namespace zentor::companion {

namespace {

namespace sf = stress_format;

std::string_view HeaderName(std::size_t word) {
  switch (word) {
    case sf::kStepTableStart:
      return "start word of the step pointer table";
    case sf::kStepCapacity:
      return "capacity of the step pointer table";
    case sf::kElementCount:
      return "entries of the element pointer table";
    case sf::kStepCount:
      return "stored steps";
    case sf::kLaterStepCount:
      return "stored steps of .STP, when more";
    case sf::kPointerWidth:
      return "words per pointer";
    default:
      return "";
  }
}

constexpr std::array<std::string_view, 6> kComponents = {"SX", "SY", "SZ", "TXY", "TXZ", "TYZ"};

void ShowStressHeader(const StressFile& file, std::ostream& out) {
  for (std::size_t word = 0; word < sf::kHeaderWords; ++word) {
    if (file.header()[word] == 0 && HeaderName(word).empty()) continue;
    fmt::print(out, "  header word {:>2}  {:>12}  {}\n", word, file.header()[word], HeaderName(word));
  }
}

void ShowSteps(const StressFile& file, const ShowRequest& request, std::ostream& out) {
  fmt::print(out, "\nsteps:\n");
  RowLimit rows(request.limit);
  for (int step = 1; step <= file.step_count() && rows.Next(); ++step) {
    if (file.HasStep(step)) {
      fmt::print(out, "  {:>6}  at byte {}\n", step, file.StepPointer(step));
    } else {
      fmt::print(out, "  {:>6}  no data\n", step);
    }
  }
  rows.End(out, static_cast<std::uint64_t>(file.step_count()), "steps");
}

std::string KindName(int type_code, int nodes) {
  const ElementKind* kind = FindElementKind(type_code, nodes);
  return kind == nullptr ? "" : " (" + std::string(kind->name) + ")";
}

void ShowElements(StressFile& file, int step, const ShowRequest& request, std::ostream& out) {
  fmt::print(out, "\nelements of step {}:\n  {:>8}  {:>9}  {:>6}  {:>6}  {:>6}\n", step, "element", "type",
             "nodes", "layers", "words");
  RowLimit rows(request.limit);
  for (int element = 1; element <= file.element_count() && rows.Next(); ++element) {
    const auto record = file.Record(step, element);
    if (!record || record->size() < sf::kRecordHeadWords) {
      fmt::print(out, "  {:>8}  no data\n", element);
      continue;
    }
    const auto word = [&](std::size_t k) { return (*record)[k]; };
    fmt::print(out, "  {:>8}  {:>9}  {:>6}  {:>6}  {:>6}{}\n", element, word(2), word(3), word(5),
               record->size(), KindName(static_cast<int>(word(2)), static_cast<int>(word(3))));
  }
  rows.End(out, static_cast<std::uint64_t>(file.element_count()), "elements");
}

// The value at a word of the record; a dash where the record is shorter.
std::string At(const std::vector<float>& record, std::int64_t word) {
  if (word < 0 || static_cast<std::size_t>(word) >= record.size()) return "-";
  return fmt::format("{}", record[static_cast<std::size_t>(word)]);
}

void ShowNodeRows(const std::vector<float>& record, const RecordLayout& layout, int nodes,
                  std::ostream& out) {
  fmt::print(out, "  {:>8}", "node");
  for (int c = 0; c < layout.components; ++c)
    fmt::print(out, "  {:>13}", kComponents[static_cast<std::size_t>(c)]);
  fmt::print(out, "\n");
  for (int j = 0; j < nodes; ++j) {
    fmt::print(out, "  {:>8}", At(record, layout.node_word + std::int64_t{j} * layout.node_stride));
    for (int c = 0; c < layout.components; ++c) {
      fmt::print(out, "  {:>13}",
                 At(record, layout.component_word + std::int64_t{j} * layout.component_stride + c));
    }
    fmt::print(out, "\n");
  }
}

void ShowRawWords(const std::vector<float>& record, const ShowRequest& request, std::ostream& out) {
  RowLimit rows(request.limit);
  for (std::size_t word = 0; word < record.size() && rows.Next(); ++word) {
    fmt::print(out, "  word {:>6}  {}\n", word, record[word]);
  }
  rows.End(out, record.size(), "words");
}

// A whole number of the record's head; -1 for one that cannot be true.
int HeadNumber(const std::vector<float>& record, sf::RecordWord word) {
  const float value = record[word];
  return value >= 0 && value <= 1000000 ? static_cast<int>(value) : -1;
}

void ShowLayers(const std::vector<float>& record, RecordForm form, const ShowRequest& request,
                std::ostream& out) {
  const int code = HeadNumber(record, sf::kTypeCode), nodes = HeadNumber(record, sf::kNodeCount);
  const int layers = IsLayered(code) ? std::max(1, HeadNumber(record, sf::kLayerCount)) : 1;
  for (int layer = 1; layer <= layers && static_cast<std::uint64_t>(layer) <= request.limit; ++layer) {
    for (const Surface surface : {Surface::kTop, Surface::kBottom}) {
      if (surface == Surface::kBottom && !HasSurfaces(code)) continue;
      const RecordLayout layout = LayoutOf(code, form, nodes, layer, surface);
      // A damaged layer count can ask for layers without end.
      if (layout.node_word >= static_cast<std::int64_t>(record.size())) return;
      if (layers > 1 || HasSurfaces(code)) fmt::print(out, "layer {}", layer);
      if (HasSurfaces(code)) fmt::print(out, "{}", surface == Surface::kTop ? ", top" : ", bottom");
      if (layers > 1 || HasSurfaces(code)) fmt::print(out, "\n");
      ShowNodeRows(record, layout, nodes, out);
    }
  }
}

void ShowElement(StressFile& file, RecordForm form, int step, int element, const ShowRequest& request,
                 std::ostream& out) {
  const auto record = file.Record(step, element);
  if (!record || record->size() < sf::kRecordHeadWords) {
    throw CommandFailure(fmt::format("element {} has no data in step {}", element, step));
  }
  const int code = HeadNumber(*record, sf::kTypeCode), nodes = HeadNumber(*record, sf::kNodeCount);
  fmt::print(out, "step {}, element {}: type {}{}, {} nodes, {} layers, {} words\n", step, element, code,
             KindName(code, nodes), nodes, HeadNumber(*record, sf::kLayerCount), record->size());
  const bool countable = nodes >= 1 && nodes <= sf::kMaxElementNodes;
  const NodeData data = countable ? LayoutOf(code, form, nodes, 1, Surface::kTop).data : NodeData::kNone;
  if (data == NodeData::kDirect || data == NodeData::kTensor) return ShowLayers(*record, form, request, out);
  ShowRawWords(*record, request, out);
}

}  // namespace

void ShowStressFile(const std::string& path, const ShowRequest& request, std::ostream& out) {
  StressFile file(path);
  if (request.Chosen(1)) {
    const RecordForm form = KnownExtension(path) == ".STN" ? RecordForm::kLong : RecordForm::kShort;
    return ShowElement(file, form, request.numbers[0], request.numbers[1], request, out);
  }
  fmt::print(out, "{}\n", path);
  if (!request.Chosen(0)) {
    ShowStressHeader(file, out);
    ShowSteps(file, request, out);
  }
  int step = request.Number(0, 1);
  while (!request.Chosen(0) && step <= file.step_count() && !file.HasStep(step)) ++step;
  if (file.HasStep(step)) return ShowElements(file, step, request, out);
  if (request.Chosen(0)) throw CommandFailure(fmt::format("{}: step {} has no data", path, step));
}

void ShowStepFile(StudyTables& tables, Extension extension, const ShowRequest& request, std::ostream& out) {
  const bool is_pl4 = extension == ".PL4";
  const std::uint64_t length = is_pl4 ? 288 : 24;
  BinaryFile file(tables.Path(extension));
  const auto nodes = static_cast<std::uint64_t>(tables.MaxId(DbTable::kNod));
  if (nodes == 0)
    throw CommandFailure(file.path() + ": the steps cannot be told apart, the study has no nodes");
  const std::uint64_t records = file.size() / length;
  fmt::print(out, "{}\n  records of {} bytes, {} per step, {} steps\n\n", file.path(), length, nodes,
             (records + nodes - 1) / nodes);
  fmt::print(out, "  {:>6}  {:>8}", "step", "node");
  for (const auto name : kComponents) fmt::print(out, "  {:>13}", name);
  fmt::print(out, "\n");
  RowLimit rows(request.limit);
  std::uint64_t total = 0;
  for (std::uint64_t record = 0; record < records; ++record) {
    const auto step = record / nodes + 1, node = record % nodes + 1;
    if (request.Chosen(0) && step != static_cast<std::uint64_t>(request.numbers[0])) continue;
    if (request.Chosen(1) && node != static_cast<std::uint64_t>(request.numbers[1])) continue;
    ++total;
    if (!rows.Next()) continue;
    fmt::print(out, "  {:>6}  {:>8}", step, node);
    for (const float value : file.Reals(record * length, 6, "record")) fmt::print(out, "  {:>13}", value);
    fmt::print(out, "\n");
  }
  rows.End(out, total, "records");
}

void ShowScratchStore(const std::string& path, const ShowRequest& request, std::ostream& out) {
  constexpr std::uint64_t kLength = sf::kScratchRecordBytes;
  BinaryFile file(path);
  const std::uint64_t records = (file.size() + kLength - 1) / kLength;
  const auto words = [&](std::uint64_t record, std::uint64_t count, const char* name) {
    if (!file.Holds((record - 1) * kLength, 4 * count)) return;
    fmt::print(out, "  record {}: {:<28}", record, name);
    for (const std::int32_t word : file.Ints((record - 1) * kLength, count, name))
      fmt::print(out, " {}", word);
    fmt::print(out, "\n");
  };
  fmt::print(out, "{}\n  {} records of {} bytes\n", path, records, kLength);
  words(1, 2, "1 when complete, last record");
  words(2, 2, "shell surface, shell layer");
  words(3, 7, "stress file header H0 to H6");
  words(4, 2, "stress file header H7, H8");
  RowLimit rows(request.limit);
  for (std::uint64_t record = 5; record <= records && rows.Next(); ++record) {
    const std::uint64_t offset = (record - 1) * kLength;
    if (!file.Holds(offset, 24)) break;
    fmt::print(out, "  record {}:", record);
    for (const float value : file.Reals(offset, 6, "stresses")) fmt::print(out, "  {:>13}", value);
    fmt::print(out, "\n");
  }
  if (records > 4) rows.End(out, records - 4, "records");
}

}  // namespace zentor::companion
