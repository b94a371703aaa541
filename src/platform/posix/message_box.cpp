#include "platform/message_box.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <span>
#include <string_view>

#include "platform/posix/window_state.h"
#include "platform/text.h"

namespace zentor::platform {
namespace {

constexpr int kPatience = 2000;  // milliseconds for somebody behind a pipe
constexpr char kEscape = 27;

struct Choice {
  BoxButton button;
  char key;
  std::string_view label;
};

constexpr Choice kOkChoice = {BoxButton::kOk, 'o', "[O]K"};
constexpr Choice kCancelChoice = {BoxButton::kCancel, 'c', "[C]ancel"};
constexpr Choice kRetryChoice = {BoxButton::kRetry, 'r', "[R]etry"};
constexpr Choice kYesChoice = {BoxButton::kYes, 'y', "[Y]es"};
constexpr Choice kNoChoice = {BoxButton::kNo, 'n', "[N]o"};

// In the order in which they are shown; the first is the default.
std::span<const Choice> ChoicesOf(BoxButtons buttons) {
  static constexpr std::array kOk = {kOkChoice};
  static constexpr std::array kOkCancel = {kOkChoice, kCancelChoice};
  static constexpr std::array kRetryCancel = {kRetryChoice, kCancelChoice};
  static constexpr std::array kYesNo = {kYesChoice, kNoChoice};
  static constexpr std::array kYesNoCancel = {kYesChoice, kNoChoice, kCancelChoice};
  switch (buttons) {
    case BoxButtons::kOk:
      return kOk;
    case BoxButtons::kOkCancel:
      return kOkCancel;
    case BoxButtons::kRetryCancel:
      return kRetryCancel;
    case BoxButtons::kYesNo:
      return kYesNo;
    case BoxButtons::kYesNoCancel:
      return kYesNoCancel;
  }
  return kOk;
}

BoxButton FirstOf(std::span<const Choice> choices, std::initializer_list<BoxButton> wanted) {
  for (const BoxButton button : wanted) {
    for (const Choice& choice : choices) {
      if (choice.button == button) return button;
    }
  }
  return choices.front().button;
}

BoxButton CautiousButton(std::span<const Choice> choices) {
  return FirstOf(choices, {BoxButton::kNo, BoxButton::kCancel, BoxButton::kOk});
}

BoxButton EscapeButton(std::span<const Choice> choices) {
  return FirstOf(choices, {BoxButton::kCancel, BoxButton::kNo, BoxButton::kOk});
}

std::string_view LabelOf(std::span<const Choice> choices, BoxButton button) {
  for (const Choice& choice : choices) {
    if (choice.button == button) return choice.label;
  }
  return {};
}

// The button that a key or the first letter of a line stands for.
std::optional<BoxButton> ButtonOfKey(std::span<const Choice> choices, char key) {
  if (key == '\n' || key == '\r') return choices.front().button;
  if (key == kEscape) return EscapeButton(choices);
  for (const Choice& choice : choices) {
    if (std::tolower(static_cast<unsigned char>(key)) == choice.key) return choice.button;
  }
  return std::nullopt;
}

void Write(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = ::write(descriptor, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(count));
  }
}

// Texts hold names from files.
std::string Shown(std::u16string_view wide) {
  std::string text = ToUtf8(wide);
  std::erase(text, '\r');
  return Printable(text, "\n");
}

std::string_view IconText(BoxIcon icon) {
  switch (icon) {
    case BoxIcon::kError:
      return " (error)";
    case BoxIcon::kWarning:
      return " (warning)";
    case BoxIcon::kQuestion:
    case BoxIcon::kNone:
      break;
  }
  return "";
}

std::string TextOf(const MessageBoxRequest& request) {
  return "--- " + Shown(request.title) + std::string(IconText(request.icon)) + " ---\n" +
         Shown(request.text) + "\n";
}

std::string ButtonLine(std::span<const Choice> choices) {
  std::string line;
  for (const Choice& choice : choices) line += std::string(choice.label) + "  ";
  if (choices.size() == 1) return line + "(Enter) ";
  const auto word = [&](BoxButton button) {
    std::string label;
    for (const char c : LabelOf(choices, button)) {
      if (c != '[' && c != ']') label.push_back(c);
    }
    return label;
  };
  return line + "(Enter: " + word(choices.front().button) + ", Esc: " + word(EscapeButton(choices)) + ") ";
}

int ColumnsOf(int terminal) {
  constexpr int kUsualColumns = 80;
  winsize size{};
  return ::ioctl(terminal, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsualColumns;
}

// The text with lines longer than the terminal broken at blanks where there are any.
std::string Wrapped(std::string_view text, int columns) {
  const auto begins_character = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; };
  std::string out;
  std::size_t blank = 0;  // the last one of the line; 0 without one
  std::ptrdiff_t used = 0;
  for (const char c : text) {
    if (c == '\n') {
      out.erase(out.find_last_not_of(' ') + 1);
      used = -1;
      blank = 0;
    }
    if (c == ' ') blank = out.size();
    out.push_back(c);
    if (begins_character(c)) ++used;
    if (used <= columns || c == ' ' || blank == 0) continue;
    out[blank] = '\n';
    used = std::count_if(out.begin() + static_cast<std::ptrdiff_t>(blank) + 1, out.end(), begins_character);
    blank = 0;
  }
  return out;
}

// Waits for input and, behind it, for whatever closes the box.
class Input {
 public:
  explicit Input(const ShellWindow::State* window) {
    if (window == nullptr) return;
    closing_ = window->closing->number();
    requests_ = window->requests->number();
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
      const int input = TerminalIsAnothers() ? -1 : STDIN_FILENO;  // reading would stop the job
      std::array<pollfd, 3> waited = {{{input, POLLIN, 0}, {closing_, POLLIN, 0}, {requests_, POLLIN, 0}}};
      const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
      const int ready = ::poll(waited.data(), waited.size(), static_cast<int>(left < 0 ? 0 : left));
      if (ready < 0 && errno == EINTR) continue;
      if (ready == 0 && waited_in_vain != nullptr) *waited_in_vain = true;
      if (ready <= 0 || waited[1].revents != 0 || waited[2].revents != 0) return std::nullopt;
      if (TerminalIsAnothers()) continue;  // since the wait began
      char byte = 0;
      const ssize_t count = ::read(STDIN_FILENO, &byte, 1);
      if (count == 1) return byte;
      if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
      return std::nullopt;
    }
  }

