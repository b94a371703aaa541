#include "progress/plain_lines.h"

#include "platform/text.h"
#include "progress/panel_layout.h"
#include "progress/panel_text.h"

namespace zentor::progress {
namespace {

constexpr double kShortestInterval = 1.0;
constexpr double kLongestInterval = 60.0;

// Changes with everything of a line that is no time.
std::string Content(const ProgressState& state) {
  const auto per_cent = PerCent(state);
  return std::to_string(per_cent.value_or(-1)) + ' ' + std::to_string(state.warnings) + ' ' +
         (state.messages.empty() ? "" : platform::ToUtf8(state.messages.back()));
}

// The head and what is known of the run behind it.
std::string Line(std::u32string line, const ProgressState& state, const PanelLabels& labels, double now,
                 bool over) {
  if (line.ends_with(U'.') || line.ends_with(U'\u3002')) line.pop_back();  // of a sentence
  std::u32string separator = line.empty() ? U"" : U": ";
  const auto add = [&](const std::u32string& part) {
    line.append(separator).append(part);
    separator = U", ";
  };
  if (const auto per_cent = PerCent(state)) add(PrintableUtf8(std::to_string(*per_cent)) + U" %");
  for (const auto& figure : ProgressFigures(state, labels, now, over)) add(figure);
  add(labels[Label::kElapsed] + U' ' + ElapsedText(state, now));
  if (state.warnings > 0) {
    // In the end with what the newest says: nothing else shows it here.
    const std::u32string text = over ? U" (" + state.latest_warning + U")" : U"";
    add(labels[Label::kWarnings] + U' ' + PrintableUtf8(std::to_string(state.warnings)) + text);
  }
  return platform::ToUtf8(line);
}

}  // namespace

std::string PlainLine(const ProgressState& state, const PanelLabels& labels, double now) {
  return Line(state.messages.empty() ? state.title : state.messages.back(), state, labels, now,
              state.finished);
}

std::string ClosingLine(const ProgressState& state, const PanelLabels& labels, double now) {
  std::u32string head = state.title;
  if (!state.study.empty()) {
    head.append(head.empty() ? U"" : U", ").append(labels[Label::kStudy] + U' ' + state.study);
  }
  return Line(head, state, labels, now, true);
}

std::optional<std::string> PlainLines::Next(const ProgressState& state, const PanelLabels& labels,
                                            double now) {
  if (now - last_time_ < kShortestInterval) return std::nullopt;
  std::string content = Content(state);
  if (content == last_content_ && now - last_time_ < kLongestInterval) return std::nullopt;
  last_time_ = now;
  last_content_ = std::move(content);
  return PlainLine(state, labels, now);
}

}  // namespace zentor::progress
