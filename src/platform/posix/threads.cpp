#include "platform/threads.h"

#include <pthread.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace zentor::platform {
namespace {

// The C library loads what it needs to end a thread when the first one ends in a certain way, as those of the
// parallel loops do, and ends the process when there is no memory for that. Such a thread before main makes
// it load that while there is memory.
const bool kThreadsCanEnd = [] {
  pthread_t thread{};
  const auto leave = [](void*) -> void* { ::pthread_exit(nullptr); };
  return ::pthread_create(&thread, nullptr, leave, nullptr) == 0 && ::pthread_join(thread, nullptr) == 0;
}();

}  // namespace

namespace {

id_t ThisThread() { return static_cast<id_t>(::syscall(SYS_gettid)); }

int Priority() { return ::getpriority(PRIO_PROCESS, ThisThread()); }

// Lower values come first; they need a privilege, and without it nothing changes.
void SetPriority(int priority) { static_cast<void>(::setpriority(PRIO_PROCESS, ThisThread(), priority)); }

}  // namespace

void ThreadGate::Hold() {
  const std::lock_guard lock(mutex_);
  ++holds_;
  state_ = 1;
}

void ThreadGate::Release() {
  const std::lock_guard lock(mutex_);
  if (holds_ > 0) --holds_;
  if (holds_ == 0 && !ended_) state_ = 0;
  changed_.notify_all();
}

void ThreadGate::End() {
  const std::lock_guard lock(mutex_);
  ended_ = true;
  state_ = 1;
  changed_.notify_all();
}

bool ThreadGate::Ended() const {
  const std::lock_guard lock(mutex_);
  return ended_;
}

int ThreadGate::Waiting() const {
  const std::lock_guard lock(mutex_);
  return waiting_;
}

bool ThreadGate::PassSlowly() {
  std::unique_lock lock(mutex_);
  ++waiting_;
  changed_.wait(lock, [this] { return holds_ == 0 || ended_; });
  --waiting_;
  return !ended_;
}

WorkThread::WorkThread(std::function<void()> function)
    : function_(std::move(function)), priority_(Priority()) {}

WorkThread::~WorkThread() {
  Terminate();
  if (thread_.joinable()) thread_.join();
}

void WorkThread::Start() {
  thread_ = std::thread([this] {
    id_ = std::this_thread::get_id();  // here: the function may ask before the constructor has returned
    SetPriority(priority_);            // not that of the starting thread, which may have been raised since
    function_();
    const std::lock_guard lock(mutex_);
    ended_ = true;
    done_.notify_all();
  });
}

bool WorkThread::IsCurrent() const { return id_.load() == std::this_thread::get_id(); }

bool WorkThread::Ended() const {
  const std::lock_guard lock(mutex_);
  return ended_;
}

bool WorkThread::Wait(int milliseconds) {
  std::unique_lock lock(mutex_);
  return done_.wait_for(lock, std::chrono::milliseconds(milliseconds), [this] { return ended_; });
}

void RaiseThreadPriority() {
  constexpr int kServedFirst = -10;
  SetPriority(std::min(kServedFirst, Priority()));
}

void EndProcess(int exit_code) { ::_exit(exit_code); }

}  // namespace zentor::platform
