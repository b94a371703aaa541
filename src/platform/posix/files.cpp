#include "platform/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace zentor::platform {

FileError::FileError(std::string path, const std::string& operation, int system_code)
    : path_(std::move(path)),
      text_(path_ + ": cannot " + operation + ": " + std::generic_category().message(system_code)),
      code_(system_code) {}

bool FileError::NotThere() const { return code_ == ENOENT || code_ == ENOTDIR; }

std::unique_ptr<RandomAccessFile> OpenIfThere(FileSystem& files, const std::string& path, OpenMode mode) {
  try {
    return files.Open(path, mode);
  } catch (const FileError& error) {
    if (error.NotThere()) return nullptr;
    throw;
  }
}

namespace {

// What the error needs is made behind the look at errno, which making it may change.
[[noreturn]] void Fail(const std::string& path, const char* operation, const std::string& other = {}) {
  const int code = errno;
  throw FileError(path, operation + other, code);
}

class PosixFile final : public RandomAccessFile {
 public:
  explicit PosixFile(std::string path) : path_(std::move(path)) {}
  PosixFile(const PosixFile&) = delete;
  PosixFile& operator=(const PosixFile&) = delete;
  ~PosixFile() override {
    if (descriptor_ >= 0) ::close(descriptor_);
  }

  bool Open(int flags) {
    descriptor_ = ::open(path_.c_str(), flags, 0666);
    return descriptor_ >= 0;
  }
  bool IsFolder() const {
    struct stat status {};
    if (::fstat(descriptor_, &status) != 0) Fail(path_, "open");
    return S_ISDIR(status.st_mode);
  }

  std::size_t ReadAt(std::uint64_t offset, std::span<std::byte> out) override {
    std::size_t done = 0;
    while (done < out.size()) {
      const ssize_t n =
          ::pread(descriptor_, out.data() + done, out.size() - done, static_cast<off_t>(offset + done));
      if (n == 0) break;
      if (n < 0) {
        if (errno == EINTR) continue;
        Fail(path_, "read");
      }
      done += static_cast<std::size_t>(n);
    }
    return done;
  }

  void WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
    std::size_t done = 0;
    while (done < bytes.size()) {
      const ssize_t n =
          ::pwrite(descriptor_, bytes.data() + done, bytes.size() - done, static_cast<off_t>(offset + done));
      if (n < 0 && errno == EINTR) continue;
      if (n == 0) throw FileError(path_, "write", EIO);
      if (n < 0) Fail(path_, "write");
      done += static_cast<std::size_t>(n);
    }
  }

  std::uint64_t Size() override {
    struct stat status {};
    if (::fstat(descriptor_, &status) != 0) Fail(path_, "measure");
    return static_cast<std::uint64_t>(status.st_size);
  }

 private:
  int descriptor_ = -1;
  std::string path_;
};

int OpenFlags(OpenMode mode) {
  switch (mode) {
    case OpenMode::kReadOnly:
      return O_RDONLY;
    case OpenMode::kReadWrite:
      return O_RDWR;
    case OpenMode::kReadWriteCreate:
      return O_RDWR | O_CREAT;
    case OpenMode::kReplace:
      return O_RDWR | O_CREAT | O_TRUNC;
    case OpenMode::kCreateNew:
      return O_RDWR | O_CREAT | O_EXCL;
  }
  return O_RDONLY;
}

class PosixFileSystem final : public FileSystem {
 public:
  std::unique_ptr<RandomAccessFile> Open(const std::string& path, OpenMode mode) override {
    auto file = std::make_unique<PosixFile>(path);
    // O_NONBLOCK keeps the open of a pipe or device from waiting for its other end; regular files ignore it.
    if (!file->Open(OpenFlags(mode) | O_CLOEXEC | O_NONBLOCK)) Fail(path, "open");
    if (file->IsFolder()) throw FileError(path, "open", EISDIR);
    return file;
  }

  bool Exists(const std::string& path) override {
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0) {
      if (S_ISDIR(status.st_mode)) throw FileError(path, "open", EISDIR);
      return true;
    }
    if (errno == ENOENT || errno == ENOTDIR) return false;
    Fail(path, "find out whether it exists");
  }

  void Remove(const std::string& path) override {
    if (::unlink(path.c_str()) != 0 && errno != ENOENT) Fail(path, "delete");
  }

  void Rename(const std::string& from, const std::string& to) override {
    if (::rename(from.c_str(), to.c_str()) != 0) Fail(from, "rename to ", to);
  }

  void CreateFolder(const std::string& path) override {
    if (::mkdir(path.c_str(), 0777) != 0) Fail(path, "create the folder");
  }

  void RemoveFolder(const std::string& path) override {
    if (::rmdir(path.c_str()) != 0 && errno != ENOENT) Fail(path, "delete the folder");
  }
};

}  // namespace

FileSystem& NativeFileSystem() {
  static PosixFileSystem files;
  return files;
}

}  // namespace zentor::platform
