// Programs that this one starts and waits for.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zentor::platform {

struct ChildCommand {
  std::string program;  // path
  std::vector<std::string> arguments;
  std::vector<std::pair<std::string, std::string>>
      environment;    // added to, or in place of, this process's own
  std::string input;  // what it reads from standard input, at most 4096 bytes
  bool own_streams =
      false;  // it has this process's standard input and error instead, its output goes to the latter
  std::intptr_t kept_handle = -1;  // an open file of this process that it has, too, under the same number
};

struct ChildEnd {
  bool by_signal = false;
  int code = 0;  // exit code or signal number
};

// A running child: its standard output dropped, its standard error gathered here, unless it shares ours. It
// shares the terminal's process group, so Ctrl-C reaches it, too. One child at a time.
class ChildProcess {
 public:
  // Throws FileError when the program cannot be started.
  explicit ChildProcess(const ChildCommand& command);
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess();  // a child that still runs is asked to end and waited for

  // Waits until the child ends, at most that long. The end, once it has come.
  std::optional<ChildEnd> Wait(int milliseconds);
  // What the child has written to standard error so far; of very long output the first megabyte.
  const std::string& ErrorText() const { return error_text_; }

  // From now on an interrupt, a hang-up or a request to end goes to the child and no longer ends this
  // process. (The terminal's own Ctrl-C has reached the child already and is not repeated.)
  void ForwardInterrupts();
  bool Interrupted() const;

 private:
  void ReadErrors(int milliseconds);

  int pid_ = 0;
  int error_pipe_ = -1;  // -1 once the child has closed its end
  std::optional<ChildEnd> end_;
  std::string error_text_;
};

// "SIGSEGV (Segmentation fault)".
std::string SignalText(int signal_number);

// Whether this process's standard error is a terminal.
bool ErrorIsTerminal();

}  // namespace zentor::platform
