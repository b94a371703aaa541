// The window's queue, timers and senders; threads that are held and ended at their gates.
#include "platform/shell_window.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "platform/threads.h"

namespace zentor::platform {
namespace {

using std::chrono::milliseconds;

TEST(Window, MessagesComeInOrderAndQuitGivesTheExitCode) {
  std::vector<std::uint64_t> commands;
  bool created = false;
  ShellWindow* self = nullptr;
  ShellWindow window(u"caption", [&](WindowMessage message, MessageParameters parameters) {
    if (message == WindowMessage::kCreate) created = true;
    if (message != WindowMessage::kCommand) return;
    commands.push_back(parameters.first);
    if (parameters.first == 3) self->Quit(7);
  });
  self = &window;
  EXPECT_TRUE(created);
  ZentorWindowHandle* handle = window.Handle();
  handle->post(handle, 0x0111, 1, 0);
  window.Post(WindowMessage::kCommand, {2, 0});
  window.Post(WindowMessage::kCommand, {3, 0});
  EXPECT_EQ(window.Run(), 7);
  EXPECT_EQ(commands, (std::vector<std::uint64_t>{1, 2, 3}));
}

TEST(Window, ASenderWaitsUntilItsMessageIsHandledAndIsReleasedByTheEnd) {
  std::atomic<int> handled = 0;
  ShellWindow* self = nullptr;
  ShellWindow window(u"", [&](WindowMessage message, MessageParameters) {
    if (message == WindowMessage::kCopy) {
      std::this_thread::sleep_for(milliseconds(20));
      ++handled;
    }
    if (message == WindowMessage::kUserMessage2) self->Quit(1);
  });
  self = &window;
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
  int ticks = 0, other = 0;
  ShellWindow* self = nullptr;
  ShellWindow window(u"", [&](WindowMessage message, MessageParameters parameters) {
    if (message != WindowMessage::kTimer) return;
    if (parameters.first == 1) ++other;
    if (parameters.first == 2 && ++ticks == 3) {
      self->StopTimer(2);
      self->SetTimer(1, 30);
    }
    if (other == 1) self->Quit(0);
  });
  self = &window;
  window.SetTimer(2, 0);
  window.SetTimer(1, 60'000);
  EXPECT_EQ(window.Run(), 0);
  EXPECT_EQ(ticks, 3);
}

TEST(Window, RequestsToEndBecomeMessages) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
    ShellWindow* self = nullptr;
    ShellWindow window(u"", [&](WindowMessage message, MessageParameters) {
      if (message == WindowMessage::kClose) self->Quit(signal);
    });
    self = &window;
    ::kill(::getpid(), signal);
    EXPECT_EQ(window.Run(), signal);
  }
}

TEST(Window, RequestsThatTheParentHasSwitchedOffStayOff) {
  ::signal(SIGHUP, SIG_IGN);  // as nohup does
  bool asked = false;
  ShellWindow* self = nullptr;
  ShellWindow window(u"", [&](WindowMessage message, MessageParameters) {
    asked = asked || message == WindowMessage::kClose;
    if (message == WindowMessage::kTimer) self->Quit(0);
  });
  self = &window;
  ::kill(::getpid(), SIGHUP);
  window.SetTimer(1, 50);
  window.Run();
  EXPECT_FALSE(asked);
  ::signal(SIGHUP, SIG_DFL);
}

TEST(Window, WhoeverWaitsForAThreadHandlesWhatItSends) {
  std::atomic<bool> done = false;
  ShellWindow window(u"", [](WindowMessage, MessageParameters) {});
  std::thread sender([&] {
    EXPECT_TRUE(window.Send(WindowMessage::kCopy));
    done = true;
  });
  window.HandleSent(10'000, [&] { return done.load(); });
  EXPECT_TRUE(done);
  sender.join();
}

// A thread that counts at its gate, and one that works for it.
struct Counters {
  std::atomic<long> own = 0, helper = 0;
  bool Stand() const {
    const long a = own, b = helper;
    std::this_thread::sleep_for(milliseconds(30));
    return a == own && b == helper;
  }
  bool Move() const {
    const long a = own, b = helper;
    for (int i = 0; i < 1000 && (own == a || helper == b); ++i) std::this_thread::sleep_for(milliseconds(1));
    return own != a && helper != b;
  }
};

TEST(HeldThreads, HoldsCountAndHoldTheHelpersToo) {
  Counters count;
  WorkThread* self = nullptr;
  WorkThread thread([&] {
    std::thread helper([&] {
      while (self->Gate().Pass()) ++count.helper;
    });
    while (self->Gate().Pass()) ++count.own;
    helper.join();
  });
  self = &thread;
  thread.Start();
  EXPECT_TRUE(count.Move());
  thread.Suspend();
  thread.Suspend();
  while (thread.Gate().Waiting() < 2) std::this_thread::yield();
  EXPECT_TRUE(count.Stand());
  thread.Resume();
  EXPECT_TRUE(count.Stand()) << "two holds need two releases";
  thread.Resume();
  EXPECT_TRUE(count.Move());
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
