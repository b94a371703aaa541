#include "progress/panel_keys.h"

#include <gtest/gtest.h>

namespace zentor::progress {
namespace {

// The keys as text: Esc as ^, Enter as $, Ctrl-Z as Z.
std::string Shown(const std::vector<KeyPress>& keys) {
  std::string text;
  for (const KeyPress& press : keys) {
    text += press.key == Key::kEscape    ? "^"
            : press.key == Key::kEnter   ? "$"
            : press.key == Key::kStopJob ? "Z"
                                         : platform::ToUtf8(std::u32string(1, press.character));
  }
  return text;
}

TEST(KeyDecoder, EscapeKeyAndSequences) {
  struct Case {
    std::vector<std::string> pieces;  // as they arrive
    std::string keys;
  };
  const Case cases[] = {
      {{"pQ\r\n"}, "pQ$$"},
      {{"\x1b\x1b"}, "^^"},
      {{"\x1bn"}, "^n"},
      {{"\x1b[A\x1bOPp\x1b[15~y"}, "py"},     // arrow, F1, F5
      {{"\x1b", "[", "1;5", "C", "p"}, "p"},  // an arrow that comes in pieces
      {{"\x1a \x01\xff\xa4"}, "Z"},           // no key: blanks, control characters, bytes that are no text
      {{"\xd0", "\xb9\xe3\x81\xaf"}, "йは"},  // characters of several bytes, also in pieces
  };
  for (const Case& c : cases) {
    KeyDecoder decoder;
    std::string keys;
    for (const auto& piece : c.pieces) keys += Shown(decoder.Decode(piece));
    EXPECT_EQ(keys + Shown(decoder.Settle()), c.keys) << testing::PrintToString(c.pieces);
  }
}

std::string StateAfter(std::string_view keys, const PanelLabels& labels = {}) {
  ProgressState state;
  KeyDecoder decoder;
  for (const char key : keys) {
    for (const auto& press : decoder.Decode({&key, 1})) ActOnKey(state, labels, press);
    for (const auto& press : decoder.Settle()) ActOnKey(state, labels, press);
  }
  std::string text = state.HoldsSolver() ? "held" : "runs";
  if (state.suspended) text += " suspended";
  if (state.asking) text += " asking";
  if (state.aborting) text += " aborting";
  return text;
}

TEST(PanelKeys, SuspendAskAndAbort) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"x$y", "runs"},
      {"p", "held suspended"},
      {"pP", "runs"},
      {"q", "held asking"},
      {"\x1b", "held asking"},
      {"qn", "runs"},
      {"q\x1b", "runs"},
      {"\x1by", "runs aborting"},
      {"pqn", "held suspended"},           // No leaves the user's own hold
      {"pqy", "runs suspended aborting"},  // a held solver must run to its end
      {"qypqn", "runs aborting"},
      {"зй", "held suspended asking"},  // the same keys of a Russian keyboard, and of a Korean one
      {"ㅂㅛ", "runs aborting"},
  };
  for (const auto& [keys, state] : cases) EXPECT_EQ(StateAfter(keys), state) << keys;
}

}  // namespace
}  // namespace zentor::progress
