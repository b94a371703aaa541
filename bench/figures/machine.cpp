#include "figures/machine.h"

#include <omp.h>

#include <array>
#include <cstdlib>
#include <fstream>

#include "figures/figure.h"

namespace zentor::bench {
namespace {

// What follows the colon in the first line of the file that begins with `name`; empty when there is none.
std::string ValueIn(const char* path, const std::string& name) {
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    const std::size_t colon = line.find(':');
    if (line.compare(0, name.size(), name) != 0 || colon == std::string::npos) continue;
    const std::size_t value = line.find_first_not_of(" \t", colon + 1);
    if (value != std::string::npos) return line.substr(value);
  }
  return {};
}

const char* Compiler() {
#ifdef __clang__
  return __VERSION__;  // says "Clang" itself
#else
  return "GCC " __VERSION__;
#endif
}

}  // namespace

std::string DescribeMachine() {
  const std::string processor = ValueIn("/proc/cpuinfo", "model name");
  const double kibibytes = std::atof(ValueIn("/proc/meminfo", "MemTotal").c_str());
  std::array<double, 1> busy{};
  if (getloadavg(busy.data(), 1) != 1) busy[0] = -1.0;
  return Formatted("%s, %d cores, %.0f GiB memory, %s; load average before the first measurement %.1f",
                   processor.empty() ? "unknown processor" : processor.c_str(), omp_get_num_procs(),
                   kibibytes / 1048576.0, Compiler(), busy[0]);
}

}  // namespace zentor::bench
