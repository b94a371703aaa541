// What the services do to the progress library, the screen and the boxes.
#include "shell/shell_services.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <tuple>

#include "platform/system.h"
#include "supervised_run.h"
#include "support/standard_streams.h"

namespace zentor {
namespace {

using test::StandardInput;
using test::SupervisedRun;

TEST(Host, StartUpCallsComeInOrder) {
  SupervisedRun run(test::kFullHost);
  run.shell.edition = 5;
  run.host.Attach(run.shell, u"Title", run.window.Handle());
  const std::string& study = run.study;
  EXPECT_EQ(run.record.Calls(),
            "SetSolverType Title\nLoadZentorString Title 1\nSetWindowHandle 1\nSetSolverDirectory " + study +
                "\nSetZentorLiteSignalled 1\nShowWindowHidden 0\nExportedFunction Create\n"
                "ExportedFunction ProgressControl1\nExportedFunction ProgressControl2\n"
                "SetWindowCaption " +
                study + "\n");
}

constexpr std::array<float, 1> kSeven = {7.0F};

TEST(Host, ServicesReachItInAShownAndInAHiddenRun) {
  struct Case {
    void (*call)(ShellServices&);
    std::string shown, hidden;
  };
  const std::string bar = "SetProgressBar2 100 7\n";
  const std::string warned = "SetElapsedTime 00:00:00\nShowWarningMessage warned of 7|\n";
  const Case cases[] = {
      {[](ShellServices& s) { s.ProgressBar(100, 7); }, bar, bar},
      {[](ShellServices& s) { s.ScreenText("abcdef", 3, 2, 1, 1, 0); }, "SetScreenData1 0 abc\n", ""},
      {[](ShellServices& s) { s.ShowMessage(9001, kSeven, Severity::kInformation); },
       "SetScreenMessage warned of 7\n", ""},
      {[](ShellServices& s) { s.ShowMessage(9001, kSeven, Severity::kWarning); },
       warned + "SetScreenMessage warned of 7\n", warned},
      {[](ShellServices& s) { s.ShowMessage(10097, kSeven, Severity::kInformation); },
       "SetNonLinearStepSize 7\n", ""},
      {[](ShellServices& s) { s.StepCounter(1, 20, 65, 3); },
       "SetNonLinearIterationNumber 3\nSetScreenData 3\n", ""},
      {[](ShellServices& s) { s.StepCounter(1, 21, 65, 3); },
       "SetNonLinearContactPoints 3\nSetScreenData 3\n", ""},
      {[](ShellServices& s) { s.StepCounter(1, 22, 65, 3); },
       "SetNonLinearContactIterationNumber 3\nSetScreenData 3\n", ""},
  };
  for (const Case& c : cases) {
    for (const bool hidden : {false, true}) {
      SupervisedRun run(test::kFullHost);
      run.shell.hidden = hidden;
      run.shell.clock.Stop();  // however slow the test
      c.call(run.services);
      EXPECT_EQ(run.record.Calls(), hidden ? c.hidden : c.shown);
    }
  }
}

TEST(Host, ALibraryThatComesLaterIsLoadedForOneCall) {
  const test::TempFolder folder;
  SupervisedRun run("");
  ProgressHost host(folder.Path() + "/");
  host.Load();
  ASSERT_FALSE(host.Loaded());
  std::filesystem::copy(test::kFullHost + "libquorvel.so", folder.Path("libquorvel.so"));
  test::HostRecord record(folder.Path() + "/");
  ShellServices services(run.shell, host);
  services.ProgressBar(10, 2);
  services.StepCounter(1, 21, 65, 4);
  services.ShowMessage(9001, kSeven, Severity::kInformation);
  EXPECT_EQ(record.Calls(),
            "ExportedFunction ProgressControl2\nSetProgressBar2 10 2\nSetNonLinearContactPoints 4\n"
            "SetScreenData 4\nSetScreenMessage warned of 7\n");
}

TEST(Host, ADamagedLibraryIsAsNone) {
  const test::TempFolder folder;
  const std::string whole = test::ReadText(test::kFullHost + "libquorvel.so");
  for (const std::string& bytes :
       {std::string(), std::string(5000, '\x55'), whole.substr(0, 100), whole.substr(0, whole.size() / 3)}) {
    test::WriteText(folder.Path("libquorvel.so"), bytes);
    ProgressHost host(folder.Path() + "/");
    host.Load();
    EXPECT_FALSE(host.Loaded()) << bytes.size();
  }
}

TEST(Host, StepTextIsKeptWhenItAsksAndNamesTheStepOfAWarning) {
  SupervisedRun run(test::kFullHost);
  run.services.StepCounter(1, 5, 5, 41);
  run.services.ShowMessage(9001, kSeven, Severity::kWarning);
  run.record.Answer(0, 0, 1);
  run.services.StepCounter(1, 5, 5, 42);
  run.services.ShowMessage(9001, kSeven, Severity::kWarning);
  const std::string log = platform::ToUtf8(run.shell.warnings.LogText());
  EXPECT_TRUE(log.starts_with("+00:00:0")) << log;
  EXPECT_NE(log.find("+warned of 7\n42+00:00:0"), std::string::npos) << log;
}

TEST(Boxes, StylesOfferTheirButtonsAndMapTheAnswer) {
  using Case = std::tuple<int, const char*, Answer>;
  for (const auto& [style, line, answer] :
       {Case{1, "x\n", Answer::kOk}, Case{2, "", Answer::kOk}, Case{3, "c\n", Answer::kCancel},
        Case{4, "r\n", Answer::kRetry}, Case{5, "y\n", Answer::kYes}, Case{6, "n\n", Answer::kNo},
        Case{8, "y\n", Answer::kYes}, Case{24, "c\n", Answer::kCancel}, Case{33, "o\n", Answer::kOk},
        Case{9, "n\n", Answer::kOk}}) {
    SupervisedRun run("");
    const StandardInput input(line);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_EQ(run.services.AskUser(9001, kSeven, static_cast<BoxStyle>(style)), answer) << style;
    const std::string shown = testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr();
    EXPECT_EQ(shown.find("Title") != std::string::npos, style != 9) << style;
    run.shell.hidden = true;
    testing::internal::CaptureStderr();
    EXPECT_EQ(run.services.AskUser(9001, kSeven, static_cast<BoxStyle>(style)), Answer::kOk) << "hidden";
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              style == 2 ? "zentor-fatigue: 9001: warned of 7\n" : "");
  }
}

}  // namespace
}  // namespace zentor
