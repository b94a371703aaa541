// The window of a run: its messages, its timers and the loop that handles them.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/window_handle.h"

namespace zentor::platform {

enum class WindowMessage : std::uint32_t {
  kNone = 0x0000,
  kCreate = 0x0001,  // sent once by the constructor
  kDestroy = 0x0002,
  kActivate = 0x0006,
  kPaint = 0x000F,
  kClose = 0x0010,  // the user or the system asks the program to end (Ctrl-C, Ctrl-\, SIGTERM, a hang-up)
  kActivateApp = 0x001C,
  kSetFont = 0x0030,
  kKeyDown = 0x0100,  // first: key code
  kCommand = 0x0111,  // first: command in its low 16 bits
  kTimer = 0x0113,    // first: number of the timer
  kCopy = 0x0301,     // no effect: sending it waits until the window's thread has handled what came before
  kUserMessage2 = 0x0402,  // end of the run
};

inline constexpr std::uint64_t kEscapeKey = 27;

struct MessageParameters {
  std::uint64_t first = 0;
  std::int64_t second = 0;
};

// A window that is never shown. It belongs to the thread that creates it: Run, HandleSent, ReadKeys and the
// procedure run there; the other members may be called by any thread.
class ShellWindow {
 public:
  using Procedure = std::function<void(WindowMessage, MessageParameters)>;

  // From here on Ctrl-C and requests to end become kClose messages instead of ending the process; threads
  // inherit this, so the window is created before any other thread. One window per process.
  ShellWindow(std::u16string caption, Procedure procedure);
  ShellWindow(const ShellWindow&) = delete;
  ShellWindow& operator=(const ShellWindow&) = delete;
  ~ShellWindow();

  const std::u16string& Caption() const;
  ZentorWindowHandle* Handle();

  // Adds a message behind those waiting.
  void Post(WindowMessage message, MessageParameters parameters = {});
  // Returns when the procedure has handled the message: at once on the window's own thread, otherwise when
  // the loop (or HandleSent) comes to it. False when it will never be handled because the loop is over.
  bool Send(WindowMessage message, MessageParameters parameters = {});

  // Timer messages come when nothing else waits, never more than one of each at a time. A period of 0 is the
  // shortest that the system grants (10 ms). Setting a timer again starts its period anew.
  void SetTimer(int timer, int period_milliseconds);
  void StopTimer(int timer);

  // Keys typed in the terminal become kKeyDown messages while this is on; without a terminal, or when another
  // program has it, there are none. The terminal gets its own mode back when it is off.
  void ReadKeys(bool on);

  // Fetches and handles messages until Quit; returns Quit's exit code. Senders that still wait are released.
  int Run();
  // Handles messages that other threads have sent, for at most that long or until stop() is true. For waiting
  // on a thread that may itself be waiting for this one.
  void HandleSent(int milliseconds, const std::function<bool()>& stop);
  void Quit(int exit_code);

  // Open boxes close with their cautious answer, and so does every later one: the run is ending.
  void CloseBoxes();

  struct State;
  State& state() { return *state_; }  // for the boxes of this layer

 private:
  std::unique_ptr<State> state_;
};

}  // namespace zentor::platform
