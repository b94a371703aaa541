#include "platform/system.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <fstream>
#include <new>

namespace zentor::platform {

LocalTime LocalTimeNow() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  localtime_r(&now, &parts);
  return {parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec};
}

std::int64_t SecondsSince1970() { return static_cast<std::int64_t>(std::time(nullptr)); }

std::uint64_t AvailableMemory() {
  // MemAvailable counts the page cache that the kernel gives back on demand; free pages alone would not.
  std::ifstream info("/proc/meminfo");
  std::string key;
  std::uint64_t kibibytes = 0;
  while (info >> key >> kibibytes) {
    if (key == "MemAvailable:") return kibibytes * 1024U;
    info.ignore(256, '\n');
  }
  const long pages = ::sysconf(_SC_AVPHYS_PAGES);
  const long page_size = ::sysconf(_SC_PAGESIZE);
  return pages > 0 && page_size > 0
             ? static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(page_size)
             : 0;
}

bool CanAllocate(std::uint64_t bytes) {
  if (bytes == 0) return true;
  void* block = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (block == MAP_FAILED) return false;
  ::munmap(block, bytes);
  return true;
}

void PreferLargePages(void* block, std::size_t bytes) {
#ifdef MADV_HUGEPAGE
  const auto page = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
  const auto start = reinterpret_cast<std::uintptr_t>(block);
  const std::uintptr_t first = (start + page - 1) / page * page;
  const std::uintptr_t end = (start + bytes) / page * page;
  if (first < end) ::madvise(static_cast<std::byte*>(block) + (first - start), end - first, MADV_HUGEPAGE);
#else
  static_cast<void>(block), static_cast<void>(bytes);
#endif
}

void TrimOtherProcesses() {}

std::optional<std::string> Environment(const std::string& name) {
  const char* value = std::getenv(name.c_str());
  if (value == nullptr) return std::nullopt;
  return std::string(value);
}

void SetEnvironment(const std::string& name, const std::string& value) {
  ::setenv(name.c_str(), value.c_str(), 1);
}

namespace {

// Opening takes the lowest free number.
void FillStandardStreams(int output_mode) {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(stream, F_GETFD) >= 0) continue;
    static_cast<void>(::open("/dev/null", stream == STDOUT_FILENO ? output_mode : O_RDWR));
  }
}

int WriteAll(int stream, std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(stream, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return count < 0 ? errno : EIO;
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return 0;
}

}  // namespace

void KeepStandardStreams() { FillStandardStreams(O_RDWR); }

void HoldStandardStreams() { FillStandardStreams(O_RDONLY); }

int WriteStandardOutput(std::span<const std::byte> bytes) { return WriteAll(STDOUT_FILENO, bytes); }

void WriteStandardError(std::string_view text) {
  static_cast<void>(WriteAll(STDERR_FILENO, std::as_bytes(std::span(text))));
}

void LetFileSizeLimitFailWrites() {
  struct sigaction ignore {};
  ignore.sa_handler = SIG_IGN;
  ::sigaction(SIGXFSZ, &ignore, nullptr);
}

namespace {

std::atomic<void (*)()> end_without_memory = nullptr;

void OnTerminate() {
  // An exception that cannot leave a destructor is on its way and cannot be looked at.
  bool memory_is_missing = !std::current_exception() && std::uncaught_exceptions() > 0;
  try {
    if (const auto thrown = std::current_exception()) std::rethrow_exception(thrown);
  } catch (const std::bad_alloc&) {
    memory_is_missing = true;
  } catch (...) {  // NOLINT(bugprone-empty-catch): a mistake of the program, whose signal tells more
  }
  if (memory_is_missing) end_without_memory.load()();
  std::abort();
}

}  // namespace

void EndWithoutMemoryBy(void (*end)()) {
  end_without_memory = end;
  std::set_terminate(OnTerminate);
}

std::string ProgramPath() {
  std::array<char, PATH_MAX> buffer{};
  const ssize_t length = ::readlink("/proc/self/exe", buffer.data(), buffer.size());
  return length > 0 ? std::string(buffer.data(), static_cast<std::size_t>(length)) : std::string();
}

int ProcessId() { return static_cast<int>(::getpid()); }

std::string HostName() {
  std::array<char, 256> name{};
  return ::gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

void SystemSound() {
  if (::isatty(STDERR_FILENO) == 1) std::fputc('\a', stderr);
}

}  // namespace zentor::platform
