// The keys of the progress window and what they do.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/text.h"
#include "progress/panel_labels.h"
#include "progress/progress_state.h"

namespace zentor::progress {

enum class Key { kCharacter, kEscape, kEnter, kStopJob };

struct KeyPress {
  Key key;
  char32_t character = 0;  // of kCharacter
};

// Turns a terminal's bytes into keys. The sequences of arrow and function keys are swallowed. An Esc key is
// only told from the start of such a sequence by what follows, so a last Esc byte waits for more.
class KeyDecoder {
 public:
  std::vector<KeyPress> Decode(std::string_view bytes);
  // No more bytes came for a while: a waiting Esc byte was the key.
  std::vector<KeyPress> Settle();
  bool Waiting() const { return sequence_ == Sequence::kEscape; }

 private:
  enum class Sequence { kNone, kEscape, kParameters, kOneMore };
  void DecodeOne(char byte, std::vector<KeyPress>& keys);

  Sequence sequence_ = Sequence::kNone;
  platform::Utf8Decoder characters_;
};

// p suspends and resumes; q and Esc ask whether to abort; then y, or Yes in the language, aborts, and n, No,
// Esc and Enter go on.
void ActOnKey(ProgressState& state, const PanelLabels& labels, const KeyPress& press);

}  // namespace zentor::progress
