// Measures the figures of the performance report and prints one table. `--quick`: smaller inputs; names of
// parts: only these.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <iterator>
#include <optional>
#include <span>
#include <string>

#include "figures/child_run.h"
#include "figures/machine.h"
#include "figures/measurements.h"

namespace {

using namespace zentor::bench;

struct Part {
  const char* name;
  Measurement measure;
};
constexpr Part kParts[] = {{"rainflow", MeasureRainflow},   {"principal", MeasurePrincipalStress},
                           {"pairs", MeasurePairs},         {"history", MeasureNodeHistory},
                           {"store", MeasureStoreBuilding}, {"lines", MeasureNodeLines},
                           {"runs", MeasureWholeRuns}};

// A text as a cell of the table.
std::string Cell(const std::string& text) {
  std::string cell;
  for (const char c : text) {
    if (c == '|') cell.push_back('\\');
    cell.push_back(c);
  }
  return cell;
}

void Print(const Figure& figure) {
  const char* const verdict = Reaches(figure, figure.stretch) ? "stretch"
                              : Reaches(figure, figure.goal)  ? "met"
                                                              : "missed";
  std::printf("| %s | %s | %.2f %s | %g | %g | %s | %s |\n", Cell(figure.name).c_str(),
              Cell(figure.reference).c_str(), figure.measured, figure.unit.c_str(), figure.goal,
              figure.stretch, verdict, Cell(figure.note).c_str());
  std::fflush(stdout);
}

bool IsPart(const char* name) {
  return std::any_of(std::begin(kParts), std::end(kParts),
                     [name](const Part& part) { return std::strcmp(part.name, name) == 0; });
}

// All parts, or those that are named.
void Report(const ReportOptions& options, std::span<char* const> names) {
  int count = 0;
  int met = 0;
  std::printf("%s\n\n", DescribeMachine().c_str());
  std::puts(
      "| figure | reference | measured | goal | stretch | result | absolute "
      "|\n|---|---|---|---|---|---|---|");
  for (const Part& part : kParts) {
    const bool wanted = names.empty() || std::any_of(names.begin(), names.end(), [&part](const char* name) {
                          return std::strcmp(part.name, name) == 0;
                        });
    if (!wanted) continue;
    for (const Figure& figure : part.measure(options)) {
      Print(figure);
      ++count;
      met += Reaches(figure, figure.goal) ? 1 : 0;
    }
  }
  std::printf("goals met: %d of %d\n", met, count);
}

}  // namespace

int main(int argc, char** argv) {
  if (const std::optional<int> code = RunAsChild(argc, argv)) return *code;
  std::span<char* const> names(argv + 1, static_cast<std::size_t>(argc - 1));
  const bool quick = !names.empty() && std::strcmp(names.front(), "--quick") == 0;
  if (quick) names = names.subspan(1);
  if (!std::all_of(names.begin(), names.end(), IsPart)) {
    std::fputs("usage: bench/report [--quick] [PART ...]\nparts:", stderr);
    for (const Part& part : kParts) std::fprintf(stderr, " %s", part.name);
    std::fputs("\n", stderr);
    return 2;
  }
  try {
    Report({quick}, names);
  } catch (const std::exception& fault) {
    std::fprintf(stderr, "%s\n", fault.what());
    return 1;
  }
  return 0;
}
