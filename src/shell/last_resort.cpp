#include "shell/last_resort.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "platform/system.h"
#include "platform/threads.h"

namespace zentor {
namespace {

constexpr int kExitEndOfRun = 1;

// The handlers of the language know nothing else of the run.
std::atomic<LastResort*> the_run = nullptr;

// A run that ends in order has taken itself out of the way.
void OnExit() {
  if (LastResort* run = the_run.exchange(nullptr)) run->End();
}

}  // namespace

LastResort::LastResort(std::string line, std::function<void()> keep)
    : line_(std::move(line)), keep_(std::move(keep)) {
  static const bool registered = std::atexit(OnExit) == 0;
  static_cast<void>(registered);
  platform::EndWithoutMemoryBy(OnExit);
  the_run = this;
}

LastResort::~LastResort() { the_run = nullptr; }

void LastResort::End() noexcept {
  try {
    keep_();
  } catch (...) {  // NOLINT(bugprone-empty-catch): what could not be kept is lost
  }
  std::fputs(line_.c_str(), stderr);
  platform::EndProcess(kExitEndOfRun);
}

}  // namespace zentor
