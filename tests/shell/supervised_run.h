// A run of a test's own: window, supervisor and a solver thread that does what the test says.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>

#include "platform/dynamic_library.h"
#include "platform/system.h"
#include "platform/text.h"
#include "services/stop.h"
#include "shell/message_boxes.h"
#include "shell/run_supervisor.h"
#include "support/temp_folder.h"

namespace zentor::test {

// Folders of the recording libraries; none: no library.
inline const std::string kFullHost = ZENTOR_TEST_HOSTS "/full/";
inline const std::string kPartialHost = ZENTOR_TEST_HOSTS "/partial/";

// The test's side of a recording library.
class HostRecord {
 public:
  explicit HostRecord(const std::string& folder) : library_(folder + "libquorvel.so") {
    Calls();
    Answer(0, 0);
  }
  void Answer(int abort, int suspend, int step_text = 0) {
    if (library_) library_.Find<void (*)(int, int, int)>("SetHostAnswers")(abort, suspend, step_text);
  }
  // The calls since the last look, one per line.
  std::string Calls() {
    return library_ ? library_.Find<const char* (*)()>("TakeHostCalls")() : std::string();
  }

 private:
  platform::DynamicLibrary library_;
};

inline MessageCatalog TestCatalog() {
  return ParseMessageCatalog(
             "#define T 919\n#define L 931\n#define A 901\n#define B 902\n#define S 905\n#define M 939\n"
             "#define W 9001\n#define N 10097\n",
             u"STRINGTABLE BEGIN T \"Title\" L \"elapsed time\" A \"Abort?\" B \"Abort now?\" S \"Symbols\" "
             u"M \"summary %d\" W \"warned of %d\" N \"step %d\" END")
      .catalog;
}

template <typename Condition>
bool Soon(Condition condition) {
  for (int i = 0; i < 5000 && !condition(); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  return condition();
}

struct SupervisedRun {
  explicit SupervisedRun(const std::string& host_folder)
      : record(host_folder),
        shell(platform::NativeFileSystem(), platform::ToWide(study)),
        host(host_folder.empty() ? std::string("/nowhere/") : host_folder),
        services(shell, host),
        supervisor(shell, host, services),
        window(u"caption", [this](auto message, auto parameters) { supervisor.Handle(message, parameters); }),
        solver([this] { Solve(); }) {
    shell.catalog = TestCatalog();
    shell.title = u"Title";
    shell.clock.StartAt(platform::SecondsSince1970());
    host.Load();
    shell.screen.emplace(kScreenColumns, kScreenRows);
    shell.window = &window;
    shell.solver = &solver;
  }

  // Runs the solver and the message loop, `script` beside them; the exit code.
  int Run(std::function<void()> work, const std::function<void()>& script) {
    work_ = std::move(work);
    window.SetTimer(kElapsedTimer, kElapsedPeriod);
    window.SetTimer(kPollTimer, 0);
    std::thread beside(script);
    solver.Start();
    const int exit_code = window.Run();
    beside.join();
    EXPECT_TRUE(solver.Wait(10'000));
    return exit_code;
  }
  // Work that counts at its gate until the run is ended.
  std::function<void()> Counting() {
    return [this] {
      for (;; ++count) PassGate(services);
    };
  }
  bool Moves() {
    const long before = count;
    return Soon([&] { return count > before + 10; });
  }
  bool Stands() {
    if (!Soon([&] { return solver.Gate().Waiting() == 1; })) return false;
    const long before = count;
    std::this_thread::sleep_for(std::chrono::milliseconds(40));
    return count == before;
  }
  std::string Log() const { return ReadText(study + ".LOG"); }

 private:
  void Solve() {
    try {
      work_();
      services.EndOfRun();
    } catch (const RunStopped&) {
    }
    if (!shell.ended) window.Quit(0);
  }

  TempFolder folder_;
  std::function<void()> work_;

 public:
  std::string study = folder_.Path("s1");
  HostRecord record;
  ShellContext shell;
  ProgressHost host;
  ShellServices services;
  RunSupervisor supervisor;
  platform::ShellWindow window;
  platform::WorkThread solver;
  std::atomic<long> count = 0;
};

}  // namespace zentor::test
