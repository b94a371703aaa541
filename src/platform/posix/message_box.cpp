#include "platform/message_box.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <string_view>
#include <thread>

#include "platform/box_text.h"
#include "platform/posix/window_state.h"
#include "platform/text.h"

namespace zentor::platform {
namespace {

constexpr int kPatience = 2000;  // milliseconds for somebody behind a pipe
constexpr char kEscape = 27;

void Write(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = ::write(descriptor, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(count));
  }
}

int ColumnsOf(int terminal) {
  constexpr int kUsualColumns = 80;
  winsize size{};
  return ::ioctl(terminal, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsualColumns;
}

// Waits for input and, behind it, for whatever closes the box; the window's thread goes on with the window's
// other work meanwhile.
class Input {
 public:
  explicit Input(ShellWindow::State* window) {
    if (window == nullptr) return;
    closing_ = window->closing->number();
    requests_ = window->requests->number();
    if (window->thread == std::this_thread::get_id()) own_window_ = window;
  }

  // The next byte, however long it takes; nothing at the end of the input or when the box is to close.
  // look() is called now and then.
  std::optional<char> Next(const std::function<void()>& look) const {
    constexpr int kLookMilliseconds = 200;
    for (;;) {
      bool waited_in_vain = false;
      const auto byte = Next(kLookMilliseconds, &waited_in_vain);
      if (!waited_in_vain) return byte;
      look();
    }
  }

  // As above, and nothing after that time either.
  std::optional<char> Next(int milliseconds, bool* waited_in_vain = nullptr) const {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    for (;;) {
      if (own_window_ != nullptr) WorkDuringBox(*own_window_);
      const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
      const Event event = Wait(static_cast<int>(std::max<std::int64_t>(left, 0)));
      if (event == Event::kClose) return std::nullopt;
      if (event == Event::kNone) {
        if (Clock::now() < end) continue;
        if (waited_in_vain != nullptr) *waited_in_vain = true;
        return std::nullopt;
      }
      if (TerminalIsAnothers()) continue;  // since the wait began
      char byte = 0;
      const ssize_t count = ::read(STDIN_FILENO, &byte, 1);
      if (count == 1) return byte;
      if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
      return std::nullopt;
    }
  }

 private:
  enum class Event { kNone, kInput, kClose };

  // Waits at most that long, on the window's thread no longer than until there is something else to do.
  Event Wait(int milliseconds) const {
    const int input = TerminalIsAnothers() ? -1 : STDIN_FILENO;  // reading would stop the job
    const int wake = own_window_ == nullptr ? -1 : own_window_->wake->number();
    std::array<pollfd, 4> waited = {
        {{input, POLLIN, 0}, {closing_, POLLIN, 0}, {requests_, POLLIN, 0}, {wake, POLLIN, 0}}};
    if (own_window_ != nullptr) milliseconds = std::min(milliseconds, UntilNextTimer(*own_window_));
    if (::poll(waited.data(), waited.size(), milliseconds) <= 0) return Event::kNone;
    if (waited[1].revents != 0 || waited[2].revents != 0) return Event::kClose;
    return waited[0].revents != 0 ? Event::kInput : Event::kNone;
  }

  int closing_ = -1, requests_ = -1;
  ShellWindow::State* own_window_ = nullptr;
};

// Shows the box and takes single keys until one chooses. A function key sends more than one byte, which begin
// as Escape does. A job that was stopped meanwhile and has the terminal again asks anew.
std::optional<BoxButton> AskForKey(const Input& input, const BoxText& box, int output) {
  constexpr int kWithinSequence = 30;  // milliseconds between the bytes of one key
  const std::string question = box.Question(ColumnsOf(output));
  KeyMode mode;
  Write(output, question);
  const auto ask_again = [&] {
    if (!mode.Lost()) return;
    mode.Renew();
    Write(output, question);
  };
  Utf8Decoder decoder;
  for (;;) {
    const auto byte = input.Next(ask_again);
    if (!byte) return std::nullopt;
    bool sequence = false;
    while (*byte == kEscape && input.Next(kWithinSequence)) sequence = true;
    const auto key = decoder.Take(*byte);
    const auto button = sequence || !key ? std::nullopt : box.ButtonOfKey(*key);
    if (!button) continue;
    Write(output, box.Label(*button) + "\n");
    return button;
  }
}

// The first letter of the next line; a line feed for an empty one, nothing at the end of the input. Bytes are
// read one by one: what follows belongs to the next box.
std::optional<char32_t> FirstLetterOfLine(const Input& input) {
  constexpr int kLongestLine = 4096;
  std::optional<char32_t> first;
  Utf8Decoder decoder;
  for (int i = 0; i < kLongestLine; ++i) {
    const auto byte = input.Next(kPatience);
    if (!byte) return first;
    if (*byte == '\n') return first.value_or('\n');
    const auto letter = decoder.Take(*byte);
    if (!first && letter && *letter != U' ' && *letter != U'\t' && *letter != U'\r') first = letter;
  }
  return std::nullopt;
}

// Takes lines until one chooses; something that never does is not somebody who answers.
std::optional<BoxButton> AskForLine(const Input& input, const BoxText& box) {
  constexpr int kMostLines = 20;
  for (int i = 0; i < kMostLines; ++i) {
    const auto letter = FirstLetterOfLine(input);
    if (!letter) return std::nullopt;
    if (const auto button = box.ButtonOfKey(*letter)) return button;
  }
  return std::nullopt;
}

// The descriptor on which the user sees the box; -1 when there is none.
int VisibleOutput() {
  if (::isatty(STDOUT_FILENO) == 1) return STDOUT_FILENO;
  return ::isatty(STDERR_FILENO) == 1 ? STDERR_FILENO : -1;
}

BoxButton Ask(const MessageBoxRequest& request, ShellWindow::State* window) {
  const BoxText box(request);
  const Input input(window);
  std::optional<BoxButton> button;
  if (TerminalIsOurs() && VisibleOutput() >= 0) {
    const int output = VisibleOutput();
    button = AskForKey(input, box, output);
    if (!button) Write(output, "\n");
    return button.value_or(box.Cautious());
  }
  // A box with one button needs no answer.
  if (box.HasChoice() && ::isatty(STDIN_FILENO) != 1) button = AskForLine(input, box);
  Write(button ? STDOUT_FILENO : STDERR_FILENO, box.Report(button.value_or(box.Cautious())));
  return button.value_or(box.Cautious());
}

}  // namespace

BoxButton ShowMessageBox(const MessageBoxRequest& request, ShellWindow* owner) {
  if (owner == nullptr) return Ask(request, nullptr);
  ShellWindow::State& state = owner->state();
  const std::lock_guard one_box(state.box_mutex);
  state.box_open = true;
  const BoxButton button = Ask(request, &state);
  state.box_open = false;
  return button;
}

}  // namespace zentor::platform
