#include "platform/box_text.h"

#include <algorithm>

#include "platform/text.h"
#include "platform/text_columns.h"

namespace zentor::platform {
namespace {

// Texts hold names from files.
std::u32string Shown(std::u16string_view wide) {
  std::string text = ToUtf8(wide);
  std::erase(text, '\r');
  return Characters(ToWide(Printable(text, "\n")));
}

// The lines of the text, broken where the terminal ends, each with its line feed.
std::u32string Wrapped(std::u32string_view text, int columns) {
  std::u32string out;
  for (;;) {
    const std::size_t end = std::min(text.find(U'\n'), text.size());
    const auto lines = Wrap(text.substr(0, end), columns);
    for (const std::u32string& line : lines) out.append(line).push_back(U'\n');
    if (lines.empty()) out.push_back(U'\n');
    if (end == text.size()) return out;
    text.remove_prefix(end + 1);
  }
}

std::u16string_view IconWord(BoxIcon icon, const BoxWords& words) {
  if (icon == BoxIcon::kError) return words.error;
  if (icon == BoxIcon::kWarning) return words.warning;
  return {};
}

// In the order in which they are shown.
std::vector<BoxButton> ButtonsOf(BoxButtons buttons) {
  switch (buttons) {
    case BoxButtons::kOk:
      return {BoxButton::kOk};
    case BoxButtons::kOkCancel:
      return {BoxButton::kOk, BoxButton::kCancel};
    case BoxButtons::kRetryCancel:
      return {BoxButton::kRetry, BoxButton::kCancel};
    case BoxButtons::kYesNo:
      return {BoxButton::kYes, BoxButton::kNo};
    case BoxButtons::kYesNoCancel:
      return {BoxButton::kYes, BoxButton::kNo, BoxButton::kCancel};
  }
  return {BoxButton::kOk};
}

AnswerLabel LabelOfButton(BoxButton button, const BoxWords& words) {
  switch (button) {
    case BoxButton::kCancel:
      return LabelOf(Characters(words.cancel), U'c');
    case BoxButton::kNo:
      return LabelOf(Characters(words.no), U'n');
    case BoxButton::kRetry:
      return LabelOf(Characters(words.retry), U'r');
    case BoxButton::kYes:
      return LabelOf(Characters(words.yes), U'y');
    case BoxButton::kOk:
    case BoxButton::kAbort:
    case BoxButton::kIgnore:
      break;
  }
  return LabelOf(Characters(words.ok), U'o');
}

}  // namespace

BoxText::BoxText(const MessageBoxRequest& request)
    : words_(request.words), text_(Shown(request.text)), default_(request.default_button) {
  head_.append(U"--- ").append(Shown(request.title));
  const std::u16string_view icon = IconWord(request.icon, words_);
  if (!icon.empty()) head_.append(U" (").append(Shown(icon)).append(U")");
  head_.append(U" ---");
  for (const BoxButton button : ButtonsOf(request.buttons)) {
    buttons_.push_back(button);
    labels_.push_back(LabelOfButton(button, words_));
  }
}

BoxButton BoxText::FirstOf(std::initializer_list<BoxButton> wanted) const {
  for (const BoxButton button : wanted) {
    if (std::find(buttons_.begin(), buttons_.end(), button) != buttons_.end()) return button;
  }
  return buttons_.front();
}

BoxButton BoxText::Cautious() const { return FirstOf({BoxButton::kNo, BoxButton::kCancel, BoxButton::kOk}); }

BoxButton BoxText::OfEscape() const { return FirstOf({BoxButton::kCancel, BoxButton::kNo, BoxButton::kOk}); }

BoxButton BoxText::OfEnter() const { return FirstOf({default_.value_or(buttons_.front())}); }

std::optional<BoxButton> BoxText::ButtonOfKey(char32_t key) const {
  if (key == U'\n' || key == U'\r') return OfEnter();
  if (key == kBoxEscape) return OfEscape();
  const auto answer = AnswerOfKey(labels_, key);
  return answer ? std::optional(buttons_[*answer]) : std::nullopt;
}

const AnswerLabel& BoxText::Of(BoxButton button) const {
  const auto found = std::find(buttons_.begin(), buttons_.end(), button);
  return labels_[static_cast<std::size_t>(found - buttons_.begin())];
}

std::string BoxText::Label(BoxButton button) const { return ToUtf8(Of(button).shown); }

std::u32string BoxText::ButtonLine() const {
  std::u32string line;
  for (const AnswerLabel& label : labels_) line.append(label.shown).append(U"  ");
  line.append(U"(").append(Characters(words_.enter)).append(Of(OfEnter()).word);
  if (HasChoice()) line.append(U", ").append(Characters(words_.escape)).append(Of(OfEscape()).word);
  return line.append(U")");
}

std::string BoxText::Question(int columns) const {
  std::u32string question = Wrapped(head_, columns) + Wrapped(text_, columns);
  question += Wrapped(ButtonLine(), columns - 1);
  question.back() = U' ';  // the cursor stays behind the buttons
  return ToUtf8(question);
}

std::string BoxText::Report(BoxButton taken) const {
  return ToUtf8(head_ + U'\n' + text_ + U'\n') + Label(taken) + "\n";
}

}  // namespace zentor::platform
