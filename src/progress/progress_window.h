// The progress window: the state that the entry points change, and the thread that shows it and reads keys.
#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "progress/display.h"
#include "progress/panel_labels.h"
#include "progress/progress_state.h"
#include "progress/terminal.h"

namespace zentor::progress {

// Every operation may be called from any thread, and before, while and after the window is shown. The one
// lock guards the state alone and is never held while anything is written, read or waited for (but by the
// condition variable), so no caller ever waits for a slow terminal.
class ProgressWindow {
 public:
  ProgressWindow() = default;
  ProgressWindow(const ProgressWindow&) = delete;
  ProgressWindow& operator=(const ProgressWindow&) = delete;
  ~ProgressWindow() { Close(); }

  // Shows the window unless it is to be hidden.
  void Create();
  void SetHidden(bool hidden);
  // The end of the window; it does not open again.
  void Close();
  // While a box is open the window leaves the terminal. Returns when it has, or after a second.
  void SetBoxOpen(bool open);
  void LoadLabels(const CatalogTables& tables);

  // change(ProgressState&, double now)
  template <typename Change>
  void Update(Change change) {
    const std::lock_guard lock(mutex_);
    change(state_, SteadySeconds());
  }

  bool AbortAsked();
  // 1 while the user holds the solver, 2 while the user is being asked whether to abort, else 0.
  int HoldStatus();
  // Whether the window reads the keys of a terminal: it is shown, and as a panel.
  bool ReadsKeys();

 private:
  void OpenWhenDue();
  void CloseThread();
  void Run();  // the window's thread
  void TakeKeys(const std::vector<KeyPress>& keys);

  std::mutex mutex_;
  std::condition_variable left_;
  ProgressState state_;
  PanelLabels labels_;
  bool created_ = false;
  bool hidden_ = false;
  bool ending_ = false;    // the thread is to end
  bool closed_ = false;    // for good
  bool has_left_ = false;  // the display has left the terminal for a box
  std::thread thread_;
  Waker waker_;
};

}  // namespace zentor::progress
