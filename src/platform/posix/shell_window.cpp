#include "platform/shell_window.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <span>
#include <system_error>
#include <utility>

#include "platform/posix/window_state.h"

namespace zentor::platform {
namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;

constexpr Milliseconds kShortestPeriod{10};
constexpr int kLongestWait = 1000;

int Checked(int descriptor) {
  if (descriptor < 0) throw std::system_error(errno, std::generic_category(), "window");
  return descriptor;
}

void Signal(const Descriptor& event) {
  const std::uint64_t one = 1;
  static_cast<void>(::write(event.number(), &one, sizeof one));
}

void Reset(const Descriptor& event) {
  std::uint64_t count = 0;
  static_cast<void>(::read(event.number(), &count, sizeof count));
}

bool Ignored(int signal) {
  struct sigaction action {};
  return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

// What whoever started the process lets it ignore (nohup, a script's job in the background) is no request: as
// a signal that is read it would arrive all the same.
sigset_t Requests() {
  sigset_t set;
  ::sigemptyset(&set);
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
    if (!Ignored(number)) ::sigaddset(&set, number);
  }
  return set;
}

sigset_t Continued() {
  sigset_t set;
  ::sigemptyset(&set);
  ::sigaddset(&set, SIGCONT);
  return set;
}

// Whether a signal waits at the descriptor; takes it.
bool TakeSignal(const Descriptor& signals) {
  signalfd_siginfo information;
  return ::read(signals.number(), &information, sizeof information) == sizeof information;
}

void PostThroughHandle(ZentorWindowHandle* self, std::uint32_t message, std::uint64_t first,
                       std::int64_t second) {
  static_cast<WindowHandleOf*>(self)->window->Post(static_cast<WindowMessage>(message), {first, second});
}

// The key that a piece of terminal input stands for: a character by its upper-case code; sequences of
// function keys, which begin with the code of Escape, stand for none.
std::uint64_t KeyCode(std::span<const char> input) {
  if (input.size() != 1) return 0;
  const auto code = static_cast<unsigned char>(input[0]);
  return code >= 'a' && code <= 'z' ? code - 'a' + 'A' : code;
}

// The next timer that is due, with its next due time set. The caller holds the lock.
std::optional<WindowEntry> TakeDueTimer(ShellWindow::State& state) {
  const auto now = Clock::now();
  for (WindowTimer& timer : state.timers) {
    if (timer.due > now) continue;
    timer.due = now + timer.period;
    return WindowEntry{WindowMessage::kTimer, {static_cast<std::uint64_t>(timer.number), 0}};
  }
  return std::nullopt;
}

void QueueKey(ShellWindow::State& state) {
  const std::unique_lock reading(state.box_mutex, std::try_to_lock);
  if (!reading || !TerminalIsOurs()) return;
  std::array<char, 16> input;
  const ssize_t count = ::read(STDIN_FILENO, input.data(), input.size());
  if (count <= 0) {  // the terminal has gone
    state.keys.reset();
    return;
  }
  const std::uint64_t code = KeyCode(std::span(input).first(static_cast<std::size_t>(count)));
  if (code == 0) return;
  const std::lock_guard lock(state.mutex);
  state.posted.push_back({WindowMessage::kKeyDown, {code, 0}});
}

// Waits for something to do and turns what the system has to say into messages.
void WaitForWork(ShellWindow::State& state, int timeout) {
  const bool keys = state.keys && state.keys->on() && !state.box_open && TerminalIsOurs();
  std::array<pollfd, 4> waited = {{{state.wake->number(), POLLIN, 0},
                                   {state.requests->number(), POLLIN, 0},
                                   {state.continued->number(), POLLIN, 0},
                                   {keys ? STDIN_FILENO : -1, POLLIN, 0}}};
  if (::poll(waited.data(), waited.size(), timeout) <= 0) return;
  if (waited[0].revents != 0) Reset(*state.wake);
  if (waited[1].revents != 0 && TakeSignal(*state.requests)) {
    const std::lock_guard lock(state.mutex);
    state.posted.push_back({WindowMessage::kClose, {}});
  }
  if (waited[2].revents != 0 && TakeSignal(*state.continued) && state.keys) state.keys->Renew();
  if (waited[3].revents != 0) QueueKey(state);
}

// Handles one message that another thread has sent, and lets that thread go on.
bool HandleOneSent(ShellWindow::State& state) {
  SentEntry* sent = nullptr;
  {
    const std::lock_guard lock(state.mutex);
    if (state.sent.empty()) return false;
    sent = state.sent.front();
    state.sent.pop_front();
  }
  struct LetGoOn {  // also when there is no memory to handle it
    ShellWindow::State& state;
    SentEntry& sent;
    ~LetGoOn() {
      const std::lock_guard lock(state.mutex);
      sent.handled = true;
      state.handled.notify_all();
    }
  } const let_go_on{state, *sent};
  state.procedure(sent->entry.message, sent->entry.parameters);
  return true;
}

bool HandleOnePosted(ShellWindow::State& state) {
  WindowEntry entry;
  {
    const std::lock_guard lock(state.mutex);
    if (!state.posted.empty()) {
      entry = state.posted.front();
      state.posted.pop_front();
    } else if (const auto timer = TakeDueTimer(state)) {
      entry = *timer;
    } else {
      return false;
    }
  }
  state.procedure(entry.message, entry.parameters);
  return true;
}

void IgnoreBrokenPipes(ShellWindow::State& state) {
  struct sigaction ignore {};
  ignore.sa_handler = SIG_IGN;
  ::sigaction(SIGPIPE, &ignore, &state.earlier_pipe_action);
}

}  // namespace

