// What a message box in a terminal says, and what its keys mean.
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "platform/answer_labels.h"
#include "platform/message_box.h"

namespace zentor::platform {

inline constexpr char32_t kBoxEscape = 27;
inline constexpr char32_t kBoxEnter = U'\n';

class BoxText {
 public:
  explicit BoxText(const MessageBoxRequest& request);

  bool HasChoice() const { return buttons_.size() > 1; }
  // Title and text, then the buttons with their keys: without line ends longer than the terminal is wide.
  std::string Question(int columns) const;
  // Title and text as they are, then the button that was taken.
  std::string Report(BoxButton taken) const;
  std::string Label(BoxButton button) const;

  // The button that a key or the first letter of a line stands for.
  std::optional<BoxButton> ButtonOfKey(char32_t key) const;
  // Where nobody answers: No, else Cancel, else OK.
  BoxButton Cautious() const;

 private:
  BoxButton FirstOf(std::initializer_list<BoxButton> wanted) const;
  BoxButton OfEscape() const;
  BoxButton OfEnter() const;
  const AnswerLabel& Of(BoxButton button) const;
  std::u32string ButtonLine() const;

  BoxWords words_;
  std::u32string head_, text_;
  std::optional<BoxButton> default_;
  std::vector<BoxButton> buttons_;  // in the order in which they are shown
  std::vector<AnswerLabel> labels_;
};

}  // namespace zentor::platform
