// The solver as a person sees it: runs in a terminal, with keys, boxes, signals and redirections.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "apps/long_study.h"
#include "support/pseudo_terminal.h"
#include "support/temp_folder.h"

namespace zentor::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;

constexpr int kEndOfRun = 1;
constexpr int kStopStatement = 0;

// Replaces this process by the solver. One thread, so that the run takes its time on any machine.
int RunSolver(const std::string& study, const char* option, const char* terminal = "xterm") {
  ::setenv("TERM", terminal, 1);
  ::setenv("LC_ALL", "C", 1);
  ::setenv("OMP_NUM_THREADS", "1", 1);
  ::unsetenv("NUMBER_OF_PROCESSORS");
  ::execl(ZENTOR_PROGRAM_DIRECTORY "/zentor-fatigue", "zentor-fatigue", "run", study.c_str(), option,
          nullptr);
  return 127;
}

// The terminal's owner runs the solver as a command shell does: in a process group of its own that has the
// terminal. When the job stops it takes the terminal back in its own modes; a key sends the job to the
// background, the next one to the foreground again. Until the job's end, whose exit code it returns.
int RunAsJob(const std::string& study) {
  termios own{};
  ::tcgetattr(STDIN_FILENO, &own);
  ::signal(SIGTTOU, SIG_IGN);
  const pid_t job = ::fork();
  if (job == 0) {
    ::setpgid(0, 0);
    ::tcsetpgrp(STDOUT_FILENO, ::getpgrp());
    ::signal(SIGTTOU, SIG_DFL);
    ::_exit(RunSolver(study, nullptr));
  }
  ::setpgid(job, job);
  ::tcsetpgrp(STDOUT_FILENO, job);
  int status = 0;
  while (::waitpid(job, &status, WUNTRACED) == job && WIFSTOPPED(status)) {
    ::tcsetpgrp(STDOUT_FILENO, ::getpgrp());
    ::tcsetattr(STDIN_FILENO, TCSANOW, &own);
    static_cast<void>(!::write(STDOUT_FILENO, "job stopped", 11));
    char key = 0;
    static_cast<void>(!::read(STDIN_FILENO, &key, 1));
    ::kill(job, SIGCONT);
    static_cast<void>(!::read(STDIN_FILENO, &key, 1));
    ::tcsetpgrp(STDOUT_FILENO, job);
  }
  return WEXITSTATUS(status);
}

// Processor time of a process and its threads, in clock ticks.
long TicksOf(pid_t pid) {
  std::string text = ReadText("/proc/" + std::to_string(pid) + "/stat");
  std::istringstream fields(text.substr(text.rfind(')') + 1));
  std::string skipped;
  for (int i = 3; i < 14; ++i) fields >> skipped;
  long user = 0, system = 0;
  fields >> user >> system;
  return user + system;
}

class TerminalRun : public testing::Test {
 protected:
  std::string Study() const { return folder_.Path("job"); }
  // In a terminal of 80 columns and 24 rows.
  PseudoTerminal& Start(const char* option = nullptr) {
    terminal_.emplace([study = Study(), option] { return RunSolver(study, option); });
    return *terminal_;
  }
  PseudoTerminal& StartLong() {
    WriteLongStudy(Study());
    return Start();
  }
  // Over soon, but not at once.
  void WriteShortStudy(int nodes, int above_curve_from = 1000000) {
    LongStudyOptions options;
    options.nodes = nodes;
    options.above_curve_from = above_curve_from;
    WriteLongStudy(Study(), options);
  }
  const TerminalScreen& Screen() const { return terminal_->Screen(); }
  bool WaitUntil(const std::function<bool()>& condition) { return terminal_->WaitUntil(condition); }

  // What has been written to the terminal, but for the sound at the end of a run.
  std::string Written() const {
    std::string text = terminal_->Output();
    std::erase(text, '\a');
    return text;
  }
  // Nodes done as the panel shows them; -1 without a count.
  int Count() const {
    const std::string text = Screen().Text();
    const std::size_t at = text.find("Nodes ");
    return at == std::string::npos ? -1 : std::atoi(text.c_str() + at + 6);
  }
  bool WaitForMore() {
    const int before = Count();
    return WaitUntil([&] { return Count() > before; });
  }
  std::string ShownElapsed() const {
    const std::string line = Screen().Line(0);
    return line.substr(std::min(line.size(), line.find("Elapsed")));
  }
  // Lets that many seconds of the panel pass.
  void WaitForSeconds(int seconds) {
    for (int i = 0; i < seconds; ++i) {
      const std::string before = ShownElapsed();
      EXPECT_TRUE(WaitUntil([&] { return ShownElapsed() != before; }));
    }
  }

