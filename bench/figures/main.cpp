// Measures every figure of the performance report and prints one table. `--quick`: smaller inputs.
#include <cstdio>
#include <cstring>

#include "figures/measurements.h"

namespace {

using namespace zentor::bench;

constexpr Measurement kMeasurements[] = {MeasureRainflow, MeasurePrincipalStress, MeasurePairs,
                                         MeasureNodeHistory};

void Print(const Figure& figure) {
  const char* const verdict = Reaches(figure, figure.stretch) ? "stretch"
                              : Reaches(figure, figure.goal)  ? "met"
                                                              : "missed";
  std::printf("| %s | %s | %.2f %s | %g | %g | %s | %s |\n", figure.name.c_str(), figure.reference.c_str(),
              figure.measured, figure.unit.c_str(), figure.goal, figure.stretch, verdict,
              figure.note.c_str());
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  const ReportOptions options{argc > 1 && std::strcmp(argv[1], "--quick") == 0};
  int count = 0;
  int met = 0;
  std::puts(
      "| figure | reference | measured | goal | stretch | result | absolute "
      "|\n|---|---|---|---|---|---|---|");
  for (const Measurement measure : kMeasurements) {
    for (const Figure& figure : measure(options)) {
      Print(figure);
      ++count;
      met += Reaches(figure, figure.goal) ? 1 : 0;
    }
  }
  std::printf("goals met: %d of %d\n", met, count);
  return 0;
}
