// What the services do to the progress library, the screen and the boxes.
#include "shell/shell_services.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>

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
      {[](ShellServices& s) { s.StepCounter(1, 20, 64, 3); }, "SetScreenData 3\n", ""},
  };
  for (const Case& c : cases) {
    for (const bool hidden : {false, true}) {
      SupervisedRun run(test::kFullHost);
      run.shell.hidden = hidden;
      run.shell.start_time += 60;  // before the start no time has passed, however slow the test
      c.call(run.services);
      EXPECT_EQ(run.record.Calls(), hidden ? c.hidden : c.shown);
    }
  }
}

TEST(Host, ALibraryThatComesLaterIsLoadedForOneCall) {
  const test::TempFolder folder;
  SupervisedRun run("");
  ProgressHost host(folder.Path() + "/");
  ASSERT_FALSE(host.Loaded());
  std::filesystem::copy(test::kFullHost + "libquorvel.so", folder.Path("libquorvel.so"));
  test::HostRecord record(folder.Path() + "/");
  ShellServices services(run.shell, host);
  services.ProgressBar(10, 2);
  services.StepCounter(1, 21, 65, 4);
  services.StepCounter(1, 20, 65, 5);
  services.ShowMessage(9001, kSeven, Severity::kInformation);
  services.ScreenText("abc", 3, 2, 1, 1, 0);
  EXPECT_EQ(record.Calls(),
            "ExportedFunction ProgressControl2\nSetProgressBar2 10 2\nSetNonLinearContactPoints "
            "4\nSetScreenData 4\n"
            "SetScreenData 5\nSetScreenMessage warned of 7\n");
}

TEST(Host, ADamagedLibraryIsAsNone) {
  const test::TempFolder folder;
  const std::string whole = test::ReadText(test::kFullHost + "libquorvel.so");
  for (const std::string& bytes :
       {std::string(),
        std::string("\x7F"
                    "ELF"),
        std::string(5000, '\x55'), whole.substr(0, 100), whole.substr(0, whole.size() / 3)}) {
    test::WriteText(folder.Path("libquorvel.so"), bytes);
    EXPECT_FALSE(ProgressHost(folder.Path() + "/").Loaded()) << bytes.size();
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
  struct Case {
    int style;
    const char* input;
    Answer answer;
  };
  for (const Case& c :
       {Case{1, "x\n", Answer::kOk}, Case{2, "", Answer::kOk}, Case{3, "c\n", Answer::kCancel},
        Case{4, "r\n", Answer::kRetry}, Case{5, "y\n", Answer::kYes}, Case{6, "n\n", Answer::kNo},
        Case{7, "", Answer::kOk}, Case{8, "y\n", Answer::kYes}, Case{15, "n\n", Answer::kNo},
        Case{16, "c\n", Answer::kCancel}, Case{23, "o\n", Answer::kOk}, Case{24, "c\n", Answer::kCancel},
        Case{33, "o\n", Answer::kOk}, Case{9, "n\n", Answer::kOk}}) {
    SupervisedRun run("");
    const StandardInput input(c.input);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_EQ(run.services.AskUser(9001, kSeven, static_cast<BoxStyle>(c.style)), c.answer) << c.style;
    const std::string shown = testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr();
    EXPECT_EQ(shown.find("Title") != std::string::npos, c.style != 9) << c.style;
    run.shell.hidden = true;
    testing::internal::CaptureStderr();
    EXPECT_EQ(run.services.AskUser(9001, kSeven, static_cast<BoxStyle>(c.style)), Answer::kOk) << "hidden";
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              c.style == 2 ? "zentor-fatigue: 9001: warned of 7\n" : "");
  }
}

TEST(Boxes, TextsOfTheSolverAreWarningsToo) {
  SupervisedRun run("");
  const StandardInput input("y\n");
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  EXPECT_EQ(run.services.AskUserText("why", BoxStyle::kYesNo), Answer::kYes);
  run.services.WarningBox("because", BoxStyle::kWarning);
  EXPECT_NE(testing::internal::GetCapturedStderr().find("(error)"), std::string::npos);
  testing::internal::GetCapturedStdout();
  EXPECT_EQ(run.shell.warnings.RecentText(), u"why\nbecause\n");
}

std::u16string RowText(const ConsoleScreen& screen, int row, int first, int count) {
  std::u16string text;
  for (int column = first; column < first + count; ++column) text.push_back(screen.Character(row, column));
  return text;
}

TEST(Counter, IsSevenCharactersWideAndColoured) {
  SupervisedRun run("");
  const ConsoleScreen& screen = *run.shell.screen;
  run.services.ScreenText("########", 8, 4, 10, 1, 0);
  run.services.StepCounter(2, 4, 10, 42);
  EXPECT_EQ(RowText(screen, 4, 10, 8), u"    42 #");
  EXPECT_EQ(screen.TextColour(4, 15), 3);
  run.services.StepCounter(4, 4, 10, 1234567);
  EXPECT_EQ(RowText(screen, 4, 10, 8), u"1234567#");
  EXPECT_EQ(screen.TextColour(4, 10), 7);
  run.services.StepCounter(1, 21, 65, 5);  // below the screen
  run.services.StepCounter(3, 20, 65, 5);  // cut off at its right edge
  EXPECT_EQ(RowText(screen, 20, 65, 6), u"     5");
  run.shell.hidden = true;
  run.services.ScreenText("text", 4, 3, 3, 1, 0);
  run.services.StepCounter(1, 3, 3, 4);
  EXPECT_EQ(RowText(screen, 3, 1, 12), std::u16string(12, u' ')) << "a hidden run draws nothing";
}

}  // namespace
}  // namespace zentor
