// Loaded in front of a program under test (LD_PRELOAD): lets one of its calls for files or for memory fail.
//
//   ZENTOR_FAIL_PROGRAM  the program whose calls are meant
//   ZENTOR_FAIL_KIND     "files" (calls on paths and regular files) or "memory"
//   ZENTOR_FAIL_CALL     the call that fails, from 1; 0: none
//   ZENTOR_FAIL_LATER    "1": every later call fails, too
//   ZENTOR_FAIL_ERROR    system code of a call for files that fails
//   ZENTOR_FAIL_COUNT    file that receives the number of calls at the end of the program
//
// Calls count from the start of main on. The functions have names of their own and take the place of the
// system's by their symbols, whose declarations differ between libraries.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

struct Plan {
  bool files = false, memory = false, later = false;
  long call = 0;
  int error = EIO;
  const char* count_path = nullptr;
};

Plan plan;
std::atomic<bool> armed = false;
std::atomic<long> calls = 0;

long NumberIn(const char* variable) {
  const char* text = std::getenv(variable);
  return text == nullptr ? 0 : std::atol(text);
}

bool Is(const char* variable, const char* value) {
  const char* text = std::getenv(variable);
  return text != nullptr && std::strcmp(text, value) == 0;
}

// Whether the next call is to fail.
bool Counted(bool kind) {
  if (!kind || !armed) return false;
  const long number = ++calls;
  return plan.call > 0 && (number == plan.call || (plan.later && number > plan.call));
}

bool FileFails() {
  if (!Counted(plan.files)) return false;
  errno = plan.error;
  return true;
}