  // The run was ended early: whole lines of whole nodes in the listing, and a summary.
  void ExpectCompleteFiles() const {
    const std::string listing = ReadText(Study() + ".FTG");
    ASSERT_THAT(listing, EndsWith("\n"));
    const std::size_t last = listing.rfind('\n', listing.size() - 2) + 1;
    EXPECT_THAT(listing.substr(last), MatchesRegex(" +[0-9]+ +[0-9]+\\.[0-9]{6}\n"));
    EXPECT_THAT(ReadText(Study() + ".LOG"), MatchesRegex("Highest node number: 40000.*: 00:00:[0-9]{2}\n"));
  }

  TempFolder folder_;
  std::optional<PseudoTerminal> terminal_;
};

TEST_F(TerminalRun, BarMovesAndSuspensionStopsTheSolver) {
  PseudoTerminal& terminal = StartLong();
  ASSERT_TRUE(terminal.WaitFor("Nodes/s")) << Screen().Text();
  EXPECT_THAT(Screen().Line(0), HasSubstr("Zentor Fatigue"));
  EXPECT_THAT(Screen().Line(1), HasSubstr("job"));
  ASSERT_TRUE(WaitForMore());

  terminal.Type("p");
  ASSERT_TRUE(terminal.WaitFor("Suspended"));
  WaitForSeconds(1);  // the solver comes to its gate
  const int held_at = Count();
  const long ticks = TicksOf(terminal.Pid());
  WaitForSeconds(1);
  EXPECT_LE(TicksOf(terminal.Pid()) - ticks, ::sysconf(_SC_CLK_TCK) / 8) << "of a second";
  EXPECT_EQ(Count(), held_at);

  terminal.Type("p");
  EXPECT_TRUE(WaitUntil([&] { return TicksOf(terminal.Pid()) - ticks > ::sysconf(_SC_CLK_TCK) / 4; }));
  EXPECT_TRUE(WaitForMore());
}

TEST_F(TerminalRun, EscapeAsksNoGoesOnYesEndsTheRun) {
  PseudoTerminal& terminal = StartLong();
  ASSERT_TRUE(terminal.WaitFor("Nodes/s"));
  terminal.Type("\x1b");
  ASSERT_TRUE(terminal.WaitFor("Abort the fatigue analysis?"));
  terminal.Type("n");
  ASSERT_TRUE(WaitUntil([&] { return !Screen().Shows("Abort the fatigue analysis?"); }));
  EXPECT_TRUE(WaitForMore());

  terminal.Type("p");  // a run that is held can be ended, too
  ASSERT_TRUE(terminal.WaitFor("Suspended"));
  terminal.Type("\x1b");
  ASSERT_TRUE(terminal.WaitFor("Abort the fatigue analysis?"));
  terminal.Type("y");
  EXPECT_EQ(terminal.WaitForEnd(), kEndOfRun);
  EXPECT_TRUE(terminal.IsClean());
  EXPECT_TRUE(Screen().Shows("Zentor Fatigue, Study ")) << Screen().Text();
  ExpectCompleteFiles();
}

TEST_F(TerminalRun, SizeIsFollowedAndInterruptEndsTheRun) {
  PseudoTerminal& terminal = StartLong();
  ASSERT_TRUE(terminal.WaitFor("Nodes/s"));
  terminal.Resize(29, 5);
  EXPECT_TRUE(WaitUntil([&] { return Screen().Line(4).starts_with("[p] suspend   [q] abort"); }))
      << Screen().Text();
  EXPECT_TRUE(Screen().Shows(" %\nNodes "));
  EXPECT_TRUE(WaitForMore());
  terminal.Resize(80, 24);
  EXPECT_TRUE(terminal.WaitFor("Warnings 0"));
  terminal.Type("\x03");  // Ctrl-C
  EXPECT_EQ(terminal.WaitForEnd(), kEndOfRun);
  EXPECT_TRUE(terminal.IsClean());
  ExpectCompleteFiles();
}

TEST_F(TerminalRun, RequestsToEndLeaveTheTerminalClean) {
  WriteLongStudy(Study());
  for (const int signal : {SIGTERM, SIGQUIT}) {
    PseudoTerminal& terminal = Start();
    ASSERT_TRUE(terminal.WaitFor("Nodes/s"));
    ::kill(terminal.Pid(), signal);
    ::kill(terminal.Pid(), signal);  // an impatient user
    EXPECT_EQ(terminal.WaitForEnd(), kEndOfRun);
    EXPECT_TRUE(terminal.IsClean());
  }
  EXPECT_EQ(std::ranges::count(ReadText(Study() + ".LOG"), '\n'), 2) << "one summary each";
}

