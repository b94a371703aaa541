#include "progress/panel_keys.h"

#include <array>

namespace zentor::progress {
namespace {

constexpr char kEscapeByte = '\x1b';
constexpr char kStopByte = '\x1a';  // Ctrl-Z

}  // namespace

std::vector<KeyPress> KeyDecoder::Decode(std::string_view bytes) {
  std::vector<KeyPress> keys;
  for (const char byte : bytes) DecodeOne(byte, keys);
  return keys;
}

std::vector<KeyPress> KeyDecoder::Settle() {
  if (!Waiting()) return {};
  sequence_ = Sequence::kNone;
  return {{Key::kEscape}};
}

void KeyDecoder::DecodeOne(char byte, std::vector<KeyPress>& keys) {
  if (sequence_ == Sequence::kParameters) {
    if (byte >= '@' && byte <= '~') sequence_ = Sequence::kNone;
    return;
  }
  if (sequence_ == Sequence::kOneMore) {
    sequence_ = Sequence::kNone;
    return;
  }
  if (sequence_ == Sequence::kEscape) {
    sequence_ = byte == '[' ? Sequence::kParameters : byte == 'O' ? Sequence::kOneMore : Sequence::kNone;
    if (sequence_ != Sequence::kNone) return;
    keys.push_back({Key::kEscape});
  }
  if (byte == kEscapeByte) {
    sequence_ = Sequence::kEscape;
  } else if (byte == '\r' || byte == '\n') {
    keys.push_back({Key::kEnter});
  } else if (byte == kStopByte) {
    keys.push_back({Key::kStopJob});
  } else if (const auto character = characters_.Take(byte); character && *character > U' ') {
    keys.push_back({Key::kCharacter, *character});
  }
}

void ActOnKey(ProgressState& state, const PanelLabels& labels, const KeyPress& press) {
  if (state.aborting) return;
  const auto is = [&](const std::array<platform::AnswerLabel, 2>& pair, std::size_t which) {
    return press.key == Key::kCharacter && platform::AnswerOfKey(pair, press.character) == which;
  };
  if (state.asking) {
    state.aborting = is(labels.YesNo(), 0);
    const bool answered =
        state.aborting || is(labels.YesNo(), 1) || press.key == Key::kEscape || press.key == Key::kEnter;
    if (answered) state.asking = false;
  } else if (is(labels.SuspendAbort(), 0)) {
    state.suspended = !state.suspended;
  } else if (is(labels.SuspendAbort(), 1) || press.key == Key::kEscape) {
    state.asking = true;
  }
}

}  // namespace zentor::progress
