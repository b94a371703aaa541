// The only file that touches a terminal or a system call: raw keyboard, size, output that never blocks.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace zentor::progress {

struct TerminalSize {
  int columns = 80;
  int rows = 24;
};

// Wakes a thread that waits, from any other thread.
class Waker {
 public:
  Waker();
  Waker(const Waker&) = delete;
  Waker& operator=(const Waker&) = delete;
  ~Waker();
  void Wake();
  // Returns when woken, when `descriptor` (-1: none) has input, or after that time.
  void Wait(int descriptor, int milliseconds);

 private:
  int read_end_ = -1;
  int write_end_ = -1;
};

// The terminal that standard output goes to. It has a file description of its own, so that neither the
// non-blocking mode nor a reader of standard input is disturbed. Used by one thread.
class Terminal {
 public:
  // Null when standard output is no terminal that can show a panel.
  static std::unique_ptr<Terminal> OfStandardOutput();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;
  ~Terminal();  // leaves the panel

  // To wait for keys; -1 while they are not this panel's to read.
  int InputDescriptor() const { return in_panel_ && !gone_ ? descriptor_ : -1; }
  TerminalSize Size() const;
  // Whether the terminal is this process's to use now; a job in the background must not touch it.
  bool InForeground() const;
  bool Utf8() const { return utf8_; }

  // Enters the panel: keys without echo and line editing, a screen of its own without cursor. Ctrl-C keeps
  // its meaning; Ctrl-Z comes as a key, so that the terminal can be put in order first.
  void EnterPanel();
  // Gives the terminal back as it was. flush_input: keys pressed so far are not left for the next reader.
  void LeavePanel(bool flush_input);
  // Whether the terminal still gives single keys. A job that was stopped from outside finds the modes of its
  // command shell.
  bool HasPanelModes() const;
  // The job lost the terminal without warning; whoever has it now has set it up for itself.
  void ForgetPanel() { in_panel_ = false; }
  bool InPanel() const { return in_panel_; }

  // Bytes typed into the panel so far; empty when there are none.
  std::string Read();
  // Takes the bytes over and writes as much as the terminal accepts at once.
  void Write(std::string_view bytes);
  // Writes what is left, waiting at most that long; false when something is left still.
  bool Flush(int milliseconds);

 private:
  struct Modes;
  Terminal(int descriptor, bool utf8);

  int descriptor_;
  bool utf8_;
  bool in_panel_ = false;
  bool gone_ = false;  // nobody is at the other end any more
  std::string pending_;
  std::unique_ptr<Modes> saved_;
};

// Stops this process and its group as Ctrl-Z does; returns at once or when it is continued.
void StopJob();

// Writes a line to standard output, unless nobody reads it or its reader has taken nothing for a second.
void WriteLine(std::string_view line);

// Seconds of a steady clock.
double SteadySeconds();

// While it lives, threads that this thread starts take no signals: these are for the program's own threads.
class SignalsBlocked {
 public:
  SignalsBlocked();
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;
  ~SignalsBlocked();

 private:
  struct Mask;
  std::unique_ptr<Mask> before_;
};

}  // namespace zentor::progress
