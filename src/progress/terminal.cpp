#include "progress/terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>

namespace zentor::progress {
namespace {

// Own screen, no cursor, long lines cut instead of wrapped; and the way back.
constexpr std::string_view kEnter = "\x1b[?1049h\x1b[?25l\x1b[?7l\x1b[2J";
constexpr std::string_view kLeave = "\x1b[0m\x1b[?7h\x1b[?25h\x1b[?1049l";
constexpr int kLeaveMilliseconds = 1000;
constexpr int kLineMilliseconds = 1000;

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

// Whether the user's locale is one of UTF-8; the process's own locale may be another.
bool LocaleIsUtf8() {
  for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    std::string value = Environment(name);
    if (value.empty()) continue;
    std::transform(value.begin(), value.end(), value.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return value.find("utf-8") != std::string::npos || value.find("utf8") != std::string::npos;
  }
  return false;
}

int OpenTerminal() {
  std::array<char, 256> name{};
  if (::ttyname_r(STDOUT_FILENO, name.data(), name.size()) != 0) {
    constexpr std::string_view kSelf = "/proc/self/fd/1";  // a terminal of another name space
    std::copy(kSelf.begin(), kSelf.end(), name.begin());
    name[kSelf.size()] = '\0';
  }
  return ::open(name.data(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
}

}  // namespace

Waker::Waker() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
  read_end_ = ends[0];
  write_end_ = ends[1];
}

Waker::~Waker() {
  if (read_end_ >= 0) ::close(read_end_);
  if (write_end_ >= 0) ::close(write_end_);
}

void Waker::Wake() {
  // A full pipe wakes just as well.
  if (write_end_ >= 0) static_cast<void>(!::write(write_end_, "", 1));
}

void Waker::Wait(int descriptor, int milliseconds) {
  std::array<pollfd, 2> waits = {{{read_end_, POLLIN, 0}, {descriptor, POLLIN, 0}}};
  if (::poll(waits.data(), waits.size(), milliseconds) <= 0) return;
  std::array<char, 64> dropped{};
  while (::read(read_end_, dropped.data(), dropped.size()) > 0) {
  }
}

struct Terminal::Modes {
  termios value{};
};

std::unique_ptr<Terminal> Terminal::OfStandardOutput() {
  if (::isatty(STDOUT_FILENO) == 0) return nullptr;
  const std::string kind = Environment("TERM");
  if (kind.empty() || kind == "dumb") return nullptr;
  const int descriptor = OpenTerminal();
  if (descriptor < 0) return nullptr;
  return std::unique_ptr<Terminal>(new Terminal(descriptor, LocaleIsUtf8()));
}

Terminal::Terminal(int descriptor, bool utf8)
    : descriptor_(descriptor), utf8_(utf8), saved_(std::make_unique<Modes>()) {}

Terminal::~Terminal() {
  LeavePanel(false);
  ::close(descriptor_);
}

TerminalSize Terminal::Size() const {
  winsize size{};
  if (::ioctl(descriptor_, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) return {};
  return {size.ws_col, size.ws_row};
}

bool Terminal::InForeground() const {
  const pid_t group = ::tcgetpgrp(descriptor_);
  // A terminal that does not control this process has no foreground group to compare with.
  return group < 0 ? errno == ENOTTY : group == ::getpgrp();
}

void Terminal::EnterPanel() {
  if (in_panel_ || ::tcgetattr(descriptor_, &saved_->value) != 0) return;
  termios raw = saved_->value;
  raw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | IEXTEN);
  raw.c_iflag &= ~static_cast<tcflag_t>(IXON);  // a stray Ctrl-S would freeze the panel
  raw.c_cc[VMIN] = 1;                           // so that 0 bytes mean a terminal that is gone
  raw.c_cc[VTIME] = 0;
  raw.c_cc[VSUSP] = _POSIX_VDISABLE;
  if (::tcsetattr(descriptor_, TCSANOW, &raw) != 0) return;
  in_panel_ = true;
  gone_ = false;  // a read in the background fails as one from a terminal that is gone
  pending_ = kEnter;
}

bool Terminal::HasPanelModes() const {
  termios now{};
  return ::tcgetattr(descriptor_, &now) == 0 && (now.c_lflag & (ICANON | ECHO)) == 0;
}

void Terminal::LeavePanel(bool flush_input) {
  if (!in_panel_) return;
  in_panel_ = false;
  pending_ = kLeave;  // the rest of a picture is of no use any more
  if (!Flush(kLeaveMilliseconds)) {
    ::tcflush(descriptor_, TCOFLUSH);  // nor are pictures that a reader who stands still has not taken
    pending_ = kLeave;
    Flush(0);
  }
  pending_.clear();
  ::tcsetattr(descriptor_, TCSANOW, &saved_->value);
  if (flush_input) ::tcflush(descriptor_, TCIFLUSH);
}

std::string Terminal::Read() {
  std::array<char, 256> bytes{};
  if (InputDescriptor() < 0) return {};
  const ssize_t count = ::read(descriptor_, bytes.data(), bytes.size());
  gone_ = count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR);
  return {bytes.data(), count > 0 ? static_cast<std::size_t>(count) : 0};
}

void Terminal::Write(std::string_view bytes) {
  pending_.append(bytes);
  Flush(0);
}

bool Terminal::Flush(int milliseconds) {
  while (!pending_.empty()) {
    const ssize_t count = ::write(descriptor_, pending_.data(), pending_.size());
    if (count > 0) {
      pending_.erase(0, static_cast<std::size_t>(count));
      continue;
    }
    if (errno != EAGAIN) {
      pending_.clear();  // the terminal is gone
      break;
    }
    pollfd wait = {descriptor_, POLLOUT, 0};
    if (milliseconds == 0 || ::poll(&wait, 1, milliseconds) <= 0) break;
  }
  return pending_.empty();
}

// The terminal, too, would stop every process of its foreground group: a pipeline or a script around this
// program stops with it, and the command shell sees its whole job stopped.
void StopJob() { ::kill(0, SIGTSTP); }

void WriteLine(std::string_view line) {
  std::string bytes(line);
  bytes += '\n';
  pollfd ready = {STDOUT_FILENO, POLLOUT, 0};
  for (std::size_t done = 0; done < bytes.size();) {
    if (::poll(&ready, 1, kLineMilliseconds) <= 0) return;
    const ssize_t count = ::write(STDOUT_FILENO, bytes.data() + done, bytes.size() - done);
    if (count <= 0 && errno != EINTR) return;
    if (count > 0) done += static_cast<std::size_t>(count);
  }
}

double SteadySeconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

struct SignalsBlocked::Mask {
  sigset_t value{};
};

SignalsBlocked::SignalsBlocked() : before_(std::make_unique<Mask>()) {
  sigset_t all;
  ::sigfillset(&all);
  ::pthread_sigmask(SIG_SETMASK, &all, &before_->value);
}

SignalsBlocked::~SignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &before_->value, nullptr); }

}  // namespace zentor::progress
