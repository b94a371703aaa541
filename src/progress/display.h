// The two ways in which progress reaches the user. Used by the window's thread alone.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "progress/panel_keys.h"
#include "progress/panel_labels.h"
#include "progress/panel_layout.h"
#include "progress/plain_lines.h"
#include "progress/progress_state.h"
#include "progress/terminal.h"

namespace zentor::progress {

class Display {
 public:
  virtual ~Display() = default;
  // The panel on standard output when that is a terminal, else plain lines. now: the start.
  static std::unique_ptr<Display> OfStandardOutput(double now);

  virtual void Show(const ProgressState& state, const PanelLabels& labels, double now) = 0;
  // Leaves standard output and the keyboard to someone else until the next Show.
  virtual void Leave() = 0;
  // The end: leaves, and says in one line how far the run has come.
  virtual void Close(const ProgressState& state, const PanelLabels& labels, double now) = 0;
  // Keys pressed since the last call, after a wait for them, for a wake-up, or for that time.
  virtual std::vector<KeyPress> WaitForKeys(Waker& waker, int milliseconds) = 0;
};

class PlainDisplay final : public Display {
 public:
  explicit PlainDisplay(double now) : lines_(now) {}
  void Show(const ProgressState& state, const PanelLabels& labels, double now) override;
  void Leave() override {}
  void Close(const ProgressState& state, const PanelLabels& labels, double now) override;
  std::vector<KeyPress> WaitForKeys(Waker& waker, int milliseconds) override;

 private:
  PlainLines lines_;
};

class PanelDisplay final : public Display {
 public:
  PanelDisplay(std::unique_ptr<Terminal> terminal, double now)
      : terminal_(std::move(terminal)), quiet_until_(now + kOpeningDelay) {}
  void Show(const ProgressState& state, const PanelLabels& labels, double now) override;
  void Leave() override;
  void Close(const ProgressState& state, const PanelLabels& labels, double now) override;
  std::vector<KeyPress> WaitForKeys(Waker& waker, int milliseconds) override;

 private:
  // A run that is over at once shows no panel, nor does one that ends behind a box.
  static constexpr double kOpeningDelay = 0.25;

  void StopOnRequest(std::vector<KeyPress>& keys);

  std::unique_ptr<Terminal> terminal_;
  double quiet_until_;  // nothing is drawn before
  std::string shown_;   // the picture on the terminal
  KeyDecoder keys_;
};

}  // namespace zentor::progress
