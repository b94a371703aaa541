#include "progress/panel_layout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/text.h"
#include "progress/panel_text.h"
#include "progress/plain_lines.h"

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
    lines.push_back(platform::ToUtf8(line.text));
  }
  return lines;
}

std::string Text(const ProgressState& state, int columns) {
  std::string text;
  for (const auto& line : Lines(state, columns, 24)) text += line + '\n';
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
  EXPECT_THAT(Text(state, 80), HasSubstr(" Suspended\n [p] resume   [q] abort"));
  state.asking = true;
  EXPECT_THAT(
      Text(state, 50),
      HasSubstr(" Abort the analysis? What has been written so far\n is kept.\n [y] Yes, abort   [n] No"));
  state.asking = false;
  state.aborting = true;
  EXPECT_THAT(Text(state, 80), HasSubstr(" Ending the run ...\n"));
  EXPECT_THAT(Text(state, 80), Not(HasSubstr("[p]")));
}

// A text for every message: `pool` from `start` to `end`.
PanelLabels LabelsFrom(const std::u16string& pool, const std::vector<std::int32_t>& start,
                       const std::vector<std::int32_t>& end) {
  const std::vector<std::uint8_t> present(start.size(), 1);
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

TEST(PanelLayout, FitsEveryTerminalWhateverTheLanguage) {
  for (const std::u16string text :
       {u"\u7BC0\u9EDE\u7BC0\u9EDE\u7BC0", u"Gr\u00F6\u00DFte Verformungsgeschwindigkeit (x)"}) {
    const auto length = static_cast<std::int32_t>(text.size());
    const PanelLabels labels =
        LabelsFrom(text, std::vector<std::int32_t>(13000), std::vector<std::int32_t>(13000, length));
    for (const ProgressState& state : SampleStates()) {
      for (int columns = 2; columns <= 130; columns += columns < 45 ? 1 : 17) {
        for (const int rows : {1, 5, 40}) {
          const auto lines = LayOutPanel(state, labels, {columns, rows, true}, 10);
          ASSERT_LE(lines.size(), static_cast<std::size_t>(rows));
          for (const auto& line : lines)
            ASSERT_LE(TextWidth(line.text), columns) << platform::ToUtf8(line.text);
        }
      }
    }
  }
}

TEST(PanelLabels, NumbersThatAreEmptyOrDamagedKeepTheirEnglishText) {
  std::vector<std::int32_t> start(13000, 1), end(13000, 5);
  end[939] = 1;
  start[940] = -1;
  const PanelLabels labels = LabelsFrom(u"texts", start, end);
  EXPECT_EQ(labels[Label::kStudy], U"Study");
  EXPECT_EQ(labels[Label::kNodes], U"Nodes");
  EXPECT_EQ(labels[Label::kNo], U"exts");
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
  ASSERT_GE(times.front(), 1);
  for (std::size_t i = 1; i < times.size(); ++i) EXPECT_GE(times[i] - times[i - 1], 1) << i;
  EXPECT_LE(times.size(), 12U) << "one a minute once nothing changes";
  EXPECT_GE(times.back(), 120) << "a sign of life";
}

}  // namespace
}  // namespace zentor::progress
