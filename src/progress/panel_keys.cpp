#include "progress/panel_keys.h"

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
  } else if (byte > ' ' && byte <= '~') {
    keys.push_back(
        {Key::kCharacter, static_cast<char>(byte >= 'A' && byte <= 'Z' ? byte - 'A' + 'a' : byte)});
  }
}

void ActOnKey(ProgressState& state, const KeyPress& press) {
  if (state.aborting) return;
  if (state.asking) {
    state.aborting = press.character == 'y';
    const bool answered =
        state.aborting || press.character == 'n' || press.key == Key::kEscape || press.key == Key::kEnter;
    if (answered) state.asking = false;
  } else if (press.character == 'p') {
    state.suspended = !state.suspended;
  } else if (press.character == 'q' || press.key == Key::kEscape) {
    state.asking = true;
  }
}

}  // namespace zentor::progress
