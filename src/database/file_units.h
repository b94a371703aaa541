// Numbered file units over the operating system's files: study files are opened by their extension.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/files.h"
#include "services/solver_services.h"

namespace zentor {

inline constexpr int kMaxFileUnits = 2000;
inline constexpr std::int64_t kCurrentPosition = -1;

// The table of units 1 .. kMaxFileUnits of one run. Solver thread only.
struct FileUnits {
  FileUnits(platform::FileSystem& file_system, SolverServices& shell) : files(file_system), services(shell) {}
  FileUnits(const FileUnits&) = delete;
  FileUnits& operator=(const FileUnits&) = delete;
  ~FileUnits();  // closes every unit

  struct Unit {
    std::unique_ptr<platform::RandomAccessFile> file;  // null while the unit is free
    std::string path;
    std::uint64_t position = 0;
    bool deleted_when_closed = false;
  };
  platform::FileSystem& files;
  SolverServices& services;
  std::vector<Unit> units;  // unit u is units[u - 1]; the size is the high-water mark and never falls
};

// Opens the existing study file `extension` and returns its unit, or nothing when it cannot be opened or the
// mode letter is unknown. Modes: 'B' binary, 'G' short-lived, 'X' text. A unit that holds the same path is
// closed and its number used again.
std::optional<int> FileOpen(FileUnits& units, Extension extension, char mode);
// As FileOpen in mode 'B'; nothing only when there is no such file. Throws FileError for every other failure.
std::optional<int> FileOpenIfThere(FileUnits& units, Extension extension);
// As FileOpen, but creates the file when it does not exist; also modes 'T', 'R' (deleted when closed) and
// 'P'. A study file that is open in a unit is deleted first and so starts empty; any other keeps its content.
std::optional<int> FileCreate(FileUnits& units, Extension extension, char mode);
// Opens an existing file by its full path in mode 'B'; unit 0 and the system's error code when that fails.
struct OpenedPath {
  int unit = 0;
  int error = 0;
};
OpenedPath FileOpenPath(FileUnits& units, const std::string& path);
// Frees the unit; numbers outside 1 .. kMaxFileUnits are ignored.
void FileClose(FileUnits& units, int unit);
// Closes the unit that holds that study path, if any, and deletes the file if it exists. Throws FileError.
void FileDelete(FileUnits& units, Extension extension);

// Reads or writes at a byte offset, or at the current position for kCurrentPosition. FileRead returns the
// bytes read, fewer only at the end of the file and 0 for a unit that is not open; both throw FileError on a
// system failure.
std::size_t FileRead64(FileUnits& units, int unit, std::span<std::byte> out, std::int64_t offset);
void FileWrite64(FileUnits& units, int unit, std::span<const std::byte> bytes, std::int64_t offset);
// The path and size of an open unit; empty and 0 when it is not open.
std::string FilePath(const FileUnits& units, int unit);
std::uint64_t FileSize(FileUnits& units, int unit);

// First words of a table file, all 0 when it cannot be opened. Closes any unit that holds the path.
struct TableHeaderPeek {
  std::int32_t record_length = 0, directory_length = 0, field_count = 0, highest_id = 0, live_count = 0;
};
TableHeaderPeek DbPeekTableHeader(FileUnits& units, Extension extension);

// The largest block the process can allocate, in 4-byte words.
std::uint64_t FreeMemoryWords(SolverServices& services);

}  // namespace zentor
