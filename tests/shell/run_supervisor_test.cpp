#include "shell/run_supervisor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <regex>
#include <tuple>

#include "platform/system.h"
#include "supervised_run.h"
#include "support/standard_streams.h"

namespace zentor {
namespace {

using platform::MessageParameters;
using platform::WindowMessage;
using test::Soon;
using test::StandardInput;
using test::SupervisedRun;

// Calls of a record without those that come at every tick of a timer.
std::string WithoutTicks(const std::string& calls) {
  return std::regex_replace(calls, std::regex("SetElapsedTime.*\n"), "");
}

TEST(Supervision, HostHoldsReleasesAndEndsTheSolver) {
  SupervisedRun run(test::kFullHost);
  const int exit_code = run.Run(run.Counting(), [&] {
    EXPECT_TRUE(run.Moves());
    EXPECT_EQ(run.supervisor.State(), RunState::kRunning);
    run.record.Answer(0, 1);
    EXPECT_TRUE(run.Stands());
    EXPECT_EQ(run.supervisor.State(), RunState::kHeldByHost);
    run.record.Answer(0, 0);
    EXPECT_TRUE(run.Moves()) << "many ticks have asked for one hold";
    EXPECT_EQ(run.supervisor.State(), RunState::kRunning);
    run.record.Answer(0, 1);
    EXPECT_TRUE(run.Stands());
    run.record.Answer(1, 1);  // an abort ends a run that is held
  });
  EXPECT_EQ(exit_code, 1);
  EXPECT_EQ(run.supervisor.State(), RunState::kAborting);
  EXPECT_EQ(run.Log().find('\n'), 8U) << "the elapsed time: " << run.Log();
  EXPECT_EQ(WithoutTicks(run.record.Calls()), "SetExitWindow\n");
}

TEST(Supervision, NoToAnAbortQuestionLetsTheRunGoOnAndYesEndsIt) {
  using Case = std::tuple<WindowMessage, MessageParameters, const char*, std::string>;
  for (const Case& c : {Case{WindowMessage::kKeyDown, {27, 0}, "Abort?", test::kFullHost},
                        Case{WindowMessage::kCommand, {0x1037A, 0}, "Abort now?", test::kFullHost},
                        Case{WindowMessage::kSetFont, {890, 0}, "Abort now?", ""}}) {
    const std::string& host = std::get<3>(c);
    SupervisedRun run(host);
    const StandardInput answers("\ny\n");  // an empty line, as Enter, goes on
    testing::internal::CaptureStdout();
    const int exit_code = run.Run(run.Counting(), [&] {
      run.window.Send(std::get<0>(c), std::get<1>(c));
      EXPECT_TRUE(run.Moves());
      EXPECT_EQ(run.supervisor.State(), RunState::kRunning);
      run.window.Post(std::get<0>(c), std::get<1>(c));
    });
    const std::string shown = testing::internal::GetCapturedStdout();
    EXPECT_EQ(exit_code, 1);
    EXPECT_NE(shown.find(std::get<2>(c)), std::string::npos);
    EXPECT_EQ(run.Log().find('\n'), 8U);
    if (host.empty()) continue;
    EXPECT_EQ(WithoutTicks(run.record.Calls()),
              "SetMessageBoxSignalled 1\nSetMessageBoxSignalled 0\nSetMessageBoxSignalled 1\n"
              "SetMessageBoxSignalled 0\nSetExitWindow\n");
  }
}

TEST(Supervision, TheSolverStandsWhileTheUserIsAskedAndTheTimeDoesNotCount) {
  SupervisedRun run("");
  run.shell.clock.StartAt(platform::SecondsSince1970() - 100);
  const StandardInput nobody("", true);  // the box waits two seconds for an answer
  testing::internal::CaptureStderr();
  const int exit_code = run.Run(run.Counting(), [&] {
    run.window.Post(WindowMessage::kKeyDown, {27, 0});
    EXPECT_TRUE(Soon([&] { return run.supervisor.State() == RunState::kAsking; }));
    EXPECT_TRUE(run.Stands());
    EXPECT_TRUE(run.Moves()) << "without an answer the run goes on";
    EXPECT_LE(run.shell.clock.Elapsed(), 101) << "of more than two seconds";
    run.window.Post(WindowMessage::kKeyDown, {27, 0});
    EXPECT_TRUE(Soon([&] { return run.supervisor.State() == RunState::kAsking; }));
    ::kill(::getpid(), SIGINT);  // closes the question with No and then aborts
  });
  EXPECT_EQ(exit_code, 1);
  testing::internal::GetCapturedStderr();
}

TEST(Supervision, TheHostsOwnQuestionTakesNoTimeHoldingDoes) {
  SupervisedRun run(test::kFullHost);
  run.shell.clock.StartAt(platform::SecondsSince1970() - 100);
  const auto hold = [&](int status) {
    run.record.Answer(0, status);
    EXPECT_TRUE(run.Stands());
    std::this_thread::sleep_for(std::chrono::milliseconds(2100));
  };
  EXPECT_EQ(run.Run(run.Counting(),
                    [&] {
                      hold(2);
                      EXPECT_LE(run.shell.clock.Elapsed(), 101);
                      run.record.Answer(0, 0);
                      EXPECT_TRUE(run.Moves());
                      hold(1);
                      EXPECT_GE(run.shell.clock.Elapsed(), 102);
                      hold(2);
                      run.record.Answer(1, 0);
                    }),
            1);
  EXPECT_THAT(run.Log(), testing::MatchesRegex("00:01:4[2-4]\n")) << "also when it ends the run";
}

TEST(Supervision, TheHostIsPolledWhileABoxIsOpen) {
  SupervisedRun run(test::kFullHost);
  const StandardInput nobody("", true);
  testing::internal::CaptureStderr();
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(run.Run(run.Counting(),
                    [&] {
                      run.window.Post(WindowMessage::kKeyDown, {27, 0});
                      EXPECT_TRUE(Soon([&] { return run.supervisor.State() == RunState::kAsking; }));
                      run.record.Answer(1, 0);
                    }),
            1);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2)) << "the box would wait longer";
  EXPECT_EQ(run.supervisor.State(), RunState::kAborting);
  EXPECT_EQ(run.Log().find('\n'), 8U);
  testing::internal::GetCapturedStderr();
}

