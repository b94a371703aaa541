// The library as a program uses it: loaded at run time, called through its entry points, in a terminal.
#include <dlfcn.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "support/pseudo_terminal.h"
#include "support/temp_folder.h"

namespace zentor::test {
namespace {

using testing::HasSubstr;
using testing::Not;

class Library {
 public:
  Library() : handle_(::dlopen(ZENTOR_PROGRESS_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {}
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library() { ::dlclose(handle_); }

  template <typename Result = void, typename... Args>
  Result Call(const char* name, Args... args) const {
    return reinterpret_cast<Result (*)(Args...)>(::dlsym(handle_, name))(args...);
  }
  // The calls of a program's start-up.
  void Start(int hidden = 0) const {
    Call("SetSolverType", u"Solver");
    Call("SetSolverDirectory", "/studies/s1");
    Call("ShowWindowHidden", hidden);
    for (const char* function : {"Create", "ProgressControl1", "ProgressControl2"}) {
      Call("ExportedFunction", function);
    }
    Call("SetWindowCaption", "/studies/s1");
  }
  void* handle() const { return handle_; }

 private:
  void* handle_;
};

// Lets the test tell its child when to go on. Made before the child.
class Starter {
 public:
  Starter() { static_cast<void>(!::pipe(ends_)); }
  Starter(const Starter&) = delete;
  Starter& operator=(const Starter&) = delete;
  ~Starter() {
    ::close(ends_[0]);
    ::close(ends_[1]);
  }
  void Give() const { static_cast<void>(!::write(ends_[1], "", 1)); }
  void Wait() const {
    char byte = 0;
    static_cast<void>(!::read(ends_[0], &byte, 1));
  }

 private:
  int ends_[2]{};
};

void Sleep(int milliseconds) { ::usleep(1000U * static_cast<unsigned>(milliseconds)); }

void SetTerminalKind(const char* kind) {
  ::setenv("TERM", kind, 1);
  ::setenv("LC_ALL", "C", 1);
}

constexpr int kEndless = 100000000;
constexpr int kAborted = 7;

// Counts until the user aborts; does nothing while held.
void CountUntilAborted(const Library& library) {
  for (int count = 0; count < kEndless && library.Call<int>("GetSolverAbortSignaled") == 0;) {
    if (library.Call<int>("GetSuspendThreadStatus") == 0) library.Call("SetProgressBar2", kEndless, ++count);
    Sleep(2);
  }
}

int RunUntilAborted() {
  SetTerminalKind("xterm");
  const Library library;
  library.Start();
  CountUntilAborted(library);
  library.Call("SetExitWindow");
  return kAborted;
}

// The count that the panel shows, -1 without one.
int CountOf(const TerminalScreen& screen) {
  const std::string text = screen.Text();
  const std::size_t at = text.find("Nodes ");
  return at == std::string::npos ? -1 : std::atoi(text.c_str() + at + 6);
}

TEST(ProgressLibrary, HasEveryEntryPoint) {
  const Library library;
  ASSERT_NE(library.handle(), nullptr) << ::dlerror();
  for (const char* name : {"SetSolverType",
                           "LoadZentorString",
                           "SetWindowHandle",
                           "SetSolverDirectory",
                           "SetZentorLiteSignalled",
                           "ShowWindowHidden",
                           "ExportedFunction",
                           "SetWindowCaption",
                           "SetElapsedTime",
                           "GetSolverAbortSignaled",
                           "GetSuspendThreadStatus",
                           "SetProgressBar2",
                           "SetScreenData",
                           "SetNonLinearIterationNumber",
                           "SetNonLinearContactPoints",
                           "SetNonLinearContactIterationNumber",
                           "GetStatusForTimeStepNumberToBeWrittenToBuffer",
                           "SetScreenMessage",
                           "SetNonLinearStepSize",
                           "SetScreenData1",
                           "SetMessageBoxSignalled",
                           "ShowWarningMessage",
                           "SetExitWindow"}) {
    EXPECT_NE(::dlsym(library.handle(), name), nullptr) << name;
  }
}

TEST(ProgressLibrary, KeysSuspendResumeAskAndAbort) {
  PseudoTerminal terminal(RunUntilAborted);
  ASSERT_TRUE(terminal.WaitFor("[p] suspend")) << terminal.Output();
  EXPECT_TRUE(terminal.WaitUntil([&] { return CountOf(terminal.Screen()) > 10; }));
  EXPECT_FALSE(terminal.Screen().CursorVisible());
  EXPECT_THAT(terminal.Screen().Line(0), HasSubstr("Solver"));
  EXPECT_THAT(terminal.Screen().Line(1), HasSubstr("/studies/s1"));

  terminal.Type("p");
  ASSERT_TRUE(terminal.WaitFor("[p] resume"));
  const int held_at = CountOf(terminal.Screen());
  EXPECT_FALSE(terminal.WaitUntil([&] { return CountOf(terminal.Screen()) > held_at + 20; }, 0.5));
  terminal.Type("p");
  EXPECT_TRUE(terminal.WaitUntil([&] { return CountOf(terminal.Screen()) > held_at + 20; }));

  terminal.Type("\x1b");
  ASSERT_TRUE(terminal.WaitFor("Abort the analysis?"));
  terminal.Type("n");
  EXPECT_TRUE(terminal.WaitUntil([&] { return !terminal.Screen().Shows("Abort the analysis?"); }));
  terminal.Type("qy");
  EXPECT_EQ(terminal.WaitForEnd(), kAborted);
  EXPECT_TRUE(terminal.IsClean());
  EXPECT_THAT(terminal.Screen().Line(0), HasSubstr("Solver, Study /studies/s1: 0 %, Nodes "));
}

TEST(ProgressLibrary, FollowsTheSizeOfTheTerminal) {
  PseudoTerminal terminal(RunUntilAborted, 100, 30);
  ASSERT_TRUE(terminal.WaitFor("Nodes/s"));
  terminal.Resize(24, 2);
  EXPECT_TRUE(terminal.WaitUntil([&] {
    return terminal.Screen().Line(0) == "[................]   0 %" &&
           terminal.Screen().Line(1).starts_with("[p] suspend");
  })) << terminal.Screen().Text();
  terminal.Resize(100, 30);
  EXPECT_TRUE(terminal.WaitUntil([&] { return terminal.Screen().Line(0).starts_with(" Solver"); }));
}

TEST(ProgressLibrary, LeavesTheTerminalToABoxAndComesBack) {
  const Starter box;
  PseudoTerminal terminal([&] {
    SetTerminalKind("xterm");
    const Library library;
    library.Start();
    box.Wait();
    library.Call("SetMessageBoxSignalled", 1);
    static_cast<void>(!::write(STDOUT_FILENO, "go on?", 6));
    char line[20]{};
    const ssize_t count = ::read(STDIN_FILENO, line, sizeof line);
    library.Call("SetMessageBoxSignalled", 0);
    CountUntilAborted(library);
    return std::string_view(line, count > 0 ? static_cast<std::size_t>(count) : 0) == "quite\n" ? 0 : 1;
  });
  ASSERT_TRUE(terminal.WaitFor("[p] suspend"));
  box.Give();
  ASSERT_TRUE(terminal.WaitFor("go on?"));
  EXPECT_TRUE(terminal.HasModesOfStart()) << "the box reads lines with echo";
  EXPECT_FALSE(terminal.Screen().InAlternate());
  terminal.Type("quite\n");  // its q is not the panel's
  ASSERT_TRUE(terminal.WaitFor("[p] suspend"));
  EXPECT_FALSE(terminal.Screen().Shows("Abort the analysis?"));
  terminal.Type("qy");
  EXPECT_EQ(terminal.WaitForEnd(), 0);
  EXPECT_TRUE(terminal.IsClean()) << "unloaded without a word of the end";
}

TEST(ProgressLibrary, EndOfTheProcessLeavesTheTerminalClean) {
  const Starter end;
  PseudoTerminal terminal([&] {
    SetTerminalKind("xterm");
    static const Library library;
    library.Start();
    end.Wait();
    ::exit(3);
    return 0;
  });
  EXPECT_TRUE(terminal.WaitFor("[p] suspend"));
  end.Give();
  EXPECT_EQ(terminal.WaitForEnd(), 3);
  EXPECT_TRUE(terminal.IsClean());
}

// The terminal's owner runs a job as a command shell does: in a process group of its own that has the
// terminal, and takes the terminal back when the job stops.
int RunAsJob() {
  const pid_t job = ::fork();
  if (job == 0) {
    ::setpgid(0, 0);
    while (::tcgetpgrp(STDOUT_FILENO) != ::getpgrp()) Sleep(1);
    ::_exit(RunUntilAborted());
  }
  ::signal(SIGTTOU, SIG_IGN);
  ::setpgid(job, job);
  ::tcsetpgrp(STDOUT_FILENO, job);
  int status = 0;
  ::waitpid(job, &status, WUNTRACED);
  ::tcsetpgrp(STDOUT_FILENO, ::getpgrp());
  static_cast<void>(!::write(STDOUT_FILENO, "job stopped", 11));
  char key = 0;
  static_cast<void>(!::read(STDIN_FILENO, &key, 1));
  ::kill(job, SIGCONT);  // in the background first
  static_cast<void>(!::read(STDIN_FILENO, &key, 1));
  ::tcsetpgrp(STDOUT_FILENO, job);
  ::waitpid(job, &status, 0);
  return WEXITSTATUS(status);
}

TEST(ProgressLibrary, JobControlPutsTheTerminalInOrder) {
  PseudoTerminal terminal(RunAsJob);
  ASSERT_TRUE(terminal.WaitFor("[p] suspend"));
  terminal.Type("\x1a");
  ASSERT_TRUE(terminal.WaitFor("job stopped"));
  EXPECT_TRUE(terminal.IsClean());
  terminal.Type("\n");
  EXPECT_FALSE(terminal.WaitUntil([&] { return terminal.Screen().InAlternate(); }, 0.7))
      << "in the background the terminal is another's";
  terminal.Type("\n");
  ASSERT_TRUE(terminal.WaitFor("[p] suspend"));
  terminal.Type("qy");
  EXPECT_EQ(terminal.WaitForEnd(), kAborted);
  EXPECT_TRUE(terminal.IsClean());
}

TEST(ProgressLibrary, HiddenRunsAndStrayCallsWriteNothing) {
  PseudoTerminal terminal([] {
    SetTerminalKind("xterm");
    {
      const Library once;  // loaded for one call
      once.Call("ExportedFunction", "ProgressControl2");
      once.Call("SetProgressBar2", 100, 10);
    }
    const Library library;
    library.Start(1);
    library.Call("SetScreenMessage", u"message");
    library.Call("ShowWarningMessage", u"warning\n");
    library.Call("SetProgressBar2", 100, 50);
    library.Call("SetMessageBoxSignalled", 1);
    library.Call("SetMessageBoxSignalled", 0);
    Sleep(500);
    library.Call("SetExitWindow");
    library.Call("SetScreenMessage", u"after the end");
    library.Call("ExportedFunction", "Create");
    return library.Call<int>("GetSolverAbortSignaled") + library.Call<int>("GetSuspendThreadStatus");
  });
  EXPECT_EQ(terminal.WaitForEnd(), 0);
  EXPECT_EQ(terminal.Output(), "");
}

// Two and a half seconds of a run whose messages change all the time.
int BusyRun() {
  const Library library;
  library.Start();
  for (int i = 1; i <= 125; ++i) {
    library.Call("SetScreenMessage",
                 (std::u16string(u"step ") + static_cast<char16_t>(u'0' + i % 10)).c_str());
    library.Call("SetProgressBar2", 125, i);
    Sleep(20);
  }
  library.Call("SetExitWindow");
  return 0;
}

TEST(ProgressLibrary, PlainLinesWhereThereIsNoTerminal) {
  const TempFolder folder;
  const std::string file = folder.Path("out");
  const auto start = std::chrono::steady_clock::now();
  PseudoTerminal redirected([&] {
    SetTerminalKind("xterm");
    const int out = ::open(file.c_str(), O_WRONLY | O_CREAT, 0600);
    ::dup2(out, STDOUT_FILENO);
    return BusyRun();
  });
  const auto dumb_terminal = [] {
    SetTerminalKind("dumb");
    return BusyRun();
  };
  PseudoTerminal dumb(dumb_terminal, 200, 20);
  ASSERT_EQ(redirected.WaitForEnd(), 0);
  ASSERT_EQ(dumb.WaitForEnd(), 0);
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  EXPECT_EQ(redirected.Output(), "");
  for (const std::string& text : {ReadText(file), dumb.Output()}) {
    EXPECT_THAT(text, Not(HasSubstr("\x1b")));
    EXPECT_THAT(text, HasSubstr("step "));
    EXPECT_THAT(text, HasSubstr("Solver, Study /studies/s1: 100 %, Nodes 125 / 125"));
    EXPECT_LE(static_cast<double>(std::ranges::count(text, '\n')),
              seconds.count() + 1);  // and the closing line
  }
}

}  // namespace
}  // namespace zentor::test
