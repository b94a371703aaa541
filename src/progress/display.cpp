#include "progress/display.h"

#include <algorithm>

#include "platform/text.h"

namespace zentor::progress {
namespace {

// A lone Esc byte is the key when nothing follows it for this long.
constexpr int kEscapeMilliseconds = 50;
// Time for a stop of the job to take effect before anything is drawn again.
constexpr double kStopSeconds = 0.3;

std::string_view StyleSequence(LineStyle style) {
  switch (style) {
    case LineStyle::kTitle:
      return "\x1b[7m";
    case LineStyle::kStrong:
      return "\x1b[1m";
    case LineStyle::kWarning:
      return "\x1b[33m";
    case LineStyle::kQuestion:
      return "\x1b[1;33m";
    case LineStyle::kFaint:
      return "\x1b[2m";
    case LineStyle::kPlain:
      break;
  }
  return "";
}

// The lines as a picture that replaces whatever the panel's screen holds.
std::string Picture(const std::vector<PanelLine>& lines) {
  std::string out = "\x1b[H";
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (i > 0) out += "\r\n";
    out += StyleSequence(lines[i].style);
    out += platform::ToUtf8(lines[i].text);
    out += "\x1b[0m\x1b[K";
  }
  return out + "\x1b[J";
}

}  // namespace

std::unique_ptr<Display> Display::OfStandardOutput(double now) {
  if (auto terminal = Terminal::OfStandardOutput()) {
    return std::make_unique<PanelDisplay>(std::move(terminal), now);
  }
  return std::make_unique<PlainDisplay>(now);
}

void PlainDisplay::Show(const ProgressState& state, const PanelLabels& labels, double now) {
  if (const auto line = lines_.Next(state, labels, now)) WriteLine(*line);
}

void PlainDisplay::Close(const ProgressState& state, const PanelLabels& labels, double now) {
  WriteLine(ClosingLine(state, labels, now));
}

std::vector<KeyPress> PlainDisplay::WaitForKeys(Waker& waker, int milliseconds) {
  waker.Wait(-1, milliseconds);
  return {};
}

void PanelDisplay::Show(const ProgressState& state, const PanelLabels& labels, double now) {
  if (now < quiet_until_) return;
  if (!terminal_->InForeground()) return terminal_->ForgetPanel();
  if (!terminal_->HasPanelModes()) terminal_->ForgetPanel();
  if (!terminal_->InPanel()) {
    terminal_->EnterPanel();
    shown_.clear();
  }
  const TerminalSize size = terminal_->Size();
  std::string picture =
      Picture(LayOutPanel(state, labels, {size.columns, size.rows, terminal_->Utf8()}, now));
  // A terminal that has not taken the last picture yet gets no further one.
  if (picture == shown_ || !terminal_->Flush(0)) return;
  terminal_->Write(picture);
  shown_ = std::move(picture);
}

void PanelDisplay::Leave() {
  terminal_->LeavePanel(true);
  quiet_until_ = SteadySeconds() + kOpeningDelay;
}

void PanelDisplay::Close(const ProgressState& state, const PanelLabels& labels, double now) {
  const bool foreground = terminal_->InForeground();
  terminal_->LeavePanel(false);
  if (foreground) WriteLine(ClosingLine(state, labels, now));
}

std::vector<KeyPress> PanelDisplay::WaitForKeys(Waker& waker, int milliseconds) {
  waker.Wait(terminal_->InputDescriptor(), keys_.Waiting() ? kEscapeMilliseconds : milliseconds);
  const std::string typed = terminal_->Read();
  std::vector<KeyPress> keys = typed.empty() ? keys_.Settle() : keys_.Decode(typed);
  StopOnRequest(keys);
  return keys;
}

void PanelDisplay::StopOnRequest(std::vector<KeyPress>& keys) {
  const auto stop = std::find_if(keys.begin(), keys.end(),
                                 [](const KeyPress& press) { return press.key == Key::kStopJob; });
  if (stop == keys.end()) return;
  keys.erase(stop, keys.end());
  terminal_->LeavePanel(false);
  StopJob();
  quiet_until_ = SteadySeconds() + kStopSeconds;
}

}  // namespace zentor::progress
