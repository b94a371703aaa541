// Numbered turns of work for several threads, finished in any order and taken over in order.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

namespace zentor {

// One thread owns the queue: it offers turns 0, 1, 2, ... and takes them over in that order. At most `places`
// turns are offered and not yet taken over; turn t may use place t % places of whatever belongs to a turn.
// All functions may be called from any thread, except those of the owner.
class TurnQueue {
 public:
  explicit TurnQueue(std::size_t places) : finished_(places) {}

  // Owner. The place of the next turn is filled: it may be taken.
  void Offer() {
    {
      const std::lock_guard lock(mutex_);
      finished_[Place(offered_++)] = false;
    }
    offer_.notify_one();
  }

  // Owner. No turn will be taken any more.
  void Close() {
    {
      const std::lock_guard lock(mutex_);
      closed_ = true;
    }
    offer_.notify_all();
  }

  // The next turn that nobody has taken; nothing when there is none at the moment.
  std::optional<std::int64_t> TryTake() {
    const std::lock_guard lock(mutex_);
    if (closed_ || taken_ == offered_) return std::nullopt;
    return taken_++;
  }

  // The same, waiting for one to be offered; nothing once the queue is closed.
  std::optional<std::int64_t> Take() {
    std::unique_lock lock(mutex_);
    offer_.wait(lock, [this] { return closed_ || taken_ != offered_; });
    if (closed_) return std::nullopt;
    return taken_++;
  }

  void Finish(std::int64_t turn) {
    {
      const std::lock_guard lock(mutex_);
      finished_[Place(turn)] = true;
    }
    finish_.notify_one();
  }

  bool IsFinished(std::int64_t turn) {
    const std::lock_guard lock(mutex_);
    return finished_[Place(turn)];
  }

  // Owner. REQUIRES: the turn has been taken.
  void WaitFor(std::int64_t turn) {
    std::unique_lock lock(mutex_);
    finish_.wait(lock, [this, turn] { return finished_[Place(turn)]; });
  }

 private:
  std::size_t Place(std::int64_t turn) const { return static_cast<std::size_t>(turn) % finished_.size(); }

  std::mutex mutex_;  // guards what follows
  std::condition_variable offer_, finish_;
  std::vector<bool> finished_;  // by place
  std::int64_t offered_ = 0;
  std::int64_t taken_ = 0;
  bool closed_ = false;
};

}  // namespace zentor
