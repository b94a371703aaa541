// Preloaded into a program: every allocation fails after the first ZENTOR_ALLOCATIONS of them.
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>

extern "C" {

void* __libc_malloc(std::size_t bytes);  // NOLINT(bugprone-reserved-identifier): the allocator's own names
void* __libc_calloc(std::size_t count, std::size_t bytes);  // NOLINT(bugprone-reserved-identifier)
void* __libc_realloc(void* block, std::size_t bytes);       // NOLINT(bugprone-reserved-identifier)

static bool Fails() {
  static std::atomic<long> done = 0;
  static const char* const text = std::getenv("ZENTOR_ALLOCATIONS");  // NOLINT(concurrency-mt-unsafe)
  if (text == nullptr || ++done <= std::atol(text)) return false;     // NOLINT(cert-err34-c)
  errno = ENOMEM;
  return true;
}

void* malloc(std::size_t bytes) { return Fails() ? nullptr : __libc_malloc(bytes); }
void* calloc(std::size_t count, std::size_t bytes) { return Fails() ? nullptr : __libc_calloc(count, bytes); }
void* realloc(void* block, std::size_t bytes) { return Fails() ? nullptr : __libc_realloc(block, bytes); }
}
