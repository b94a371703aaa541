#include <unistd.h>

#include "platform/posix/window_state.h"

namespace zentor::platform {

bool TerminalIsOurs() { return ::isatty(STDIN_FILENO) == 1 && ::tcgetpgrp(STDIN_FILENO) == ::getpgrp(); }

bool TerminalIsAnothers() {
  const pid_t group = ::isatty(STDIN_FILENO) == 1 ? ::tcgetpgrp(STDIN_FILENO) : -1;
  return group > 0 && group != ::getpgrp();
}

KeyMode::KeyMode() {
  on_ = ::isatty(STDIN_FILENO) == 1 && ::tcgetattr(STDIN_FILENO, &found_) == 0;
  Renew();
}

// Signals stay: Ctrl-C and Ctrl-Z keep their meaning.
void KeyMode::Renew() {
  if (!on_ || !TerminalIsOurs()) return;
  termios mode = found_;
  mode.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
  mode.c_cc[VMIN] = 1;
  mode.c_cc[VTIME] = 0;
  ::tcsetattr(STDIN_FILENO, TCSANOW, &mode);
}

bool KeyMode::Lost() const {
  termios now{};
  return on_ && TerminalIsOurs() && ::tcgetattr(STDIN_FILENO, &now) == 0 && (now.c_lflag & ICANON) != 0;
}

KeyMode::~KeyMode() {
  if (on_ && TerminalIsOurs()) ::tcsetattr(STDIN_FILENO, TCSANOW, &found_);
}

}  // namespace zentor::platform
