// The files of a study as the companion sees them: names, read-only access, the tables.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "database/model_database.h"
#include "database/table_file.h"
#include "platform/files.h"

namespace zentor::companion {

struct FileKind {
  std::string_view extension;  // ".FTR"
  std::string_view content;    // "results per node"
};
// Every kind of study and result file, study files first.
std::span<const FileKind> FileKinds();

// The upper-case study extension at the end of a path in any case (".FTR" for "x/job.ftr"), empty when there
// is none.
std::string_view KnownExtension(std::string_view path);
// Base path of a study as a user types it: without a known extension or a trailing dot.
std::string StudyBase(std::string_view typed);
// Why the solver and the other commands would not find a study under that base path; nothing when they would.
std::optional<std::string> StudyNameFault(const std::string& base);
// The names in a list of studies (".FTS"), line by line. Throws InputFault for more than 1 MiB.
std::vector<std::string> ReadStudyList(const std::string& path);
// Throws CommandFailure for a study whose files, or those of a study that it lists, a build has replaced only
// in part.
void RequireWholeStudy(const std::string& base);
// The definition that a study was built from and the files it names; empty where it knows of none.
std::vector<std::string> StoredDefinitionFiles(const std::string& base);
// What to say of a definition that was changed after the study was built, as a warning on standard error.
void TellDefinitionChange(const std::string& base);
// Table named by its extension, with or without the dot, in any case.
std::optional<DbTable> TableNamed(std::string_view name);

// Passes reads on to the native files and drops every write, so that nothing that is shown can be changed,
// whatever the readers above it do. Opens only what exists; what would change files
// or folders does nothing.
class ReadOnlyFiles final : public platform::FileSystem {
 public:
  std::unique_ptr<platform::RandomAccessFile> Open(const std::string& path, platform::OpenMode mode) override;
  bool Exists(const std::string& path) override;
  void Remove(const std::string& path) override;
  void Rename(const std::string& from, const std::string& to) override;
  void CreateFolder(const std::string&) override {}
  void RemoveFolder(const std::string&) override {}
};

// The tables of a study, opened read-only at their first use. A missing table answers zeros, like a missing
// entity. Fields are those of the study input: ".MAS" field k is record field k + 1. Throws InputFault and
// FileError.
class StudyTables {
 public:
  explicit StudyTables(std::string base) : base_(std::move(base)) {}

  const std::string& base() const { return base_; }
  std::string Path(Extension extension) const { return base_ + std::string(extension); }
  bool HasFile(Extension extension);

  // The open table, null when its file is missing or not a table yet.
  TableFile* Find(DbTable table);
  bool Has(DbTable table, int id);
  std::int32_t Int(DbTable table, int id, int field);
  float Real(DbTable table, int id, int field);
  void Ints(DbTable table, int id, int first, std::span<std::int32_t> out);
  void Reals(DbTable table, int id, int first, std::span<float> out);
  int Count(DbTable table);
  int MaxId(DbTable table);

 private:
  void Read(DbTable table, int id, int first, std::span<std::byte> out);

  struct Slot {
    bool tried = false;
    std::unique_ptr<TableFile> file;
  };
  std::string base_;
  ReadOnlyFiles files_;
  std::array<Slot, kTableCount> tables_;
};

}  // namespace zentor::companion
