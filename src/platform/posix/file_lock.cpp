#include "platform/file_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>

#include "platform/files.h"

namespace zentor::platform {

namespace {

constexpr int kFlags = O_CLOEXEC | O_NONBLOCK;

int OpenForLock(const std::string& path, bool create) {
  if (!create) return ::open(path.c_str(), O_RDONLY | kFlags);
  const int descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | kFlags, 0666);
  if (descriptor >= 0 || !IsNotPermitted(errno)) return descriptor;
  const int reason = errno;
  const int existing = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | kFlags);  // somebody else's
  if (existing < 0) errno = reason;
  return existing;
}

// Whether the descriptor's file is a plain one and still has that name: whoever held the lock may have
// deleted the file between our opening and our locking it.
bool IsNamed(int descriptor, const std::string& path) {
  struct stat open {};
  struct stat named {};
  return ::fstat(descriptor, &open) == 0 && ::stat(path.c_str(), &named) == 0 && S_ISREG(open.st_mode) &&
         open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

int Lock(int descriptor) {
  while (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
    if (errno != EINTR) return errno;
  }
  return 0;
}

}  // namespace

FileLock::~FileLock() {
  if (handle_ < 0) return;
  // Deleted while it is still locked, so that it cannot be another's by then.
  if (own_) static_cast<void>(::unlink(path_.c_str()));
  ::close(static_cast<int>(handle_));
}

bool FileLock::Try(const std::string& path, bool create) {
  std::string name = path;  // ahead: with the lock in hand nothing may fail
  for (;;) {
    const int descriptor = OpenForLock(path, create);
    if (descriptor < 0) throw FileError(path, "open", errno);
    struct stat status {};
    const bool plain = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    const int refused = plain ? Lock(descriptor) : EINVAL;
    if (refused == 0 && IsNamed(descriptor, path)) {
      handle_ = descriptor;
      path_.swap(name);
      own_ = create && ::fstat(descriptor, &status) == 0 && status.st_size == 0;
      return true;
    }
    if (create && IsUnsupported(refused) && status.st_size == 0) static_cast<void>(::unlink(path.c_str()));
    ::close(descriptor);
    if (refused == EWOULDBLOCK) return false;
    if (refused != 0) throw FileError(path, "lock", refused);
  }
}

bool FileLock::Join(const std::string& path, const std::string& handle) {
  int descriptor = -1;
  const auto [end, error] = std::from_chars(handle.data(), handle.data() + handle.size(), descriptor);
  const bool whole = error == std::errc{} && end == handle.data() + handle.size();
  // The lock belongs to the open file, which parent and child share: taking it again only succeeds there.
  if (!whole || descriptor <= STDERR_FILENO || !IsNamed(descriptor, path) || Lock(descriptor) != 0) {
    return false;
  }
  ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  path_ = path;
  handle_ = descriptor;
  return true;
}

std::string FileLock::Text() const {
  std::array<char, 255> text{};
  const ssize_t count = ::pread(static_cast<int>(handle_), text.data(), text.size(), 0);
  return {text.data(), static_cast<std::size_t>(count > 0 ? count : 0)};
}

void FileLock::Sign(const std::string& text) {
  own_ = true;
  const int descriptor = static_cast<int>(handle_);
  if (::ftruncate(descriptor, 0) == 0) {
    static_cast<void>(!::pwrite(descriptor, text.data(), text.size(), 0));
  }
}

bool IsUnsupported(int system_code) {
  return system_code == ENOLCK || system_code == EOPNOTSUPP || system_code == ENOSYS;
}

bool IsNotPermitted(int system_code) {
  return system_code == EACCES || system_code == EPERM || system_code == EROFS;
}

}  // namespace zentor::platform
