// The solver as a person sees it: runs in a terminal, with keys, boxes, signals and redirections.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <string>
#include <utility>

#include "authoring/study_writer.h"
#include "support/pseudo_terminal.h"
#include "support/temp_folder.h"

namespace zentor::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

constexpr int kEndOfRun = 1;
constexpr int kStopStatement = 0;

// Counted anew at every node: half a millisecond each, and not much more in a build for debugging.
#ifdef NDEBUG
constexpr int kHistoryPoints = 30000;
#else
constexpr int kHistoryPoints = 4000;
#endif

// All nodes of plane elements that share no node, one stored stress case under one load history. From one
// node on the stress lies above the S-N curve, so that the run asks whether to go on.
void WriteLongStudy(const std::string& base, int nodes = 40000, int points = kHistoryPoints,
                    int above_curve_from = 1000000, int language = 0) {
  StudyDefinition study;
  study.title = "long run";
  study.options.language = language;
  study.options.load_amplitude_type = 1;
  study.options.alternating_stress_type = 1;
  StressField field;
  for (int n = 1; n <= nodes; ++n) {
    study.model.nodes.push_back({n, {static_cast<float>(n), 0.0F, 0.0F}, 0});
    study.model.element_nodes.push_back(n);
    const float stress = n < above_curve_from ? 90.0F : 900.0F;  // the curve begins at 400
    field.values.insert(field.values.end(), {stress, 20.0F, 0.0F, 5.0F, 0.0F, 0.0F});
  }
  for (int e = 0; e < nodes / 4; ++e) {
    study.model.elements.push_back({e + 1, 42, 1, 1, 4, static_cast<std::uint32_t>(4 * e)});
  }
  study.model.groups = {{1, 42}};
  study.stress_cases.push_back({"a", 1, {std::move(field)}, {}});
  AuthoredHistory history{1, {}, {}};
  for (int i = 0; i < points; ++i) {
    history.times.push_back(static_cast<float>(i));
    history.values.push_back(static_cast<float>(std::sin(2.1 * i) * std::cos(0.013 * i)));
  }
  study.histories.push_back(std::move(history));
  AuthoredEvent event{1, 1, {{1, 1, 1, 1.0F}}};
  event.history = 1;
  study.events.push_back(std::move(event));
  study.sn_curves.push_back({1, -1.0F, 0, {{1e3F, 400.0F}, {1e7F, 10.0F}}});
  WriteStudy(study, base, platform::NativeFileSystem());
}

