#include "progress/panel_layout.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "progress/panel_text.h"

namespace zentor::progress {
namespace {

constexpr int kLongestBar = 60;
constexpr int kShortestBar = 5;
constexpr int kMarginFrom = 30;  // columns from which lines keep clear of the edges
constexpr int kShortPath = 8;    // columns that a study name needs beside its label
constexpr std::u32string_view kGap = U"   ";

// What is left out first when rows are short: the highest.
enum Rank {
  kBar,
  kQuestion,
  kKeys,
  kFigures,
  kTitle,
  kPhase,
  kWarnings,
  kCounterLine,
  kStudy,
  kOlder,
  kBlank
};

struct RankedLine {
  PanelLine line;
  int rank;
};

std::u32string Number(double value) {
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), value < 10 ? "%.1f" : "%.0f", value);
  return PrintableUtf8(text.data());
}

std::u32string Number(int value) { return PrintableUtf8(std::to_string(value)); }

// The parts that fit beside each other; a part that does not fit, and those behind it, are left out.
std::u32string Join(const std::vector<std::u32string>& parts, int width) {
  std::u32string out;
  for (const auto& part : parts) {
    if (out.empty()) {
      out = CutEnd(part, width);
    } else if (TextWidth(out) + static_cast<int>(kGap.size()) + TextWidth(part) <= width) {
      out.append(kGap).append(part);
    } else {
      break;
    }
  }
  return out;
}

class Layout {
 public:
  Layout(const ProgressState& state, const PanelLabels& labels, const PanelSize& size, double now)
      : state_(state), labels_(labels), size_(size), now_(now) {
    margin_ = size.columns >= kMarginFrom ? 1 : 0;
    width_ = std::max(0, size.columns - 2 * margin_);
  }

  std::vector<PanelLine> Lines() {
    AddHead();
    AddMessages();
    AddProgress();
    AddWarnings();
    AddFoot();
    return Chosen();
  }

 private:
  void Add(std::u32string text, LineStyle style, int rank) {
    text.insert(0, static_cast<std::size_t>(margin_), U' ');
    lines_.push_back({{std::move(text), style}, rank});
  }
  void AddBlank() { lines_.push_back({{}, kBlank}); }

  // The title at the left and the elapsed time at the right, over the whole width.
  void AddHead() {
    std::u32string title = state_.title;
    if (state_.lite_edition) title.append(U" Lite");
    std::u32string right = labels_[Label::kElapsed] + U' ' + ElapsedText(state_, now_);
    if (TextWidth(right) + kShortPath > width_) right = ElapsedText(state_, now_);
    if (TextWidth(right) + kShortPath > width_) right.clear();
    const int room = width_ - TextWidth(right);
    std::u32string line = right.empty() ? Pad(title, room) : Pad(title, room - 1) + U' ' + right;
    line.append(static_cast<std::size_t>(margin_), U' ');
    Add(std::move(line), LineStyle::kTitle, kTitle);
    if (state_.study.empty()) return;
    std::u32string label = labels_[Label::kStudy] + U"  ";
    if (TextWidth(label) + kShortPath > width_) label.clear();
    Add(label + CutMiddle(state_.study, width_ - TextWidth(label)), LineStyle::kPlain, kStudy);
  }

  void AddMessages() {
    if (state_.messages.empty()) return;
    AddBlank();
    const std::size_t last = state_.messages.size() - 1;
    for (std::size_t i = 0; i < last; ++i) {
      Add(CutEnd(state_.messages[i], width_), LineStyle::kFaint, kOlder);
    }
    Add(CutEnd(state_.messages[last], width_), LineStyle::kStrong, kPhase);
  }

  void AddProgress() {
    const std::u32string counters = Join(Counters(), width_);
    const auto per_cent = PerCent(state_);
    if (!counters.empty() || per_cent) AddBlank();
    if (!counters.empty()) Add(counters, LineStyle::kPlain, kCounterLine);
    if (!per_cent) return;
    Add(Bar(*per_cent), LineStyle::kStrong, kBar);
    const std::u32string figures = Join(ProgressFigures(state_, labels_, now_, state_.finished), width_);
    if (!figures.empty()) Add(figures, LineStyle::kPlain, kFigures);
  }

