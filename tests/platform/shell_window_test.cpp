#include "platform/shell_window.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <vector>

#include "platform/threads.h"

namespace zentor::platform {
namespace {

using std::chrono::milliseconds;

class TestWindow : public ShellWindow {
 public:
  using Handler = std::function<void(ShellWindow& self, WindowMessage, std::uint64_t parameter)>;
  explicit TestWindow(const Handler& handler)
      : ShellWindow(u"", [this, handler](WindowMessage message, MessageParameters parameters) {
          handler(*this, message, parameters.first);
        }) {}
};

TEST(Window, MessagesComeInOrderAndQuitGivesTheExitCode) {
  std::vector<std::uint64_t> commands;
  TestWindow window([&](ShellWindow& self, WindowMessage message, std::uint64_t parameter) {
    if (message != WindowMessage::kCommand) return;
    commands.push_back(parameter);
    if (parameter == 3) self.Quit(7);
  });
  ZentorWindowHandle* handle = window.Handle();
  handle->post(handle, 0x0111, 1, 0);
  window.Post(WindowMessage::kCommand, {2, 0});
  window.Post(WindowMessage::kCommand, {3, 0});
  EXPECT_EQ(window.Run(), 7);
  EXPECT_EQ(commands, (std::vector<std::uint64_t>{1, 2, 3}));
}

TEST(Window, ASenderWaitsUntilItsMessageIsHandledAndIsReleasedByTheEnd) {
  std::atomic<int> handled = 0;
  TestWindow window([&](ShellWindow& self, WindowMessage message, std::uint64_t) {
    if (message == WindowMessage::kCopy) {
      std::this_thread::sleep_for(milliseconds(20));
      ++handled;
    }
    if (message == WindowMessage::kUserMessage2) self.Quit(1);
  });
  std::thread sender([&] {
    EXPECT_TRUE(window.Send(WindowMessage::kCopy));
    EXPECT_EQ(handled, 1);
    EXPECT_TRUE(window.Send(WindowMessage::kUserMessage2));
    while (window.Send(WindowMessage::kCopy)) {
    }
  });
  EXPECT_EQ(window.Run(), 1);
  sender.join();
}

TEST(Window, TimersRepeatAndLeaveNothingBehindWhenStopped) {
  int ticks = 0;
  TestWindow window([&](ShellWindow& self, WindowMessage message, std::uint64_t timer) {
    if (message != WindowMessage::kTimer) return;
    if (timer == 1) self.Quit(0);
    if (timer == 2 && ++ticks == 3) {
      self.StopTimer(2);
      self.SetTimer(1, 30);
    }
  });
  window.SetTimer(2, 0);
  window.SetTimer(1, 60'000);
  EXPECT_EQ(window.Run(), 0);
  EXPECT_EQ(ticks, 3);
}

TEST(Window, RequestsToEndBecomeMessagesUnlessTheParentHasSwitchedThemOff) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
    for (const bool ignored : {false, true}) {
      if (ignored) ::signal(signal, SIG_IGN);  // as nohup does
      TestWindow window([&](ShellWindow& self, WindowMessage message, std::uint64_t) {
        if (message == WindowMessage::kClose) self.Quit(signal);
        if (message == WindowMessage::kTimer) self.Quit(-1);
      });
      ::kill(::getpid(), signal);
      window.SetTimer(1, ignored ? 30 : 60'000);
      EXPECT_EQ(window.Run(), ignored ? -1 : signal);
    }
    ::signal(signal, SIG_DFL);
  }
}

// What only a privileged user may raise; for others all three are the same.
TEST(Threads, TheShellThreadsPriorityIsNotTheSolvers) {
  const auto priority = [] { return ::getpriority(PRIO_PROCESS, static_cast<id_t>(::gettid())); };
  std::thread([&] {
    const int normal = priority();
    int solver = 99;
    WorkThread thread([&] { solver = priority(); });
    RaiseThreadPriority();
    thread.Start();
    EXPECT_TRUE(thread.Wait(10'000));
    EXPECT_EQ(solver, normal);
    const bool can_rise = ::geteuid() == 0 && normal > -10;
    EXPECT_TRUE(priority() < normal || !can_rise);
  }).join();
}

TEST(HeldThreads, HoldsCountAndHoldTheHelpersToo) {
  std::atomic<long> own = 0, helped = 0;
  const auto stand = [&] {
    const long a = own, b = helped;
    std::this_thread::sleep_for(milliseconds(30));
    return a == own && b == helped;
  };
  const auto move = [&] {
    const long a = own, b = helped;
    for (int i = 0; i < 1000 && (own == a || helped == b); ++i) std::this_thread::sleep_for(milliseconds(1));
    return own != a && helped != b;
  };
  WorkThread* self = nullptr;
  WorkThread thread([&] {
    std::thread helper([&] {
      while (self->Gate().Pass()) ++helped;
    });
    while (self->Gate().Pass()) ++own;
    helper.join();
  });
  self = &thread;
  thread.Start();
  EXPECT_TRUE(move());
  thread.Suspend();
  thread.Suspend();
  while (thread.Gate().Waiting() < 2) std::this_thread::yield();
  EXPECT_TRUE(stand());
  thread.Resume();
  EXPECT_TRUE(stand()) << "two holds need two releases";
  thread.Resume();
  EXPECT_TRUE(move());
  thread.Resume();  // without a hold: no effect
  thread.Suspend();
  while (thread.Gate().Waiting() < 2) std::this_thread::yield();
  EXPECT_FALSE(thread.Wait(20));
  thread.Terminate();
  EXPECT_TRUE(thread.Wait(10'000)) << "a held thread can be ended";
  EXPECT_FALSE(thread.Gate().Pass());
}

}  // namespace
}  // namespace zentor::platform
