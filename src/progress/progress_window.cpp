#include "progress/progress_window.h"

#include <chrono>
#include <new>

namespace zentor::progress {
namespace {

constexpr int kRefreshMilliseconds = 100;
constexpr std::chrono::seconds kLeaveLimit(1);

}  // namespace

void ProgressWindow::Create() {
  {
    const std::lock_guard lock(mutex_);
    created_ = true;
    state_.started = SteadySeconds();
  }
  OpenWhenDue();
}

void ProgressWindow::SetHidden(bool hidden) {
  {
    const std::lock_guard lock(mutex_);
    hidden_ = hidden;
  }
  if (hidden) CloseThread();
  OpenWhenDue();
}

void ProgressWindow::Close() {
  CloseThread();
  const std::lock_guard lock(mutex_);
  closed_ = true;
}

void ProgressWindow::OpenWhenDue() {
  const std::lock_guard lock(mutex_);
  if (!created_ || hidden_ || closed_ || thread_.joinable()) return;
  ending_ = false;
  const SignalsBlocked blocked;
  thread_ = std::thread([this] {
    try {
      Run();
    } catch (const std::bad_alloc&) {
      // The run goes on without its panel.
    }
  });
}

void ProgressWindow::CloseThread() {
  std::thread ended;
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
    ended.swap(thread_);
  }
  if (!ended.joinable()) return;
  waker_.Wake();
  ended.join();
}

void ProgressWindow::SetBoxOpen(bool open) {
  std::unique_lock lock(mutex_);
  state_.box_open = open;
  UpdateClock(state_, SteadySeconds());
  has_left_ = false;
  waker_.Wake();
  if (open && thread_.joinable()) {
    left_.wait_for(lock, kLeaveLimit, [this] { return has_left_; });
  }
}

void ProgressWindow::LoadLabels(const CatalogTables& tables) {
  PanelLabels labels;
  labels.Load(tables);
  const std::lock_guard lock(mutex_);
  labels_ = std::move(labels);
}

bool ProgressWindow::AbortAsked() {
  const std::lock_guard lock(mutex_);
  return state_.aborting;
}

int ProgressWindow::HoldStatus() {
  const std::lock_guard lock(mutex_);
  if (!state_.HoldsSolver()) return 0;
  return state_.asking ? 2 : 1;
}

bool ProgressWindow::ReadsKeys() {
  const std::lock_guard lock(mutex_);
  return thread_.joinable() && Terminal::OfStandardOutput() != nullptr;
}

void ProgressWindow::Run() {
  const std::unique_ptr<Display> display = Display::OfStandardOutput(SteadySeconds());
  std::unique_lock lock(mutex_);
  while (!ending_) {
    const ProgressState state = state_;
    const PanelLabels labels = labels_;
    lock.unlock();
    if (state.box_open) {
      display->Leave();
    } else {
      display->Show(state, labels, SteadySeconds());
    }
    lock.lock();
    if (state.box_open) has_left_ = true;
    left_.notify_all();
    lock.unlock();
    TakeKeys(display->WaitForKeys(waker_, kRefreshMilliseconds));
    lock.lock();
  }
  const ProgressState state = state_;
  const PanelLabels labels = labels_;
  lock.unlock();
  display->Close(state, labels, SteadySeconds());
}

void ProgressWindow::TakeKeys(const std::vector<KeyPress>& keys) {
  const std::lock_guard lock(mutex_);
  for (const KeyPress& press : keys) ActOnKey(state_, labels_, press);
  if (!keys.empty()) UpdateClock(state_, SteadySeconds());
}

}  // namespace zentor::progress
