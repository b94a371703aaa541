// A child process in a terminal of its own, driven as a person at the keyboard would drive it.
#pragma once

#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "support/terminal_screen.h"

namespace zentor::test {

// Generous: the tests wait for conditions and end as soon as they hold.
inline constexpr double kPatience = 120;

class PseudoTerminal {
 public:
  // The child runs the function (which may replace it by another program) and ends with its result.
  explicit PseudoTerminal(const std::function<int()>& child, int columns = 80, int rows = 24)
      : screen_(columns, rows) {
    const winsize size = SizeOf(columns, rows);
    pid_ = ::forkpty(&master_, nullptr, nullptr, &size);
    if (pid_ == 0) ::_exit(child());
    ::tcgetattr(master_, &modes_at_start_);
  }
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;
  ~PseudoTerminal() {
    if (!status_) {
      ::kill(pid_, SIGKILL);
      ::waitpid(pid_, nullptr, 0);
    }
    ::close(master_);
  }

  pid_t Pid() const { return pid_; }
  const TerminalScreen& Screen() const { return screen_; }
  // Everything that the child has written.
  const std::string& Output() const { return output_; }

  void Type(std::string_view keys) { static_cast<void>(!::write(master_, keys.data(), keys.size())); }

  void Resize(int columns, int rows) {
    const winsize size = SizeOf(columns, rows);
    ::ioctl(master_, TIOCSWINSZ, &size);
    screen_.Resize(columns, rows);
  }

  // Whether the condition comes true while the child's output is followed.
  bool WaitUntil(const std::function<bool()>& condition, double seconds = kPatience) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (!condition()) {
      if (std::chrono::steady_clock::now() > end) return false;
      Follow(20);
    }
    return true;
  }
  bool WaitFor(std::string_view text, double seconds = kPatience) {
    return WaitUntil([&] { return screen_.Shows(text); }, seconds);
  }
  // The child's exit code, or minus the signal that ended it; nothing when it does not end.
  std::optional<int> WaitForEnd(double seconds = kPatience) {
    WaitUntil([&] { return Ended(); }, seconds);
    while (Follow(0)) {
    }
    return status_;
  }

  // Whether the terminal's modes, screen and cursor are as the child found them.
  bool IsClean() const {
    termios now{};
    ::tcgetattr(master_, &now);
    return now.c_lflag == modes_at_start_.c_lflag && now.c_iflag == modes_at_start_.c_iflag &&
           now.c_cc[VSUSP] == modes_at_start_.c_cc[VSUSP] && !screen_.InAlternate() &&
           screen_.CursorVisible();
  }

 private:
  static winsize SizeOf(int columns, int rows) {
    return {static_cast<unsigned short>(rows), static_cast<unsigned short>(columns), 0, 0};
  }
  bool Follow(int milliseconds) {
    pollfd wait = {master_, POLLIN, 0};
    if (::poll(&wait, 1, milliseconds) <= 0) return false;
    char bytes[4096];
    const ssize_t count = ::read(master_, bytes, sizeof bytes);
    if (count <= 0) {
      if (milliseconds > 0) ::usleep(1000U * static_cast<unsigned>(milliseconds));  // the child's end is gone
      return false;
    }
    output_.append(bytes, static_cast<std::size_t>(count));
    screen_.Feed({bytes, static_cast<std::size_t>(count)});
    return true;
  }
  bool Ended() {
    int status = 0;
    if (!status_ && ::waitpid(pid_, &status, WNOHANG) == pid_) {
      status_ = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }
    return status_.has_value();
  }

  pid_t pid_ = 0;
  int master_ = -1;
  termios modes_at_start_{};
  std::optional<int> status_;
  TerminalScreen screen_;
  std::string output_;
};

}  // namespace zentor::test
