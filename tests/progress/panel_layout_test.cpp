#include "progress/panel_layout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include "platform/text.h"
#include "progress/panel_text.h"
#include "progress/plain_lines.h"
#include "support/temp_folder.h"

namespace zentor::progress {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

ProgressState Running() {
  ProgressState state;
  state.title = U"Zentor Fatigue";
  state.study = U"/home/engineer/studies/bracket/bracket";
  state.elapsed = U"00:00:10";
  for (const char16_t* text : {u"Number of loadings: 10", u"Evaluating all nodes"}) AddMessage(state, text);
  SetProgress(state, 0, 0, 0);
  SetProgress(state, 1000, 250, 10);
  return state;
}

std::vector<std::string> Lines(const ProgressState& state, int columns, int rows, double now = 10) {
  std::vector<std::string> lines;
  for (const auto& line : LayOutPanel(state, PanelLabels(), {columns, rows, false}, now)) {
    lines.push_back(Utf8(line.text));
  }
  return lines;
}

std::string Text(const ProgressState& state, int columns, int rows) {
  std::string text;
  for (const auto& line : Lines(state, columns, rows)) text += line + '\n';
  return text;
}

TEST(PanelLayout, WholePanel) {
  ProgressState state = Running();
  SetWarnings(state, u"Node 7 has no curve\n");
  EXPECT_THAT(
      Lines(state, 60, 24),
      ElementsAre(" Zentor Fatigue                            Elapsed 00:00:10 ",
                  " Study  /home/engineer/studies/bracket/bracket", "", " Number of loadings: 10",
                  " Evaluating all nodes", "", " [############......................................]  25 %",
                  " Nodes 250 / 1000   Time left 00:00:30   Nodes/s 25", "",
                  " Warnings 1: Node 7 has no curve", "", " [p] suspend   [q] abort"));
}

TEST(PanelLayout, QuestionSuspensionAndEnd) {
  ProgressState state = Running();
  state.suspended = true;
  EXPECT_THAT(Text(state, 80, 24), HasSubstr(" Suspended\n [p] resume   [q] abort"));
  state.asking = true;
  EXPECT_THAT(
      Text(state, 50, 24),
      HasSubstr(" Abort the analysis? What has been written so far\n is kept.\n [y] Yes, abort   [n] No"));
  state.asking = false;
  state.aborting = true;
  EXPECT_THAT(Text(state, 80, 24), HasSubstr(" Ending the run ...\n"));
  EXPECT_THAT(Text(state, 80, 24), Not(HasSubstr("[p]")));
}

TEST(PanelLayout, RunWithoutCountHasNoBar) {
  ProgressState state;
  state.title = U"T";
  EXPECT_THAT(Text(state, 80, 24), Not(HasSubstr("%")));
  state.counters[static_cast<std::size_t>(Counter::kIteration)] = 3;
  state.step_size = 0.125F;
  EXPECT_THAT(Text(state, 80, 24), HasSubstr("\n Iteration 3   Step size 0.125\n"));
}

TEST(PanelLayout, FewRowsKeepWhatMattersMost) {
  ProgressState state = Running();
  EXPECT_THAT(Lines(state, 20, 1), ElementsAre("[###.........]  25 %"));
  EXPECT_THAT(Lines(state, 20, 4),
              ElementsAre("Zentor F... 00:00:10", HasSubstr("25 %"), "Nodes 250 / 1000", "[p] suspend"));
  state.asking = true;
  EXPECT_THAT(Lines(state, 70, 3),
              ElementsAre(HasSubstr("25 %"), HasSubstr("Abort the analysis?"), HasSubstr("[y] Yes")));
  EXPECT_THAT(Lines(state, 0, 0), ElementsAre());
}

// Labels of a language, read from the reviewed texts.
PanelLabels LabelsOf(const std::string& folder) {
  std::map<std::string, int> numbers;
  std::istringstream header(test::ReadText(std::string(ZENTOR_CATALOG) + "/anlmsg.h"));
  std::string word, name;
  for (int number = 0; header >> word;) {
    if (word == "#define" && header >> name >> number) numbers[name] = number;
  }
  std::vector<std::int32_t> start(13000), end(13000);
  std::vector<std::uint8_t> present(13000);
  std::u16string pool;
  std::istringstream texts(test::ReadText(folder + "/anlmsg.rc"));
  for (std::string line; std::getline(texts, line);) {
    std::istringstream(line) >> name;
    const auto found = numbers.find(name);
    const std::size_t quote = line.find('"');
    if (found == numbers.end() || quote == std::string::npos) continue;
    const auto at = static_cast<std::size_t>(found->second - 1);
    start[at] = static_cast<std::int32_t>(pool.size());
    pool += platform::ToWide(line.substr(quote + 1, line.rfind('"') - quote - 1));
    end[at] = static_cast<std::int32_t>(pool.size());
    present[at] = 1;
  }
  PanelLabels labels;
  labels.Load({start.data(), end.data(), pool.data(), present.data()});
  return labels;
}

std::vector<ProgressState> SampleStates() {
  std::vector<ProgressState> states = {ProgressState(), Running(), Running(), Running()};
  states[1].suspended = true;
  states[2].asking = true;
  states[2].lite_edition = true;
  SetWarnings(states[2], u"\u7BC0\u9EDE\u7BC0\u9EDE e\u0301\n");
  states[3].aborting = true;
  for (auto& counter : states[3].counters) counter = 2147483647;
  return states;
}

TEST(PanelLayout, FitsEveryTerminalInEveryLanguage) {
  for (const auto& folder : std::filesystem::directory_iterator(ZENTOR_CATALOG "/KtLang")) {
    const PanelLabels labels = LabelsOf(folder.path().string());
    for (const ProgressState& state : SampleStates()) {
      for (int columns = 2; columns <= 130; columns += columns < 45 ? 1 : 17) {
        for (const int rows : {1, 5, 40}) {
          const auto lines = LayOutPanel(state, labels, {columns, rows, true}, 10);
          ASSERT_LE(lines.size(), static_cast<std::size_t>(rows));
          for (const auto& line : lines) {
            ASSERT_LE(TextWidth(line.text), columns) << folder.path() << ' ' << Utf8(line.text);
          }
        }
      }
    }
  }
}

TEST(PanelLabels, NumbersThatAreEmptyOrDamagedKeepTheirEnglishText) {
  PanelLabels labels = LabelsOf(ZENTOR_CATALOG "/KtLang/German");
  EXPECT_EQ(labels[Label::kNo], U"Nein, fortsetzen");
  labels = PanelLabels();
  std::vector<std::int32_t> start(13000, 5), end(13000, 5);
  const std::vector<std::uint8_t> present(13000, 1);
  end[939] = 2;
  start[940] = -1;
  labels.Load({start.data(), end.data(), u"texts", present.data()});
  EXPECT_EQ(labels[Label::kStudy], U"Study");
  EXPECT_EQ(labels[Label::kNodes], U"Nodes");
}

TEST(PlainLines, AtMostOneASecondAndOnlyForNews) {
  ProgressState state = Running();
  PlainLines lines(0);
  const PanelLabels labels;
  std::vector<double> times;
  for (int tenth = 0; tenth <= 1500; ++tenth) {
    const double now = tenth / 10.0;
    if (tenth < 100) SetProgress(state, 1000, tenth, now);  // a per cent a second for ten seconds
    if (lines.Next(state, labels, now)) times.push_back(now);
  }
  ASSERT_GE(times.size(), 8U);
  EXPECT_GE(times.front(), 1);
  for (std::size_t i = 1; i < times.size(); ++i) EXPECT_GE(times[i] - times[i - 1], 1) << i;
  EXPECT_LE(times.size(), 12U) << "one a minute once nothing changes";
  EXPECT_GE(times.back(), 120) << "a sign of life";
}

TEST(PlainLines, Wording) {
  ProgressState state = Running();
  EXPECT_EQ(PlainLine(state, PanelLabels(), 10),
            "Evaluating all nodes: 25 %, Nodes 250 / 1000, Time left 00:00:30, Nodes/s 25, Elapsed 00:00:10");
  SetWarnings(state, u"w\n");
  SetProgress(state, 100, 100, 20);
  EXPECT_EQ(
      ClosingLine(state, PanelLabels(), 20),
      "Zentor Fatigue, Study /home/engineer/studies/bracket/bracket: 100 %, Nodes 1000 / 1000, Nodes/s 50, "
      "Elapsed 00:00:10, Warnings 1");
  EXPECT_EQ(PlainLine(ProgressState(), PanelLabels(), 0), "Elapsed 00:00:00");
}

}  // namespace
}  // namespace zentor::progress