  std::vector<std::u32string> Counters() const {
    constexpr std::array<Label, kCounters> kNames = {Label::kStep, Label::kIteration, Label::kContactPoints,
                                                     Label::kContactIteration};
    std::vector<std::u32string> parts;
    for (std::size_t i = 0; i < kCounters; ++i) {
      if (state_.counters[i]) parts.push_back(labels_[kNames[i]] + U' ' + Number(*state_.counters[i]));
    }
    if (state_.step_size) {
      std::array<char, 40> text{};
      std::snprintf(text.data(), text.size(), "%g", static_cast<double>(*state_.step_size));
      parts.push_back(labels_[Label::kStepSize] + U' ' + PrintableUtf8(text.data()));
    }
    return parts;
  }

  std::u32string Bar(int per_cent) const {
    const std::u32string figure = Pad(U"", per_cent < 10    ? 3
                                           : per_cent < 100 ? 2
                                                            : 1) +
                                  Number(per_cent) + U" %";
    const int cells = std::min(kLongestBar, width_ - 2 - TextWidth(figure));
    if (cells < kShortestBar) return CutEnd(Number(per_cent) + U" %", width_);
    const auto full = static_cast<std::size_t>(cells * per_cent / 100);
    const std::u32string done(full, size_.block_characters ? U'\u2588' : U'#');
    const std::u32string open(static_cast<std::size_t>(cells) - full,
                              size_.block_characters ? U'\u2591' : U'.');
    return U"[" + done + open + U"]" + figure;
  }

  void AddWarnings() {
    AddBlank();
    std::u32string text = labels_[Label::kWarnings] + U' ' + Number(state_.warnings);
    if (state_.warnings > 0) text.append(U": ").append(state_.latest_warning);
    Add(CutEnd(text, width_), state_.warnings > 0 ? LineStyle::kWarning : LineStyle::kPlain, kWarnings);
  }

  void AddFoot() {
    AddBlank();
    if (state_.aborting) {
      Add(CutEnd(labels_[Label::kEnding] + U" ...", width_), LineStyle::kQuestion, kQuestion);
    } else if (state_.asking) {
      for (auto& line : Wrap(labels_[Label::kAskAbort], width_)) {
        Add(std::move(line), LineStyle::kQuestion, kQuestion);
      }
      const auto& [yes, no] = labels_.YesNo();
      AddKeys({KeyText(yes) + labels_[Label::kYes], KeyText(no) + labels_[Label::kNo]});
    } else {
      if (state_.suspended) Add(CutEnd(labels_[Label::kSuspended], width_), LineStyle::kQuestion, kQuestion);
      const auto& [suspend, abort] = labels_.SuspendAbort();
      AddKeys({KeyText(suspend) + labels_[state_.suspended ? Label::kResume : Label::kSuspend],
               KeyText(abort) + labels_[Label::kAbort]});
    }
  }

  static std::u32string KeyText(const platform::AnswerLabel& label) {
    return std::u32string(U"[") + label.key + U"] ";
  }
  void AddKeys(const std::vector<std::u32string>& keys) { Add(Join(keys, width_), LineStyle::kPlain, kKeys); }

  std::vector<PanelLine> Chosen() {
    while (lines_.size() > static_cast<std::size_t>(std::max(0, size_.rows))) {
      lines_.erase(
          std::max_element(lines_.begin(), lines_.end(),
                           [](const RankedLine& a, const RankedLine& b) { return a.rank < b.rank; }));
    }
    std::vector<PanelLine> out;
    for (auto& ranked : lines_) out.push_back(std::move(ranked.line));
    return out;
  }

  const ProgressState& state_;
  const PanelLabels& labels_;
  const PanelSize& size_;
  double now_;
  int margin_ = 0;
  int width_ = 0;  // between the margins
  std::vector<RankedLine> lines_;
};

}  // namespace

std::vector<PanelLine> LayOutPanel(const ProgressState& state, const PanelLabels& labels,
                                   const PanelSize& size, double now) {
  return Layout(state, labels, size, now).Lines();
}

std::vector<std::u32string> ProgressFigures(const ProgressState& state, const PanelLabels& labels, double now,
                                            bool over) {
  std::vector<std::u32string> figures;
  if (state.total == 0) return figures;
  figures.push_back(labels[Label::kNodes] + U' ' + Number(state.count) + U" / " + Number(state.total));
  const auto left = state.rate.SecondsLeft(state.total, state.clock.At(now));
  if (left && !over) figures.push_back(labels[Label::kTimeLeft] + U' ' + ClockText(*left));
  const auto rate = over ? state.rate.AveragePerSecond() : state.rate.PerSecond();
  if (rate) figures.push_back(labels[Label::kNodesPerSecond] + U' ' + Number(*rate));
  return figures;
}

}  // namespace zentor::progress
