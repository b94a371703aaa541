#include "figures/child_run.h"

#include <omp.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <stdexcept>

#include "fatigue/fatigue_driver.h"
#include "figures/figure.h"
#include "platform/files.h"
#include "platform/system.h"
#include "services/stop.h"
#include "support/recording_services.h"

namespace zentor::bench {
namespace {

constexpr const char* kChildSwitch = "--whole-run";
using Clock = std::chrono::steady_clock;

double Seconds(Clock::duration duration) { return std::chrono::duration<double>(duration).count(); }

// Processor time of this process so far.
double ProcessorSeconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

// Notes when the run begins its nodes and when it is through with them; both are reports of progress.
class TimedServices final : public test::RecordingServices {
 public:
  using RecordingServices::RecordingServices;
  void ProgressBar(int first, int second) override {
    if (first == 0 && second == 0) nodes_begin = Clock::now(), processor_before = ProcessorSeconds();
    if (first == 100 && second == 100) processor_behind = ProcessorSeconds();
  }
  Clock::time_point nodes_begin;
  double processor_before = 0.0, processor_behind = 0.0;
};

// Makes the run and writes its seconds to the pipe. False when the run ended early or asked something.
bool MakeRun(const std::string& base, int pipe) {
  TimedServices services(base);
  services.largest_block = std::uint64_t{1} << 36U;
  const auto start = Clock::now();
  try {
    FatigueDriver(platform::NativeFileSystem(), services);
  } catch (const RunStopped&) {
    for (const auto& asked : services.asked)
      std::fprintf(stderr, "%d %s\n", asked.message, asked.text.c_str());
    return false;
  }
  const auto end = Clock::now();
  const ChildRun run{.seconds = Seconds(end - start),
                     .store_seconds = Seconds(services.nodes_begin - start),
                     .processor_seconds = ProcessorSeconds(),
                     .node_processor_seconds = services.processor_behind - services.processor_before,
                     .peak_bytes = 0};
  return services.asked.empty() && write(pipe, &run, sizeof run) == sizeof run;
}

}  // namespace

// The peak of a process counts from its fork on, so the run is made in a fork of this small process, which
// asks for the peak afterwards.
std::optional<int> RunAsChild(int argc, char** argv) {
  if (argc != 4 || std::strcmp(argv[1], kChildSwitch) != 0) return std::nullopt;
  int ends[2];
  if (pipe(ends) != 0) return 1;
  const pid_t worker = fork();
  if (worker == 0) {
    omp_set_num_threads(std::atoi(argv[3]));
    std::_Exit(MakeRun(argv[2], ends[1]) ? 0 : 1);
  }
  int status = 0;
  rusage usage{};
  ChildRun run;
  if (worker < 0 || wait4(worker, &status, 0, &usage) != worker || status != 0) return 1;
  if (read(ends[0], &run, sizeof run) != sizeof run) return 1;
  run.peak_bytes = static_cast<std::uint64_t>(usage.ru_maxrss) * 1024U;
  return std::fwrite(&run, sizeof run, 1, stdout) == 1 ? 0 : 1;
}

ChildRun RunInChild(const std::string& base, int threads) {
  const std::string command =
      Formatted("'%s' %s '%s' %d", platform::ProgramPath().c_str(), kChildSwitch, base.c_str(), threads);
  const std::unique_ptr<FILE, int (*)(FILE*)> output(popen(command.c_str(), "r"), pclose);
  ChildRun run;
  if (!output || std::fread(&run, sizeof run, 1, output.get()) != 1) {
    throw std::runtime_error("no regular end: " + command);
  }
  return run;
}

}  // namespace zentor::bench
