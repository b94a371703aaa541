#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>

#include "database/bytes.h"
#include "services/faults.h"
#include "study/elastic_plastic_input.h"

namespace zentor {
namespace {

// ".HTO": word 0 is the byte offset of the load-case table, whose entries of two words begin with the number
// of the load case's first record; one record per existing node follows, the temperature in its word 2.
constexpr std::int64_t kEntryBytes = 8;
constexpr std::int64_t kRecordBytes = 48;
constexpr std::int64_t kTemperatureByte = 8;

class ThermalFile {
 public:
  ThermalFile(RunContext& run, int unit) : run_(run), unit_(unit), table_(Word(0, "table offset")) {
    if (table_ < 0) Fault("table offset", table_, "0 or more");
  }
  ThermalFile(const ThermalFile&) = delete;
  ThermalFile& operator=(const ThermalFile&) = delete;
  ~ThermalFile() { FileClose(run_.units, unit_); }

  // Temperature of the k-th existing node; nothing when the file does not hold the load case.
  std::optional<float> Temperature(int load_case, int k) {
    const std::string place = "load case " + std::to_string(load_case);
    const std::int64_t entry_offset = table_ + (std::int64_t{load_case} - 1) * kEntryBytes;
    if (load_case < 1 || entry_offset + 4 > Size()) return std::nullopt;
    const std::int32_t entry = Word(entry_offset, place);
    if (entry == 0) return std::nullopt;
    const std::int64_t offset = (std::int64_t{k} + entry) * kRecordBytes - 2 * kRecordBytes;
    const std::int64_t last = Size() - kTemperatureByte - 4;
    if (offset < 0 || offset > last) Fault(place + ", first record", entry, "records inside the file");
    const float temperature = std::bit_cast<float>(Word(offset + kTemperatureByte, place));
    if (!std::isfinite(temperature)) {
      throw InputFault(FilePath(run_.units, unit_), place + ", temperature", std::to_string(temperature),
                       "a finite number");
    }
    return temperature;
  }

 private:
  std::int64_t Size() const { return static_cast<std::int64_t>(FileSize(run_.units, unit_)); }

  std::int32_t Word(std::int64_t offset, const std::string& place) {
    std::array<std::byte, 4> bytes{};
    if (FileRead64(run_.units, unit_, bytes, offset) < bytes.size()) {
      Fault(place + ", byte offset", offset, "a word inside the file");
    }
    return LoadInt(bytes.data());
  }

  [[noreturn]] void Fault(const std::string& place, std::int64_t found, const std::string& wanted) const {
    throw InputFault(FilePath(run_.units, unit_), place, std::to_string(found), wanted);
  }

  RunContext& run_;
  int unit_;
  std::int64_t table_;
};

int CountNodesUpTo(ModelDatabase& db, int node) {
  int count = 0;
  for (int id = 1; id <= node; ++id) count += DbSlotOf(db, DbTable::kNod, id) != 0 ? 1 : 0;
  return count;
}

bool ComesFromFile(int load_case) {
  return load_case != 0 && load_case != kAppliedLoadCase && load_case != kZeroLoadCase;
}

}  // namespace

bool NeedsTemperatures(const StudyState& study) {
  for (int k = 1; k <= kMaxLoadings; ++k) {
    const int load_case = study.conditions.temperature_case[k];
    if (study.definition.loadings[k].event != 0 && load_case > 0 && load_case != kZeroLoadCase) return true;
  }
  return false;
}

void ReadLocationTemperatures(RunContext& run, StudyState& study) {
  AppliedConditions& conditions = study.conditions;
  if (DbSlotOf(run.database, DbTable::kNod, study.location_node) == 0) {
    study.readiness.EpTemperatureReady = false;
    return;
  }
  std::optional<ThermalFile> file;
  int node_place = 0;
  for (int k = 1; k <= kMaxLoadings; ++k) {
    const int load_case = conditions.temperature_case[k];
    if (!ComesFromFile(load_case)) continue;
    if (!file) {
      const auto unit = FileOpenIfThere(run.units, ".HTO");
      study.readiness.EpTemperatureReady = unit.has_value();
      if (!unit) return;
      file.emplace(run, *unit);
      node_place = CountNodesUpTo(run.database, study.location_node);
    }
    const std::optional<float> temperature = file->Temperature(load_case, node_place);
    study.readiness.EpTemperatureReady = temperature.has_value();
    if (!temperature) return;
    conditions.temperature[k] = *temperature;
  }
}

}  // namespace zentor