TEST_F(TerminalRun, JobControlPutsTheTerminalInOrder) {
  for (const bool in_box : {false, true}) {
    WriteLongStudy(Study(), in_box ? LongStudyOptions{100, 2000, 1} : LongStudyOptions{});
    const char* const shown = in_box ? "[Y]es  [N]o" : "[p] suspend";
    terminal_.emplace([this] { return RunAsJob(Study()); });
    ASSERT_TRUE(terminal_->WaitFor(shown));
    terminal_->Type("\x1a");  // Ctrl-Z
    ASSERT_TRUE(terminal_->WaitFor("job stopped"));
    EXPECT_TRUE(terminal_->IsClean());
    terminal_->Type("\n");
    const std::size_t written = terminal_->Output().size();
    const auto shown_again = [&] { return terminal_->Output().find(shown, written) != std::string::npos; };
    EXPECT_FALSE(terminal_->WaitUntil(shown_again, 0.5)) << "in the background the terminal is another's";
    terminal_->Type("\n");
    ASSERT_TRUE(WaitUntil(shown_again));
    terminal_->Type(in_box ? "n" : "qy");
    EXPECT_EQ(terminal_->WaitForEnd(), in_box ? kStopStatement : kEndOfRun);
    EXPECT_TRUE(terminal_->IsClean());
  }
}

// The question comes from behind the panel, which makes room for it.
TEST_F(TerminalRun, QuestionIsAnsweredInTheTerminal) {
  WriteShortStudy(1200, 1000);
  for (const bool go_on : {true, false}) {
    PseudoTerminal& terminal = Start();
    // A fast machine may be at the question before the panel opens.
    ASSERT_TRUE(WaitUntil([&] { return Screen().Shows("Nodes/s") || Screen().Shows("[Y]es"); }));
    ASSERT_TRUE(terminal.WaitFor("[Y]es  [N]o")) << Screen().Text();
    EXPECT_FALSE(Screen().InAlternate());
    EXPECT_TRUE(Screen().Shows("associated S-N\ncurve.\n")) << "whole words";
    terminal.Type(go_on ? "qy" : "qn");  // the q is neither an answer nor the panel's
    EXPECT_EQ(terminal.WaitForEnd(), go_on ? kEndOfRun : kStopStatement);
    EXPECT_TRUE(terminal.IsClean());
    EXPECT_THAT(Screen().Text(), HasSubstr("Warnings 1"));
    const std::string listing = ReadText(Study() + ".FTG");
    EXPECT_EQ(listing.find("\n        1200 ") != std::string::npos, go_on);
    EXPECT_THAT(listing, HasSubstr("\n         999 "));
  }
}

TEST_F(TerminalRun, PlainLinesIntoAFileAndOnADumbTerminal) {
  WriteShortStudy(2000);
  const std::string file = folder_.Path("out");
  for (const bool dumb : {false, true}) {
    const auto start = std::chrono::steady_clock::now();
    terminal_.emplace([&] {
      const int out = dumb ? STDOUT_FILENO : ::open(file.c_str(), O_WRONLY | O_CREAT, 0600);
      ::dup2(out, STDOUT_FILENO);
      return RunSolver(Study(), nullptr, dumb ? "dumb" : "xterm");
    });
    EXPECT_EQ(terminal_->WaitForEnd(), kEndOfRun);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    const std::string text = dumb ? Written() : ReadText(file);
    EXPECT_THAT(text, Not(HasSubstr("\x1b")));
    EXPECT_THAT(text, MatchesRegex("(.|\n)*: 100 %, Nodes 2000 / 2000, Nodes/s [0-9]+, Elapsed "
                                   "00:00:[0-9]{2}\r?\n"));
    EXPECT_LE(static_cast<double>(std::ranges::count(text, '\n')), seconds.count() + 1) << text;
    if (!dumb) {
      EXPECT_THAT(Written(), IsEmpty());
    }
    EXPECT_TRUE(terminal_->IsClean());
  }
}

TEST_F(TerminalRun, SilentRunPrintsNothing) {
  for (const bool aborted : {true, false}) {
    WriteShortStudy(aborted ? 40000 : 600);
    PseudoTerminal& terminal = Start("-silent");
    if (aborted) {
      EXPECT_TRUE(WaitUntil([&] { return ReadText(Study() + ".FTG").find("\n     ") != std::string::npos; }));
      ::kill(terminal.Pid(), SIGTERM);
    }
    EXPECT_EQ(terminal.WaitForEnd(), kEndOfRun);
    EXPECT_THAT(terminal.Output(), IsEmpty()) << "not even a sound";
    EXPECT_EQ(ReadText(Study() + ".FTG").find("T O T A L   S O L U T I O N   T I M E") == std::string::npos,
              aborted);
  }
}

}  // namespace
}  // namespace zentor::test
