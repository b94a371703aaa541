#include "authoring/study_writer.h"

#include <algorithm>
#include <array>
#include <memory>
#include <span>
#include <string_view>
#include <system_error>

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

// What a study can consist of, and what a run leaves behind of an earlier definition.
constexpr std::array<std::string_view, 23> kOwnExtensions = {
    ".NOD", ".CSY", ".ELE", ".EGR", ".RLC", ".MAT", ".PL1", ".FTC", ".SNC", ".STE", ".STN", ".STP",
    ".PL3", ".PL4", ".FTS", ".FTX", ".FBD", ".HTO", ".FLH", ".FTR", ".FTD", ".FTI", ".SFA"};
constexpr std::string_view kMaster = ".MAS";

// Files under construction; those that were not committed are removed again.
class StagedFiles {
 public:
  StagedFiles(const std::string& base, FileSystem& files) : base_(base), files_(files) {}
  StagedFiles(const StagedFiles&) = delete;
  StagedFiles& operator=(const StagedFiles&) = delete;
  ~StagedFiles() {
    for (const WrittenFile& file : staged_) {
      try {
        files_.Remove(Temporary(file.extension));
      } catch (const platform::FileError&) {
        // The build has failed already; what is left behind is a file that no program reads.
      }
    }
  }

  // The path to write to. Size is settled by Staged.
  std::string Stage(std::string_view extension) {
    staged_.push_back({std::string(extension), 0});
    return Temporary(extension);
  }

  void Write(std::string_view extension, std::span<const std::byte> bytes,
             std::span<const std::byte> more = {}) {
    const std::unique_ptr<platform::RandomAccessFile> file =
        files_.Open(Stage(extension), OpenMode::kReplace);
    file->WriteAt(0, bytes);
    if (!more.empty()) file->WriteAt(bytes.size(), more);
  }

  std::vector<WrittenFile> Commit() {
    for (WrittenFile& file : staged_) {
      file.size = files_.Open(Temporary(file.extension), OpenMode::kReadOnly)->Size();
    }
    for (const WrittenFile& file : staged_) RequireNoFolder(base_ + file.extension);
    std::vector<WrittenFile> written;
    while (!staged_.empty()) {
      files_.Rename(Temporary(staged_.front().extension), base_ + staged_.front().extension);
      written.push_back(staged_.front());
      staged_.erase(staged_.begin());
    }
    return written;
  }

 private:
  // A rename onto a folder fails, and would do so behind files that are in their places already.
  void RequireNoFolder(const std::string& path) {
    try {
      files_.Open(path, OpenMode::kReadOnly);
    } catch (const platform::FileError& error) {
      if (error.system_code() == static_cast<int>(std::errc::is_a_directory)) throw;
    }
  }

  std::string Temporary(std::string_view extension) const { return base_ + std::string(extension) + ".new"; }

  const std::string& base_;
  FileSystem& files_;
  std::vector<WrittenFile> staged_;
};

void WriteTable(StagedFiles& staged, std::string_view extension, const TableBuilder& table) {
  staged.Write(extension, table.Head(), table.Records());
}

std::string_view StressExtension(StressFileKind kind) {
  if (kind == StressFileKind::kSte) return ".STE";
  return kind == StressFileKind::kStn ? ".STN" : ".STP";
}

void WriteModel(StagedFiles& staged, const StudyDefinition& study) {
  WriteTable(staged, ".NOD", BuildNodeTable(study.model));
  WriteTable(staged, ".ELE", BuildElementTable(study.model));
  if (!study.model.coordinate_systems.empty())
    WriteTable(staged, ".CSY", BuildCoordinateSystemTable(study.model));
  if (!study.model.groups.empty()) WriteTable(staged, ".EGR", BuildGroupTable(study.model));
  if (!study.materials.empty()) WriteTable(staged, ".MAT", BuildMaterialTable(study));
  if (!study.model.surface_faces.empty()) staged.Write(".FBD", SurfaceFileBytes(study.model.surface_faces));
}

void WriteLoads(StagedFiles& staged, const StudyDefinition& study) {
  if (!study.histories.empty()) staged.Write(".FLH", HistoryFileBytes(study.histories));
  if (study.temperatures.empty()) return;
  std::vector<std::int32_t> node_numbers;
  node_numbers.reserve(study.model.nodes.size());
  for (const AuthoredNode& node : study.model.nodes) node_numbers.push_back(node.number);
  staged.Write(".HTO", TemperatureFileBytes(node_numbers, study.temperatures));
}

// The master table comes last: whoever finds it finds the rest.
void WriteDefinition(StagedFiles& staged, const StudyDefinition& study) {
  const bool multi_study = study.layout == StudyLayout::kMultiStudy;
  WriteTable(staged, ".FTC", BuildFatigueTable(study));
  if (multi_study) staged.Write(".FTS", StudyListBytes(study.studies));
  if (multi_study && !study.sn_curves.empty()) WriteTable(staged, ".SNC", BuildCurveTable(study));
  const std::string options = ExtendedOptionsText(study.extended);
  staged.Write(ftx_format::kExtension, std::as_bytes(std::span(options)));
  WriteTable(staged, kMaster, BuildMasterTable(study));
}

std::vector<std::string> RemoveOthers(const std::vector<WrittenFile>& written, const std::string& base,
                                      FileSystem& files) {
  std::vector<std::string> removed;
  for (const std::string_view extension : kOwnExtensions) {
    const bool kept = std::any_of(written.begin(), written.end(), [extension](const WrittenFile& file) {
      return file.extension == extension;
    });
    const std::string path = base + std::string(extension);
    if (kept || !files.Exists(path)) continue;
    files.Remove(path);
    removed.emplace_back(extension);
  }
  return removed;
}

}  // namespace

WriteReport WriteStudy(const StudyDefinition& study, const std::string& study_base, FileSystem& files) {
  WriteReport report;
  StagedFiles staged(study_base, files);
  if (!study.stress_cases.empty()) {
    WriteStressCases(study, staged.Stage(StressExtension(study.stress_file)), files);
  }
  WriteModel(staged, study);
  WriteLoads(staged, study);
  WriteDefinition(staged, study);
  report.files = staged.Commit();
  report.removed = RemoveOthers(report.files, study_base, files);
  return report;
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
