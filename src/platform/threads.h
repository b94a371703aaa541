// A thread that can be held and ended from outside.
#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace zentor::platform {

// Where a thread, and the threads that work for it, can be held. No system lets a thread be stopped safely at
// an arbitrary place: whatever lock it holds there (the allocator's, a file's) would stay locked. So the
// threads come to the gate by themselves, between two pieces of work and with no lock held; while they are
// held, nothing that another thread needs is locked, and holding can never end in a deadlock.
class ThreadGate {
 public:
  // True at once in the normal case, at the cost of one relaxed load. Waits while the gate is held; false
  // once it has been ended. Any thread.
  bool Pass() { return state_.load(std::memory_order_relaxed) == 0 || PassSlowly(); }

  // Counted: every Hold needs its own Release.
  void Hold();
  void Release();
  // Everybody held goes on, and Pass is false from now on, whatever is held.
  void End();
  bool Ended() const;
  // Threads that wait at the gate now.
  int Waiting() const;

 private:
  bool PassSlowly();

  std::atomic<int> state_ = 0;  // 0 when threads pass without waiting, else 1
  mutable std::mutex mutex_;    // guards what follows; held for a few instructions, never while waiting
  std::condition_variable changed_;
  int holds_ = 0;
  int waiting_ = 0;
  bool ended_ = false;
};

// Runs a function on a thread of its own, with the system's default stack and the priority that the thread
// which makes it has at that time.
class WorkThread {
 public:
  // The function calls Gate().Pass() often enough to be held and ended; it must not throw.
  explicit WorkThread(std::function<void()> function);
  WorkThread(const WorkThread&) = delete;
  WorkThread& operator=(const WorkThread&) = delete;
  ~WorkThread();  // ends the thread at its next gate and waits for it

  ThreadGate& Gate() { return gate_; }
  void Start();  // once
  bool IsCurrent() const;
  bool Ended() const;

  void Suspend() { gate_.Hold(); }
  void Resume() { gate_.Release(); }
  // Asks the thread to end at its next gate; Wait tells when it has.
  void Terminate() { gate_.End(); }
  // Whether the function has returned, after waiting at most that long.
  bool Wait(int milliseconds);

 private:
  std::function<void()> function_;
  int priority_;
  ThreadGate gate_;
  std::thread thread_;
  std::atomic<std::thread::id> id_;
  mutable std::mutex mutex_;
  std::condition_variable done_;
  bool ended_ = false;
};

// The calling thread is served before others where the system allows it; no effect otherwise.
void RaiseThreadPriority();

// Ends the process at once: other threads simply stop, nothing is written out or closed.
[[noreturn]] void EndProcess(int exit_code);

}  // namespace zentor::platform