 private:
  int closing_ = -1, requests_ = -1;
};

// Shows the box and takes single keys until one chooses. A function key sends more than one byte, which begin
// as Escape does. A job that was stopped meanwhile and has the terminal again asks anew.
std::optional<BoxButton> AskForKey(const Input& input, std::span<const Choice> choices,
                                   const std::string& text, int output) {
  constexpr int kWithinSequence = 30;  // milliseconds between the bytes of one key
  const std::string question = Wrapped(text, ColumnsOf(output)) + ButtonLine(choices);
  KeyMode mode;
  Write(output, question);
  const auto ask_again = [&] {
    if (!mode.Lost()) return;
    mode.Renew();
    Write(output, question);
  };
  for (;;) {
    const auto key = input.Next(ask_again);
    if (!key) return std::nullopt;
    bool sequence = false;
    while (*key == kEscape && input.Next(kWithinSequence)) sequence = true;
    const auto button = sequence ? std::nullopt : ButtonOfKey(choices, *key);
    if (!button) continue;
    Write(output, std::string(LabelOf(choices, *button)) + "\n");
    return button;
  }
}

// The first letter of the next line; a line feed for an empty one, nothing at the end of the input. Bytes are
// read one by one: what follows belongs to the next box.
std::optional<char> FirstLetterOfLine(const Input& input) {
  constexpr int kLongestLine = 4096;
  std::optional<char> first;
  for (int i = 0; i < kLongestLine; ++i) {
    const auto byte = input.Next(kPatience);
    if (!byte) return first;
    if (*byte == '\n') return first.value_or('\n');
    if (!first && *byte != ' ' && *byte != '\t' && *byte != '\r') first = byte;
  }
  return std::nullopt;
}

// Takes lines until one chooses; something that never does is not somebody who answers.
std::optional<BoxButton> AskForLine(const Input& input, std::span<const Choice> choices) {
  constexpr int kMostLines = 20;
  for (int i = 0; i < kMostLines; ++i) {
    const auto letter = FirstLetterOfLine(input);
    if (!letter) return std::nullopt;
    if (const auto button = ButtonOfKey(choices, *letter)) return button;
  }
  return std::nullopt;
}

// The descriptor on which the user sees the box; -1 when there is none.
int VisibleOutput() {
  if (::isatty(STDOUT_FILENO) == 1) return STDOUT_FILENO;
  return ::isatty(STDERR_FILENO) == 1 ? STDERR_FILENO : -1;
}

BoxButton Ask(const MessageBoxRequest& request, const ShellWindow::State* window) {
  const std::span<const Choice> choices = ChoicesOf(request.buttons);
  const std::string text = TextOf(request);
  const Input input(window);
  std::optional<BoxButton> button;
  if (TerminalIsOurs() && VisibleOutput() >= 0) {
    const int output = VisibleOutput();
    button = AskForKey(input, choices, text, output);
    if (!button) Write(output, "\n");
    return button.value_or(CautiousButton(choices));
  }
  // A box with one button needs no answer.
  if (choices.size() > 1 && ::isatty(STDIN_FILENO) != 1) button = AskForLine(input, choices);
  const BoxButton taken = button.value_or(CautiousButton(choices));
  Write(button ? STDOUT_FILENO : STDERR_FILENO, text + std::string(LabelOf(choices, taken)) + "\n");
  return taken;
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
