// A file system that counts what is done to it and fails on request: after a given number of writes nothing
// reaches the disk any more, as when the disk is full or the process has been killed.
#pragma once

#include <csignal>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <system_error>
#include <utility>

#include "platform/files.h"

namespace zentor::test {

class FaultyFileSystem : public platform::FileSystem {
 public:
  enum class Then {
    kThrow,   // every later write throws FileError: a full disk, or a kill at that point
    kIgnore,  // every later write is lost without a word
    kOnce,    // one write throws FileError, the later ones succeed
    kKill,    // the process is killed
  };

  explicit FaultyFileSystem(platform::FileSystem& files = platform::NativeFileSystem()) : files_(files) {}

  // The next `writes` writes succeed, none after them; creating, emptying, deleting, renaming and folders are
  // one each. Only paths with the given ending are counted here and fail; any by default.
  void FailAfter(int writes, Then then = Then::kThrow, std::string ending = {}) {
    writes_left_ = writes;
    ending_ = std::move(ending);
    then_ = then;
  }
  // From now on nothing can be said of paths with the given ending, and none of them opened.
  void FailToOpen(std::string ending) { unreachable_ = std::move(ending); }
  // Called in front of every read, with the number of reads before it.
  std::function<void(int reads)> before_read;
  int writes() const { return writes_; }  // that reached the disk
  int reads() const { return reads_; }

  std::unique_ptr<platform::RandomAccessFile> Open(const std::string& path,
                                                   platform::OpenMode mode) override {
    using platform::OpenMode;
    Reach(path, "open");
    const bool creates = mode == OpenMode::kReplace || mode == OpenMode::kCreateNew ||
                         (mode == OpenMode::kReadWriteCreate && !files_.Exists(path));
    if (creates && !Writes(path, "create")) throw Full(path, "create");
    return std::make_unique<File>(*this, files_.Open(path, mode), path);
  }
  bool Exists(const std::string& path) override {
    Reach(path, "find");
    return files_.Exists(path);
  }
  void Remove(const std::string& path) override {
    if (Writes(path, "delete")) files_.Remove(path);
  }
  void Rename(const std::string& from, const std::string& to) override {
    if (Writes(from, "rename")) files_.Rename(from, to);
  }
  void CreateFolder(const std::string& path) override {
    if (Writes(path, "create")) files_.CreateFolder(path);
  }
  void RemoveFolder(const std::string& path) override {
    if (Writes(path, "delete")) files_.RemoveFolder(path);
  }

 private:
  class File : public platform::RandomAccessFile {
   public:
    File(FaultyFileSystem& owner, std::unique_ptr<platform::RandomAccessFile> file, std::string path)
        : owner_(owner), file_(std::move(file)), path_(std::move(path)) {}
    std::size_t ReadAt(std::uint64_t offset, std::span<std::byte> out) override {
      if (owner_.before_read) owner_.before_read(owner_.reads_);
      ++owner_.reads_;
      return file_->ReadAt(offset, out);
    }
    void WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
      if (owner_.Writes(path_, "write")) file_->WriteAt(offset, bytes);
    }
    std::uint64_t Size() override { return file_->Size(); }

   private:
    FaultyFileSystem& owner_;
    std::unique_ptr<platform::RandomAccessFile> file_;
    std::string path_;
  };

  static platform::FileError Full(const std::string& path, const char* operation) {
    return {path, operation, static_cast<int>(std::errc::no_space_on_device)};
  }
  void Reach(const std::string& path, const char* operation) const {
    if (unreachable_.empty() || !path.ends_with(unreachable_)) return;
    throw platform::FileError(path, operation, static_cast<int>(std::errc::io_error));
  }
  // Whether one more write may reach the disk; throws when it may not and the fault says so.
  bool Writes(const std::string& path, const char* operation) {
    const bool meant = path.ends_with(ending_);
    if (!meant || writes_left_ > 0) {
      if (meant) --writes_left_;
      ++writes_;
      return true;
    }
    if (then_ == Then::kKill) std::raise(SIGKILL);
    if (then_ == Then::kOnce) writes_left_ = std::numeric_limits<int>::max();
    if (then_ != Then::kIgnore) throw Full(path, operation);
    return false;
  }

  platform::FileSystem& files_;
  int writes_left_ = std::numeric_limits<int>::max();
  Then then_ = Then::kThrow;
  std::string ending_;
  std::string unreachable_;
  int writes_ = 0;
  int reads_ = 0;
};

}  // namespace zentor::test