// Replaces this process by the solver. One thread, so that the run takes its time on any machine.
int RunSolver(const std::string& study, const char* terminal = "xterm", const char* option = nullptr) {
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
    ::_exit(RunSolver(study));
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

// Processor time of a process and its threads in seconds.
double ProcessorTime(pid_t pid) {
  clockid_t clock{};
  timespec time{};
  ::clock_getcpuclockid(pid, &clock);
  ::clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

class TerminalRun : public testing::Test {
 protected:
  std::string Study() const { return folder_.Path("job"); }
  // In a terminal of 80 columns and 24 rows.
  PseudoTerminal& Start() {
    terminal_.emplace([study = Study()] { return RunSolver(study); });
    return *terminal_;
  }
  PseudoTerminal& StartLong() {
    WriteLongStudy(Study());
    return Start();
  }
  const TerminalScreen& Screen() const { return terminal_->Screen(); }
  bool WaitUntil(const std::function<bool()>& condition, double seconds = kPatience) {
    return terminal_->WaitUntil(condition, seconds);
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
  // The solver comes to its gate, and nothing uses the processor any more.
  EXPECT_TRUE(WaitUntil([&] {
    const double before = ProcessorTime(terminal.Pid());
    WaitUntil([] { return false; }, 1.0);
    return ProcessorTime(terminal.Pid()) - before < 0.125;
  }));
  const int held_at = Count();
  WaitUntil([] { return false; }, 0.5);
  EXPECT_EQ(Count(), held_at);

  terminal.Type("p");
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

TEST_F(TerminalRun, ARussianKeyboardWillDo) {
  constexpr int kRussian = 6;
  WriteLongStudy(Study(), 40000, kHistoryPoints, 1000000, kRussian);
  PseudoTerminal& terminal = Start();
  ASSERT_TRUE(terminal.WaitFor("[q] прервать"));
  for (const auto& [answer, next] : {std::pair("н", "[q] прервать"), {"д", "Zentor Fatigue, Задача "}}) {
    terminal.Type("й");  // the key of the q
    ASSERT_TRUE(terminal.WaitFor("[д] Да, прервать   [н] Нет, продолжить"));
    terminal.Type(answer);
    EXPECT_TRUE(terminal.WaitFor(next)) << Screen().Text();
  }
  EXPECT_EQ(terminal.WaitForEnd(), kEndOfRun);
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
  terminal.Type("\x03\x03");  // Ctrl-C of an impatient user
  EXPECT_EQ(terminal.WaitForEnd(), kEndOfRun);
  EXPECT_TRUE(terminal.IsClean());
  ExpectCompleteFiles();
}

TEST_F(TerminalRun, JobControlPutsTheTerminalInOrder) {
  for (const bool in_box : {false, true}) {
    WriteLongStudy(Study(), in_box ? 100 : 40000, kHistoryPoints, in_box ? 1 : 1000000);
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
  WriteLongStudy(Study(), 1200, kHistoryPoints, 1000);
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
  WriteLongStudy(Study(), 2000);
  const std::string file = folder_.Path("out");
  for (const bool dumb : {false, true}) {
    terminal_.emplace([&] {
      const int out = dumb ? STDOUT_FILENO : ::open(file.c_str(), O_WRONLY | O_CREAT, 0600);
      ::dup2(out, STDOUT_FILENO);
      return RunSolver(Study(), dumb ? "dumb" : "xterm");
    });
    EXPECT_EQ(terminal_->WaitForEnd(), kEndOfRun);
    std::string text = dumb ? terminal_->Output() : ReadText(file);
    std::erase(text, '\a');
    EXPECT_THAT(text, Not(HasSubstr("\x1b")));
    EXPECT_THAT(text, MatchesRegex("(.|\n)*: 100 %, Nodes 2000 / 2000, Nodes/s [0-9]+, Elapsed "
                                   "00:00:[0-9]{2}\r?\n"));
    if (!dumb) {
      EXPECT_THAT(terminal_->Output(), MatchesRegex("\a*")) << "nothing but the sound at the end";
    }
    EXPECT_TRUE(terminal_->IsClean());
  }
}

// Without a panel the shell itself takes the keys, and asks where the user sees it.
TEST_F(TerminalRun, EscapeAsksWithoutAPanelToo) {
  WriteLongStudy(Study());
  for (const bool dumb : {true, false}) {
    terminal_.emplace([&] {
      if (!dumb) ::dup2(::open("/dev/null", O_WRONLY), STDOUT_FILENO);
      return RunSolver(Study(), dumb ? "dumb" : "xterm");
    });
    ASSERT_TRUE(WaitUntil([&] { return ReadText(Study() + ".FTG").find("\n     ") != std::string::npos; }));
    for (const char* answer : {"\r", "y"}) {
      const std::size_t written = terminal_->Output().size();
      terminal_->Type("\x1b");
      ASSERT_TRUE(WaitUntil([&] {
        return terminal_->Output().find("[Y]es  [N]o  (Enter: No, Esc: No) ", written) != std::string::npos;
      })) << terminal_->Output();
      terminal_->Type(answer);
    }
    EXPECT_EQ(terminal_->WaitForEnd(), kEndOfRun);
    EXPECT_TRUE(terminal_->IsClean());
  }
}

TEST_F(TerminalRun, SilentRunPrintsNothing) {
  for (const bool terminated : {true, false}) {
    WriteLongStudy(Study(), terminated ? 40000 : 600);
    terminal_.emplace([study = Study()] { return RunSolver(study, "xterm", "-silent"); });
    if (terminated) {
      ASSERT_TRUE(WaitUntil([&] { return ReadText(Study() + ".FTG").find("\n     ") != std::string::npos; }));
      ::kill(terminal_->Pid(), SIGTERM);
    }
    EXPECT_EQ(terminal_->WaitForEnd(), kEndOfRun);
    EXPECT_THAT(terminal_->Output(), MatchesRegex("\a+")) << "nothing but the sound at the end";
    EXPECT_EQ(ReadText(Study() + ".FTG").find("T O T A L   S O L U T I O N   T I M E") == std::string::npos,
              terminated);
  }
}

}  // namespace
}  // namespace zentor::test