TEST(Supervision, EndsOfARunGiveTheirExitCodeAndSummary) {
  using Case = std::tuple<int, WindowMessage, int, bool>;
  for (const auto& [run_mode, message, exit_code, summary] :
       {Case{0, WindowMessage::kClose, 1, true}, Case{1, WindowMessage::kClose, 1, true},
        Case{2, WindowMessage::kClose, 0, false}, Case{0, WindowMessage::kDestroy, 1, true},
        Case{7, WindowMessage::kDestroy, 0, false}, Case{0, WindowMessage::kUserMessage2, 1, false}}) {
    for (const std::string& folder : {test::kFullHost, test::kPartialHost, std::string()}) {
      SupervisedRun run(folder);
      run.services.SetRunMode(run_mode);
      const auto end = [&, close = message] {
        EXPECT_TRUE(run.Moves());
        run.window.Post(close);
      };
      EXPECT_EQ(run.Run(run.Counting(), end), exit_code);
      EXPECT_EQ(!run.Log().empty(), summary);
    }
  }
}

TEST(Supervision, TheSolversOwnEndsGiveTheirExitCodes) {
  using Work = void (*)(SupervisedRun&);
  using Case = std::tuple<Work, int, bool>;  // with the exit code and whether there is a summary
  static bool flushed;
  flushed = false;
  const Case cases[] = {
      {[](SupervisedRun& run) { run.services.SetFlushHook([] { flushed = true; }); }, 1, true},
      {[](SupervisedRun&) { StopStatement(); }, 0, false},
      {[](SupervisedRun& run) { BeepAndStop(run.services); }, 1, true},
      {[](SupervisedRun& run) { run.services.SetRunMode(5), StopWithMessage(run.services, 9001); }, 0,
       false}};
  for (const auto& [work, exit_code, summary] : cases) {
    SupervisedRun run(test::kFullHost);
    run.shell.hidden = true;
    testing::internal::CaptureStderr();
    EXPECT_EQ(run.Run([&, act = work] { act(run); }, [] {}), exit_code);
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(!run.Log().empty(), summary);
    EXPECT_EQ(run.record.Calls().find("SetExitWindow") != std::string::npos, summary);
  }
  EXPECT_TRUE(flushed) << "the solver's own end flushes its files first";
}

TEST(Supervision, ASolverThatDrawsOrAsksCanBeEndedAndWritesOneSummary) {
  const std::vector<std::function<void(SupervisedRun&)>> works = {
      [](SupervisedRun& run) { run.services.ScreenText("text", 4, 3, 10, 1, 0); },
      [](SupervisedRun& run) { run.services.ClearScreenArea(1, 1, 20, 70); },
      [](SupervisedRun& run) { run.services.ProgressBar(1, 2), PassGate(run.services); },
      [](SupervisedRun& run) { run.services.AskUserText("?", BoxStyle::kYesNo); },
  };
  for (const auto& work : works) {
    SupervisedRun run(test::kFullHost);
    const StandardInput nobody("", true);
    testing::internal::CaptureStderr();
    const auto start = std::chrono::steady_clock::now();
    const int exit_code = run.Run(
        [&] {
          for (;; ++run.count) work(run);
        },
        [&] {
          EXPECT_TRUE(Soon([&] { return run.count > 3 || run.supervisor.State() == RunState::kAsking; }));
          ::kill(::getpid(), SIGTERM);
        });
    EXPECT_EQ(exit_code, 1);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(kSolverEndLimit));
    testing::internal::GetCapturedStderr();
    const std::string log = run.Log();
    EXPECT_EQ(log.find('\n'), 8U) << log;
    run.services.EndOfRun();
    EXPECT_EQ(run.Log(), log);
  }
}

}  // namespace
}  // namespace zentor