bool IsRegular(int descriptor) {
  struct stat status {};
  return ::syscall(SYS_fstat, descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

bool TransferFails(int descriptor) { return plan.files && IsRegular(descriptor) && FileFails(); }

bool MemoryFails() {
  if (!Counted(plan.memory)) return false;
  errno = ENOMEM;
  return true;
}

template <typename F>
F Next(const char* name) {
  return reinterpret_cast<F>(::dlsym(RTLD_NEXT, name));
}

int (*program_main)(int, char**, char**) = nullptr;

int CountedMain(int argc, char** argv, char** environment) {
  plan.files = Is("ZENTOR_FAIL_KIND", "files");
  plan.memory = Is("ZENTOR_FAIL_KIND", "memory");
  plan.later = Is("ZENTOR_FAIL_LATER", "1");
  plan.call = NumberIn("ZENTOR_FAIL_CALL");
  plan.error = static_cast<int>(NumberIn("ZENTOR_FAIL_ERROR"));
  plan.count_path = std::getenv("ZENTOR_FAIL_COUNT");
  armed = true;
  const int exit_code = program_main(argc, argv, environment);
  armed = false;
  if (plan.count_path == nullptr) return exit_code;
  if (std::FILE* out = std::fopen(plan.count_path, "w")) {
    std::fprintf(out, "%ld", calls.load());
    std::fclose(out);
  }
  return exit_code;
}

}  // namespace

extern "C" {

void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);

#define TAKES_THE_PLACE_OF(symbol) __asm__(symbol) __attribute__((visibility("default")))

void* CountedMalloc(std::size_t) TAKES_THE_PLACE_OF("malloc");
void* CountedCalloc(std::size_t, std::size_t) TAKES_THE_PLACE_OF("calloc");
void* CountedRealloc(void*, std::size_t) TAKES_THE_PLACE_OF("realloc");
int CountedOpen(const char*, int, ...) TAKES_THE_PLACE_OF("open");
int CountedOpen64(const char*, int, ...) TAKES_THE_PLACE_OF("open64");
std::FILE* CountedFopen(const char*, const char*) TAKES_THE_PLACE_OF("fopen");
std::FILE* CountedFopen64(const char*, const char*) TAKES_THE_PLACE_OF("fopen64");
ssize_t CountedRead(int, void*, std::size_t) TAKES_THE_PLACE_OF("read");
ssize_t CountedWrite(int, const void*, std::size_t) TAKES_THE_PLACE_OF("write");
ssize_t CountedPread(int, void*, std::size_t, off_t) TAKES_THE_PLACE_OF("pread");
ssize_t CountedPread64(int, void*, std::size_t, off_t) TAKES_THE_PLACE_OF("pread64");
ssize_t CountedPwrite(int, const void*, std::size_t, off_t) TAKES_THE_PLACE_OF("pwrite");
ssize_t CountedPwrite64(int, const void*, std::size_t, off_t) TAKES_THE_PLACE_OF("pwrite64");
int CountedStat(const char*, void*) TAKES_THE_PLACE_OF("stat");
int CountedStat64(const char*, void*) TAKES_THE_PLACE_OF("stat64");
int CountedLstat(const char*, void*) TAKES_THE_PLACE_OF("lstat");
int CountedFstat(int, void*) TAKES_THE_PLACE_OF("fstat");
int CountedFstat64(int, void*) TAKES_THE_PLACE_OF("fstat64");
int CountedRename(const char*, const char*) TAKES_THE_PLACE_OF("rename");
int CountedUnlink(const char*) TAKES_THE_PLACE_OF("unlink");
int CountedRemove(const char*) TAKES_THE_PLACE_OF("remove");
int CountedMkdir(const char*, mode_t) TAKES_THE_PLACE_OF("mkdir");
int CountedRmdir(const char*) TAKES_THE_PLACE_OF("rmdir");
int CountedStart(int (*)(int, char**, char**), int, char**, void (*)(), void (*)(), void (*)(), void*)
    TAKES_THE_PLACE_OF("__libc_start_main");

void* CountedMalloc(std::size_t size) { return MemoryFails() ? nullptr : __libc_malloc(size); }
void* CountedCalloc(std::size_t count, std::size_t size) {
  return MemoryFails() ? nullptr : __libc_calloc(count, size);
}
void* CountedRealloc(void* block, std::size_t size) {
  return MemoryFails() ? nullptr : __libc_realloc(block, size);
}

// The mode, which only a call that creates a file has, is handed on as whatever lies there.
int CountedOpen(const char* path, int flags, ...) {
  if (FileFails()) return -1;
  va_list rest;
  va_start(rest, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
  va_end(rest);
  return static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}
int CountedOpen64(const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
  va_end(rest);
  return CountedOpen(path, flags | O_LARGEFILE, mode);
}

std::FILE* CountedFopen(const char* path, const char* mode) {
  static const auto next = Next<std::FILE* (*)(const char*, const char*)>("fopen");
  return FileFails() ? nullptr : next(path, mode);
}
std::FILE* CountedFopen64(const char* path, const char* mode) { return CountedFopen(path, mode); }

ssize_t CountedRead(int file, void* out, std::size_t size) {
  return TransferFails(file) ? -1 : ::syscall(SYS_read, file, out, size);
}
ssize_t CountedWrite(int file, const void* bytes, std::size_t size) {
  return TransferFails(file) ? -1 : ::syscall(SYS_write, file, bytes, size);
}
ssize_t CountedPread(int file, void* out, std::size_t size, off_t offset) {
  return TransferFails(file) ? -1 : ::syscall(SYS_pread64, file, out, size, offset);
}
ssize_t CountedPread64(int file, void* out, std::size_t size, off_t offset) {
  return CountedPread(file, out, size, offset);
}
ssize_t CountedPwrite(int file, const void* bytes, std::size_t size, off_t offset) {
  return TransferFails(file) ? -1 : ::syscall(SYS_pwrite64, file, bytes, size, offset);
}
ssize_t CountedPwrite64(int file, const void* bytes, std::size_t size, off_t offset) {
  return CountedPwrite(file, bytes, size, offset);
}

int CountedStat(const char* path, void* status) {
  return FileFails() ? -1 : static_cast<int>(::syscall(SYS_newfstatat, AT_FDCWD, path, status, 0));
}
int CountedStat64(const char* path, void* status) { return CountedStat(path, status); }
int CountedLstat(const char* path, void* status) {
  return FileFails()
             ? -1
             : static_cast<int>(::syscall(SYS_newfstatat, AT_FDCWD, path, status, AT_SYMLINK_NOFOLLOW));
}
int CountedFstat(int file, void* status) {
  return TransferFails(file) ? -1 : static_cast<int>(::syscall(SYS_fstat, file, status));
}
int CountedFstat64(int file, void* status) { return CountedFstat(file, status); }

int CountedRename(const char* from, const char* to) {
  return FileFails() ? -1 : static_cast<int>(::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}
int CountedUnlink(const char* path) {
  return FileFails() ? -1 : static_cast<int>(::syscall(SYS_unlinkat, AT_FDCWD, path, 0));
}
int CountedRemove(const char* path) {
  if (FileFails()) return -1;
  const auto removed = ::syscall(SYS_unlinkat, AT_FDCWD, path, 0);
  return static_cast<int>(removed == 0 ? 0 : ::syscall(SYS_unlinkat, AT_FDCWD, path, AT_REMOVEDIR));
}
int CountedMkdir(const char* path, mode_t mode) {
  return FileFails() ? -1 : static_cast<int>(::syscall(SYS_mkdirat, AT_FDCWD, path, mode));
}
int CountedRmdir(const char* path) {
  return FileFails() ? -1 : static_cast<int>(::syscall(SYS_unlinkat, AT_FDCWD, path, AT_REMOVEDIR));
}

int CountedStart(int (*main)(int, char**, char**), int argc, char** argv, void (*init)(), void (*fini)(),
                 void (*rtld_fini)(), void* stack_end) {
  using Start = int (*)(int (*)(int, char**, char**), int, char**, void (*)(), void (*)(), void (*)(), void*);
  static const auto next = Next<Start>("__libc_start_main");
  program_main = main;
  const bool meant = Is("ZENTOR_FAIL_PROGRAM", program_invocation_short_name);
  return next(meant ? &CountedMain : main, argc, argv, init, fini, rtld_fini, stack_end);
}

}  // extern "C"
