// What the window and its boxes share behind the interface.
#pragma once

#include <termios.h>
#include <csignal>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "platform/shell_window.h"

namespace zentor::platform {

// A descriptor that is closed with its owner.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor();
  int number() const { return number_; }

 private:
  int number_;
};

// The terminal on standard input while it gives single keys without showing them. Restores the mode that it
// found. Does nothing where there is no terminal or another program of the session has it.
class KeyMode {
 public:
  KeyMode();
  KeyMode(const KeyMode&) = delete;
  KeyMode& operator=(const KeyMode&) = delete;
  ~KeyMode();
  bool on() const { return on_; }
  void Renew();       // after the process was stopped and continued
  bool Lost() const;  // the command shell that stopped the process has set its own mode

 private:
  bool on_ = false;
  termios found_{};
};

// Whether standard input is a terminal that belongs to this process at the moment.
bool TerminalIsOurs();
// Whether it is one that another job has at the moment.
bool TerminalIsAnothers();

struct WindowEntry {
  WindowMessage message = WindowMessage::kNone;
  MessageParameters parameters;
};

struct SentEntry {
  WindowEntry entry;
  bool handled = false;
};

struct WindowTimer {
  int number = 0;
  std::chrono::steady_clock::duration period{};
  std::chrono::steady_clock::time_point due;
};

struct WindowHandleOf : ZentorWindowHandle {
  ShellWindow* window = nullptr;
};

struct ShellWindow::State {
  std::u16string caption;
  Procedure procedure;
  std::thread::id thread;
  WindowHandleOf handle{};

  std::mutex mutex;  // guards the members up to exit_code; never held while a message is handled
  std::condition_variable handled;
  std::deque<WindowEntry> posted;
  std::deque<SentEntry*> sent;
  std::vector<WindowTimer> timers;
  bool loop_over = false;
  std::optional<int> exit_code;

  sigset_t earlier_mask{};
  struct sigaction earlier_pipe_action {};
  std::optional<Descriptor> wake;       // event: look at the queues again
  std::optional<Descriptor> closing;    // event that stays: boxes close
  std::optional<Descriptor> requests;   // signals: Ctrl-C, hang-up, request to end
  std::optional<Descriptor> continued;  // signal: the process goes on after it was stopped

  std::mutex box_mutex;  // held while a box is open: the box alone reads the terminal
  std::atomic<bool> box_open = false;
  std::optional<KeyMode> keys;  // window thread
};

// Milliseconds until the next timer is due.
int UntilNextTimer(ShellWindow::State& state);
// Handles what other threads have sent and the timers that are due, and nothing else: what an open box on the
// window's own thread leaves the window to do.
void WorkDuringBox(ShellWindow::State& state);

}  // namespace zentor::platform
