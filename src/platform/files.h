// Files as the program sees them: byte-exact reads and writes at 64-bit offsets behind one small interface,
// so that tests can put a faulty or counting file system in the place of the native one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <span>
#include <string>

namespace zentor::platform {

// An operation that the operating system refused: what was tried, on which path, and the system's reason.
class FileError : public std::exception {
 public:
  FileError(std::string path, const std::string& operation, int system_code);
  const char* what() const noexcept override { return text_.c_str(); }
  const std::string& path() const { return path_; }
  int system_code() const { return code_; }
  // Nothing has that path. Every other failure leaves open what is there.
  bool NotThere() const;

 private:
  std::string path_;
  std::string text_;  // "PATH: cannot OPERATION: REASON"
  int code_;
};

enum class OpenMode {
  kReadOnly,         // an existing file
  kReadWrite,        // an existing file, content kept
  kReadWriteCreate,  // created when absent, content kept
  kReplace,          // created when absent, emptied when present
  kCreateNew,        // created; an error when anything, be it a link, has that name
};

// An open file. Closed by its destructor. Not for use by two threads at once, except ReadAt.
class RandomAccessFile {
 public:
  virtual ~RandomAccessFile() = default;
  // Reads out.size() bytes at offset; returns the bytes read, fewer only at the end of the file. Throws
  // FileError.
  virtual std::size_t ReadAt(std::uint64_t offset, std::span<std::byte> out) = 0;
  // Writes all bytes at offset, growing the file when needed. Throws FileError (disk full, no permission).
  virtual void WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) = 0;
  virtual std::uint64_t Size() = 0;
};

// Paths are UTF-8 (on Linux the file system's own bytes).
class FileSystem {
 public:
  virtual ~FileSystem() = default;
  virtual std::unique_ptr<RandomAccessFile> Open(const std::string& path,
                                                 OpenMode mode) = 0;  // throws FileError
  // Whether there is a regular file or something that can be opened as one. Throws FileError for a folder,
  // which is neither a file nor nothing, and when the system cannot tell.
  virtual bool Exists(const std::string& path) = 0;
  virtual void Remove(
      const std::string& path) = 0;  // no error when it does not exist; throws FileError otherwise
  virtual void Rename(const std::string& from, const std::string& to) = 0;  // replaces `to` in one step
  // An error when anything has that name; throws FileError.
  virtual void CreateFolder(const std::string& path) = 0;
  // No error when it does not exist; throws FileError, also for a folder that is not empty.
  virtual void RemoveFolder(const std::string& path) = 0;
};

// The open file; null when nothing has that path. Throws FileError for every other failure.
std::unique_ptr<RandomAccessFile> OpenIfThere(FileSystem& files, const std::string& path, OpenMode mode);

// The operating system's own files. One object for the whole process, without state.
FileSystem& NativeFileSystem();

}  // namespace zentor::platform
