#include "database/file_units.h"

#include <array>
#include <cstddef>
#include <exception>
#include <system_error>
#include <utility>

#include "database/bytes.h"
#include "database/table_format.h"

namespace zentor {

namespace {

using platform::FileError;
using platform::OpenMode;

bool IsOpenUnit(const FileUnits& units, int unit) {
  return unit >= 1 && unit <= static_cast<int>(units.units.size()) && units.units[unit - 1].file;
}

FileUnits::Unit& At(FileUnits& units, int unit) { return units.units[unit - 1]; }

// The open unit that holds the path, or 0.
int UnitOf(const FileUnits& units, const std::string& path) {
  for (int unit = 1; unit <= static_cast<int>(units.units.size()); ++unit) {
    if (IsOpenUnit(units, unit) && units.units[unit - 1].path == path) return unit;
  }
  return 0;
}

// The lowest free unit, a new one when all are in use, or 0 when there can be no more.
int FreeUnit(FileUnits& units) {
  const int size = static_cast<int>(units.units.size());
  for (int unit = 1; unit <= size; ++unit) {
    if (!IsOpenUnit(units, unit)) return unit;
  }
  if (size == kMaxFileUnits) return 0;
  units.units.emplace_back();
  return size + 1;
}

void OpenInto(FileUnits& units, int unit, const std::string& path, OpenMode mode, bool deleted_when_closed) {
  if (unit == 0) throw FileError(path, "open", static_cast<int>(std::errc::too_many_files_open));
  auto file = units.files.Open(path, mode);
  At(units, unit) = {std::move(file), path, 0, deleted_when_closed};
}

// The unit for a path: the one that holds it, closed, or a free one.
int UnitFor(FileUnits& units, const std::string& path) {
  const int held = UnitOf(units, path);
  if (held == 0) return FreeUnit(units);
  FileClose(units, held);
  return held;
}

void DeletePath(FileUnits& units, const std::string& path) {
  FileClose(units, UnitOf(units, path));
  units.files.Remove(path);
}

// Positions the unit: where the next transfer starts.
std::uint64_t StartOf(FileUnits::Unit& unit, std::int64_t offset) {
  if (offset == kCurrentPosition) return unit.position;
  if (offset < 0) {
    throw FileError(unit.path, "seek to " + std::to_string(offset),
                    static_cast<int>(std::errc::invalid_argument));
  }
  return static_cast<std::uint64_t>(offset);
}

}  // namespace

FileUnits::~FileUnits() {
  for (int unit = 1; unit <= static_cast<int>(units.size()); ++unit) {
    try {
      FileClose(*this, unit);
    } catch (
        const std::exception&) {  // NOLINT(bugprone-empty-catch): a scratch file that cannot be deleted stays
    }
  }
}

std::optional<int> FileOpen(FileUnits& units, Extension extension, char mode) {
  const std::string path = units.services.StudyFileName(extension);
  try {
    const int unit = UnitFor(units, path);
    if (mode != 'B' && mode != 'G' && mode != 'X') return std::nullopt;
    OpenInto(units, unit, path, OpenMode::kReadWrite, false);
    return unit;
  } catch (const FileError&) {
    return std::nullopt;
  }
}

std::optional<int> FileOpenIfThere(FileUnits& units, Extension extension) {
  try {
    const std::string path = units.services.StudyFileName(extension);
    const int unit = UnitFor(units, path);
    OpenInto(units, unit, path, OpenMode::kReadWrite, false);
    return unit;
  } catch (const FileError& error) {
    if (error.NotThere()) return std::nullopt;
    throw;
  }
}

std::optional<int> FileCreate(FileUnits& units, Extension extension, char mode) {
  const std::string path = units.services.StudyFileName(extension);
  try {
    const int held = UnitOf(units, path);
    if (held != 0) DeletePath(units, path);
    const int unit = held != 0 ? held : FreeUnit(units);
    if (std::string_view("BGXTRP").find(mode) == std::string_view::npos) return std::nullopt;
    OpenInto(units, unit, path, OpenMode::kReadWriteCreate, mode == 'T' || mode == 'R');
    return unit;
  } catch (const FileError&) {
    return std::nullopt;
  }
}

OpenedPath FileOpenPath(FileUnits& units, const std::string& path) {
  try {
    const int unit = UnitFor(units, path);
    OpenInto(units, unit, path, OpenMode::kReadWrite, false);
    return {unit, 0};
  } catch (const FileError& error) {
    return {0, error.system_code()};
  }
}

void FileClose(FileUnits& units, int unit) {
  if (!IsOpenUnit(units, unit)) return;
  const FileUnits::Unit closed = std::exchange(At(units, unit), FileUnits::Unit());
  if (closed.deleted_when_closed) units.files.Remove(closed.path);
}

void FileDelete(FileUnits& units, Extension extension) {
  DeletePath(units, units.services.StudyFileName(extension));
}

std::size_t FileRead64(FileUnits& units, int unit, std::span<std::byte> out, std::int64_t offset) {
  if (!IsOpenUnit(units, unit)) return 0;
  FileUnits::Unit& u = At(units, unit);
  const std::uint64_t start = StartOf(u, offset);
  const std::size_t read = u.file->ReadAt(start, out);
  u.position = start + read;
  return read;
}

void FileWrite64(FileUnits& units, int unit, std::span<const std::byte> bytes, std::int64_t offset) {
  if (!IsOpenUnit(units, unit)) return;
  FileUnits::Unit& u = At(units, unit);
  const std::uint64_t start = StartOf(u, offset);
  u.file->WriteAt(start, bytes);
  u.position = start + bytes.size();
}

std::string FilePath(const FileUnits& units, int unit) {
  return IsOpenUnit(units, unit) ? units.units[unit - 1].path : std::string();
}

std::uint64_t FileSize(FileUnits& units, int unit) {
  return IsOpenUnit(units, unit) ? At(units, unit).file->Size() : 0;
}

TableHeaderPeek DbPeekTableHeader(FileUnits& units, Extension extension) {
  const std::string path = units.services.StudyFileName(extension);
  FileClose(units, UnitOf(units, path));
  std::array<std::byte, 40> bytes{};
  try {
    units.files.Open(path, OpenMode::kReadWrite)->ReadAt(0, bytes);
  } catch (const FileError&) {
    return {};
  }
  const auto word = [&bytes](int number) { return LoadInt(bytes.data() + table_format::WordOffset(number)); };
  return {.record_length = word(table_format::kRecordLength),
          .directory_length = word(table_format::kDirectoryLength),
          .field_count = word(table_format::kFieldCount),
          .highest_id = word(table_format::kHighestId),
          .live_count = word(table_format::kLiveCount)};
}

std::uint64_t FreeMemoryWords(SolverServices& services) { return services.LargestBlock() / 4; }

}  // namespace zentor
