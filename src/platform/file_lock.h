// Locks between processes. A lock ends with the last process that holds it, whatever ends that.
#pragma once

#include <cstdint>
#include <string>

namespace zentor::platform {

// A lock on a file. One object holds at most one lock; it is not copied.
class FileLock {
 public:
  FileLock() = default;
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;
  ~FileLock();  // releases the lock, and deletes the file when it was empty or has been signed

  // Tries to take the lock on `path`, once. With `create` the file is created when it does not exist, and is
  // opened for reading only where that is all that is allowed; a link is not followed then. False when
  // another process or object holds it. Throws FileError when the file cannot be opened or its file system
  // has no locks (IsUnsupported).
  bool Try(const std::string& path, bool create);
  // Takes part in the lock that a parent process holds on `path` and has handed down (Handle). False when
  // `handle` is not that.
  bool Join(const std::string& path, const std::string& handle);

  bool Held() const { return handle_ >= 0; }
  const std::string& Path() const { return path_; }  // of the locked file, empty without a lock
  // What a child process needs to take part in the lock (ChildCommand::kept_handle).
  std::intptr_t Handle() const { return handle_; }

  // What the locked file holds, at most 255 bytes.
  std::string Text() const;
  // Replaces it and makes the file this lock's own: it goes with the lock. What cannot be written is left
  // out.
  void Sign(const std::string& text);

 private:
  std::intptr_t handle_ = -1;
  std::string path_;
  bool own_ = false;  // to be deleted
};

// Whether the reason of a FileError is a file system without locks.
bool IsUnsupported(int system_code);
// Whether it is a missing permission, or a file system that takes no writes.
bool IsNotPermitted(int system_code);

}  // namespace zentor::platform
