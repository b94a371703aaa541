#include "platform/child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <string_view>

#include "platform/files.h"

namespace zentor::platform {

namespace {

constexpr std::size_t kMostErrorText = std::size_t{1} << 20U;

// What a signal handler may touch: the child that interrupts go to, and whether one has come.
volatile sig_atomic_t forward_to = 0;
volatile sig_atomic_t interrupted = 0;

void Forward(int number, siginfo_t* information, void*) {
  interrupted = 1;
  // Of a hang-up the system may tell the first process of a terminal alone; a second one does no harm.
  const bool from_terminal = number != SIGHUP && information != nullptr && information->si_code > 0;
  if (!from_terminal && forward_to != 0) ::kill(static_cast<pid_t>(forward_to), number);
}

std::vector<std::string> Environment(const ChildCommand& command) {
  std::vector<std::string> variables;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string_view text = *entry;
    const std::string_view name = text.substr(0, text.find('='));
    const bool replaced = std::any_of(command.environment.begin(), command.environment.end(),
                                      [&](const auto& variable) { return variable.first == name; });
    if (!replaced) variables.emplace_back(text);
  }
  for (const auto& [name, value] : command.environment) {
    variables.push_back(name);
    variables.back().append("=").append(value);
  }
  return variables;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

// A descriptor from which that text can be read, then the end of the input; -1 when there is no room for it.
int InputOf(const std::string& text) {
  std::array<int, 2> ends{};
  errno = 0;
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) return -1;
  const bool whole = text.size() <= PIPE_BUF &&
                     ::write(ends[1], text.data(), text.size()) == static_cast<ssize_t>(text.size());
  ::close(ends[1]);
  if (whole) return ends[0];
  ::close(ends[0]);
  return -1;
}

void AddStreams(posix_spawn_file_actions_t& actions, const ChildCommand& command, int input, int error) {
  if (command.own_streams) {
    ::posix_spawn_file_actions_adddup2(&actions, STDERR_FILENO, STDOUT_FILENO);
    return;
  }
  ::posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
  ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  ::posix_spawn_file_actions_adddup2(&actions, error, STDERR_FILENO);
}

// Starts the program with that descriptor as its standard error; returns the system's error code.
int Spawn(const ChildCommand& command, int error_descriptor, pid_t& pid) {
  std::vector<std::string> texts = {command.program};
  texts.insert(texts.end(), command.arguments.begin(), command.arguments.end());
  std::vector<std::string> variables = Environment(command);
  const auto arguments = Pointers(texts);
  const auto environment = Pointers(variables);
  const int input = InputOf(command.input);
  if (input < 0) return errno != 0 ? errno : EINVAL;
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  AddStreams(actions, command, input, error_descriptor);
  const int kept = static_cast<int>(command.kept_handle);
  if (kept >= 0) ::posix_spawn_file_actions_adddup2(&actions, kept, kept);  // which keeps it open
  const int error =
      ::posix_spawn(&pid, command.program.c_str(), &actions, nullptr, arguments.data(), environment.data());
  ::posix_spawn_file_actions_destroy(&actions);
  ::close(input);
  return error;
}

}  // namespace

ChildProcess::ChildProcess(const ChildCommand& command) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw FileError(command.program, "start", errno);
  pid_t pid = 0;
  const int error = Spawn(command, ends[1], pid);
  ::close(ends[1]);
  if (error != 0) {
    ::close(ends[0]);
    throw FileError(command.program, "start", error);
  }
  ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
  pid_ = pid;
  error_pipe_ = ends[0];
}

ChildProcess::~ChildProcess() {
  if (!end_) {
    ::kill(pid_, SIGTERM);
    while (::waitpid(pid_, nullptr, 0) < 0 && errno == EINTR) {
    }
  }
  forward_to = 0;
  if (error_pipe_ >= 0) ::close(error_pipe_);
}

void ChildProcess::ReadErrors(int milliseconds) {
  pollfd waited{error_pipe_, POLLIN, 0};
  ::poll(&waited, error_pipe_ >= 0 ? 1 : 0, milliseconds);
  std::array<char, 4096> piece;
  while (error_pipe_ >= 0) {
    const ssize_t count = ::read(error_pipe_, piece.data(), piece.size());
    if (count > 0) {
      const std::size_t room = kMostErrorText - std::min(kMostErrorText, error_text_.size());
      error_text_.append(piece.data(), std::min(room, static_cast<std::size_t>(count)));
    } else if (count == 0) {
      ::close(error_pipe_);
      error_pipe_ = -1;
    } else if (errno != EINTR) {
      return;
    }
  }
}

std::optional<ChildEnd> ChildProcess::Wait(int milliseconds) {
  constexpr int kShortWait = 10;  // for a child that has closed its standard error
  const int waits = error_pipe_ >= 0 ? 1 : std::max(1, milliseconds / kShortWait);
  for (int i = 0; i < waits && !end_; ++i) {
    ReadErrors(waits == 1 ? milliseconds : kShortWait);
    int status = 0;
    if (::waitpid(pid_, &status, WNOHANG) != pid_) continue;
    ReadErrors(0);
    end_ = WIFSIGNALED(status) ? ChildEnd{true, WTERMSIG(status)} : ChildEnd{false, WEXITSTATUS(status)};
    forward_to = 0;
  }
  return end_;
}

void ChildProcess::ForwardInterrupts() {
  interrupted = 0;
  forward_to = pid_;
  struct sigaction action {};
  action.sa_sigaction = Forward;
  action.sa_flags = SA_SIGINFO;
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
    // A shell starts its background jobs with interrupts ignored, nohup with hang-ups, which is to stay so.
    struct sigaction before {};
    ::sigaction(number, nullptr, &before);
    if (before.sa_handler != SIG_IGN) ::sigaction(number, &action, nullptr);
  }
}

bool ChildProcess::Interrupted() const { return interrupted != 0; }

std::string SignalText(int signal_number) {
  const char* name = ::sigabbrev_np(signal_number);
  const char* text = ::sigdescr_np(signal_number);
  if (name == nullptr || text == nullptr) return "signal " + std::to_string(signal_number);
  return "SIG" + std::string(name) + " (" + text + ")";
}

bool ErrorIsTerminal() { return ::isatty(STDERR_FILENO) == 1; }

}  // namespace zentor::platform
