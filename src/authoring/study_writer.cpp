#include "authoring/study_writer.h"

#include <algorithm>
#include <memory>
#include <span>
#include <string_view>

#include "authoring/extended_options_file.h"
#include "authoring/fatigue_table.h"
#include "authoring/load_files.h"
#include "authoring/master_table.h"
#include "authoring/stress_cases.h"
#include "authoring/study_tables.h"
#include "authoring/table_builder.h"

namespace zentor {

namespace {

using platform::FileSystem;
using platform::OpenMode;

constexpr std::string_view kMaster = ".MAS";

void WriteTable(StudyStage& stage, std::string_view extension, const TableBuilder& table) {
  stage.Write(extension, table.Head(), table.Records());
}

std::string_view StressExtension(StressFileKind kind) {
  if (kind == StressFileKind::kSte) return ".STE";
  return kind == StressFileKind::kStn ? ".STN" : ".STP";
}

void WriteModel(StudyStage& stage, const StudyDefinition& study) {
  WriteTable(stage, ".NOD", BuildNodeTable(study.model));
  WriteTable(stage, ".ELE", BuildElementTable(study.model));
  if (!study.model.coordinate_systems.empty())
    WriteTable(stage, ".CSY", BuildCoordinateSystemTable(study.model));
  if (!study.model.groups.empty()) WriteTable(stage, ".EGR", BuildGroupTable(study.model));
  if (!study.materials.empty()) WriteTable(stage, ".MAT", BuildMaterialTable(study));
  if (!study.model.surface_faces.empty()) stage.Write(".FBD", SurfaceFileBytes(study.model.surface_faces));
}

void WriteLoads(StudyStage& stage, const StudyDefinition& study) {
  if (!study.histories.empty()) stage.Write(".FLH", HistoryFileBytes(study.histories));
  if (study.temperatures.empty()) return;
  std::vector<std::int32_t> node_numbers;
  node_numbers.reserve(study.model.nodes.size());
  for (const AuthoredNode& node : study.model.nodes) node_numbers.push_back(node.number);
  stage.Write(".HTO", TemperatureFileBytes(node_numbers, study.temperatures));
}

void WriteDefinition(StudyStage& stage, const StudyDefinition& study) {
  const bool multi_study = study.layout == StudyLayout::kMultiStudy;
  WriteTable(stage, ".FTC", BuildFatigueTable(study));
  if (multi_study) stage.Write(".FTS", StudyListBytes(study.studies));
  if (multi_study && !study.sn_curves.empty()) WriteTable(stage, ".SNC", BuildCurveTable(study));
  const std::string options = ExtendedOptionsText(study.extended);
  stage.Write(ftx_format::kExtension, std::as_bytes(std::span(options)));
  WriteTable(stage, kMaster, BuildMasterTable(study));
}

}  // namespace

WriteReport WriteStudy(const StudyDefinition& study, const std::string& study_base, FileSystem& files) {
  StudyStage stage(study_base, files);
  if (!study.stress_cases.empty()) {
    WriteStressCases(study, stage.Stage(StressExtension(study.stress_file)), files);
  }
  WriteModel(stage, study);
  WriteLoads(stage, study);
  WriteDefinition(stage, study);
  return stage.Commit();
}

bool IsForeignStudy(const std::string& study_base, FileSystem& files) {
  const std::string path = study_base + std::string(kMaster);
  if (!files.Exists(path)) return false;
  const std::unique_ptr<platform::RandomAccessFile> file = files.Open(path, OpenMode::kReadOnly);
  constexpr std::uint64_t kEnough = 65536;
  std::vector<std::byte> bytes(std::min(file->Size(), kEnough));
  bytes.resize(file->ReadAt(0, bytes));
  return !IsMarkedAsBuilt(bytes);
}

}  // namespace zentor
