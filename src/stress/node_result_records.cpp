#include "stress/node_result_records.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "database/bytes.h"
#include "platform/text.h"
#include "services/faults.h"
#include "services/stop.h"
#include "stress/nodal_stress_store.h"

namespace zentor {

namespace {

constexpr int kStepResultFileMissing = 9000;
constexpr std::size_t kPl3RecordBytes = 24;
constexpr std::size_t kPl4RecordBytes = 288;
constexpr std::size_t kRowBytes = 144;
constexpr std::size_t kStudyNameColumns = 256;
constexpr int kFirstResultField = 2, kLastResultField = 23;  // of ".PL1"; the first six are the stresses

void ReportMissing(RunContext& run) {
  std::string name = platform::Printable(run.services.GetStudyName());
  name.resize(kStudyNameColumns, ' ');
  run.listing.ListDirected("*** ERROR - MISSING FILE: " + name);
  run.listing.ListDirected(" ");
  run.listing.ListDirected("    STOP");
  run.services.AskUser(kStepResultFileMissing, {}, BoxStyle::kError);
}

[[noreturn]] void EndStopped(RunContext& run) {
  EndRunIfOwner(run.services);
  StopStatement();
}

void CheckFinite(const std::string& path, int step, int node, std::span<const float> values) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (std::isfinite(values[i])) continue;
    throw InputFault(path,
                     "step " + std::to_string(step) + ", node " + std::to_string(node) + ", value " +
                         std::to_string(i + 1),
                     std::to_string(values[i]), "a finite stress");
  }
}

}  // namespace

int StepFileOpen(RunContext& run, int step, StepFileKind kind, StepFile& file) {
  const bool pl3 = kind == StepFileKind::kPl3;
  const Extension extension = pl3 ? ".PL3" : ".PL4";
  file.first_record = std::int64_t{step - 1} * DbMaxId(run.database, DbTable::kNod);
  file.record_length = pl3 ? kPl3RecordBytes : kPl4RecordBytes;
  const std::optional<int> unit = FileOpenIfThere(run.units, extension);
  if (!unit) {
    ReportMissing(run);
    return 1;
  }
  file.unit = *unit;
  return 0;
}

void NodeResultRead(RunContext& run, int step, int node, int first, int last, std::span<float> out,
                    const StepFile& file, int row) {
  if (step == 0) {
    const auto values = out.first(static_cast<std::size_t>(last) - static_cast<std::size_t>(first) + 1);
    DbGetReals(run.database, DbTable::kPl1, node, first, values);
    CheckFinite(run.services.StudyFileName(".PL1"), step, node,
                values.first(std::min<std::size_t>(6, values.size())));
    return;
  }
  std::array<std::byte, kPl4RecordBytes> record{};
  const std::int64_t number = file.first_record + node;
  const auto offset = (number - 1) * static_cast<std::int64_t>(file.record_length);
  const std::size_t read =
      FileRead64(run.units, file.unit, std::span(record).first(file.record_length), offset);
  if (read != file.record_length) {
    throw InputFault(FilePath(run.units, file.unit),
                     "record " + std::to_string(number) + " (step " + std::to_string(step) + ", node " +
                         std::to_string(node) + ")",
                     std::to_string(read) + " bytes long", std::to_string(file.record_length) + " bytes");
  }
  const std::size_t start = static_cast<std::size_t>(row - 1) * kRowBytes;
  const auto values = out.first(last > 6 ? 10 : 6);
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = LoadReal(&record.at(start + i * 4));
  CheckFinite(FilePath(run.units, file.unit), step, node, values.first(6));
}

bool NodeStressFromResultRecords(RunContext& run, const StudyState& study, int step, int node,
                                 StressTensor& out) {
  if (study.sizes.node_count == 0) {
    run.listing.ListDirected("No Nodes are defined in data-base");
    return false;
  }
  if (step < 0) {
    run.listing.ListDirected("*** ERROR - Time step can not be negative");
    run.listing.ListDirected("    STOP");
    EndStopped(run);
  }
  if (DbGetInt(run.database, DbTable::kNod, node, 1) == 0) return false;

  std::array<float, kLastResultField - kFirstResultField + 1> values{};
  StepFile file;
  if (step == 0) {
    NodeResultRead(run, step, node, kFirstResultField, kLastResultField, values, file, 1);
  } else {
    if (StepFileOpen(run, step, StepFileKind::kPl4, file) != 0) EndStopped(run);
    struct Closer {
      FileUnits& units;
      int unit;
      ~Closer() { FileClose(units, unit); }
    } const closer{run.units, file.unit};
    NodeResultRead(run, step, node, 1, 6, values, file, 1);
  }
  std::copy_n(values.begin(), out.size(), out.begin());
  return true;
}

}  // namespace zentor