int UntilNextTimer(ShellWindow::State& state) {
  const std::lock_guard lock(state.mutex);
  auto wait = Milliseconds(kLongestWait);
  for (const WindowTimer& timer : state.timers) {
    wait = std::min(wait, std::chrono::ceil<Milliseconds>(timer.due - Clock::now()));
  }
  return static_cast<int>(std::max<Milliseconds::rep>(wait.count(), 0));
}

void WorkDuringBox(ShellWindow::State& state) {
  Reset(*state.wake);
  while (HandleOneSent(state)) {
  }
  std::optional<WindowEntry> timer;
  {
    const std::lock_guard lock(state.mutex);
    timer = TakeDueTimer(state);
  }
  if (timer) state.procedure(timer->message, timer->parameters);
}

Descriptor::~Descriptor() { ::close(number_); }

ShellWindow::ShellWindow(std::u16string caption, Procedure procedure) : state_(std::make_unique<State>()) {
  State& state = *state_;
  state.caption = std::move(caption);
  state.procedure = std::move(procedure);
  state.thread = std::this_thread::get_id();
  state.handle.post = &PostThroughHandle;
  state.handle.window = this;
  const sigset_t requests = Requests(), continued = Continued();
  ::pthread_sigmask(SIG_BLOCK, &requests, &state.earlier_mask);
  ::pthread_sigmask(SIG_BLOCK, &continued, nullptr);
  state.wake.emplace(Checked(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)));
  state.closing.emplace(Checked(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)));
  state.requests.emplace(Checked(::signalfd(-1, &requests, SFD_CLOEXEC | SFD_NONBLOCK)));
  state.continued.emplace(Checked(::signalfd(-1, &continued, SFD_CLOEXEC | SFD_NONBLOCK)));
  IgnoreBrokenPipes(state);
  state.procedure(WindowMessage::kCreate, {});
}

ShellWindow::~ShellWindow() {
  State& state = *state_;
  state.keys.reset();
  while (TakeSignal(*state.requests)) {  // asked again while the run was ending
  }
  while (TakeSignal(*state.continued)) {
  }
  ::sigaction(SIGPIPE, &state.earlier_pipe_action, nullptr);
  ::pthread_sigmask(SIG_SETMASK, &state.earlier_mask, nullptr);
}

const std::u16string& ShellWindow::Caption() const { return state_->caption; }

ZentorWindowHandle* ShellWindow::Handle() { return &state_->handle; }

void ShellWindow::Post(WindowMessage message, MessageParameters parameters) {
  const std::lock_guard lock(state_->mutex);
  state_->posted.push_back({message, parameters});
  Signal(*state_->wake);
}

bool ShellWindow::Send(WindowMessage message, MessageParameters parameters) {
  if (std::this_thread::get_id() == state_->thread) {
    state_->procedure(message, parameters);
    return true;
  }
  SentEntry sent{{message, parameters}};
  std::unique_lock lock(state_->mutex);
  if (state_->loop_over) return false;
  state_->sent.push_back(&sent);
  Signal(*state_->wake);
  state_->handled.wait(lock, [&] { return sent.handled || state_->loop_over; });
  if (!sent.handled) std::erase(state_->sent, &sent);
  return sent.handled;
}

void ShellWindow::SetTimer(int timer, int period_milliseconds) {
  StopTimer(timer);
  const auto period = std::max(Milliseconds(period_milliseconds), kShortestPeriod);
  const std::lock_guard lock(state_->mutex);
  state_->timers.push_back({timer, period, Clock::now() + period});
  Signal(*state_->wake);
}

void ShellWindow::StopTimer(int timer) {
  const std::lock_guard lock(state_->mutex);
  std::erase_if(state_->timers, [&](const WindowTimer& t) { return t.number == timer; });
  std::erase_if(state_->posted, [&](const WindowEntry& e) {
    return e.message == WindowMessage::kTimer && e.parameters.first == static_cast<std::uint64_t>(timer);
  });
}

void ShellWindow::ReadKeys(bool on) {
  state_->keys.reset();
  if (on) state_->keys.emplace();
}

int ShellWindow::Run() {
  State& state = *state_;
  const auto exit_code = [&] {
    const std::lock_guard lock(state.mutex);
    return state.exit_code;
  };
  while (!exit_code()) {
    if (HandleOneSent(state) || HandleOnePosted(state)) {
      WaitForWork(state, 0);
      continue;
    }
    WaitForWork(state, UntilNextTimer(state));
  }
  state.keys.reset();
  const std::lock_guard lock(state.mutex);
  state.loop_over = true;
  state.handled.notify_all();
  return *state.exit_code;
}

void ShellWindow::HandleSent(int milliseconds, const std::function<bool()>& stop) {
  constexpr int kSlice = 5;  // how late the end of what is waited for may be noticed
  const auto end = Clock::now() + Milliseconds(milliseconds);
  while (!stop() && Clock::now() < end) {
    if (HandleOneSent(*state_)) continue;
    pollfd waited{state_->wake->number(), POLLIN, 0};
    if (::poll(&waited, 1, kSlice) > 0) Reset(*state_->wake);
  }
}

void ShellWindow::Quit(int exit_code) {
  const std::lock_guard lock(state_->mutex);
  state_->exit_code = exit_code;
  Signal(*state_->wake);
}

void ShellWindow::CloseBoxes() { Signal(*state_->closing); }

}  // namespace zentor::platform
