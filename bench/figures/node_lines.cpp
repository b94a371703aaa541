// Node lines of the all-nodes listing against snprintf of the same lines.
#include <array>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "figures/measurements.h"
#include "stress/pair_listing.h"

namespace zentor::bench {
namespace {

// Usage factors as runs give them: many nodes without damage, the others over some decades.
std::vector<double> UsageFactors(std::size_t count) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> decade(-7.0, 1.0);
  std::vector<double> usage(count);
  for (std::size_t i = 0; i < count; ++i) usage[i] = i % 8 == 0 ? 0.0 : std::pow(10.0, decade(random));
  return usage;
}

void AppendPrinted(std::string& lines, int node, double usage) {
  std::array<char, 400> line{};
  const int length = std::snprintf(line.data(), line.size(), "      %6d            %15.6f\n", node, usage);
  lines.append(line.data(), static_cast<std::size_t>(length));
}

}  // namespace

std::vector<Figure> MeasureNodeLines(const ReportOptions& options) {
  const std::size_t count = options.quick ? 200'000 : 1'000'000;
  Announce("node lines of the listing, " + std::to_string(count));
  const std::vector<double> usage = UsageFactors(count);
  const auto write = [&](std::string& lines, auto append) {
    lines.clear();
    for (std::size_t i = 0; i < count; ++i) append(lines, static_cast<int>(i) + 1, usage[i]);
  };
  std::string printed;
  std::string lines;
  write(printed, AppendPrinted);  // takes the memory of both texts before the clock runs
  write(lines, AppendAllNodesLine);
  const Paired paired = TimePaired(
      9, [&] { write(printed, AppendPrinted); }, [&] { write(lines, AppendAllNodesLine); });
  const bool same = lines == printed;
  return {{.name = "node lines of the all-nodes listing",
           .reference = "snprintf of the same lines",
           .measured = same ? paired.ratio : 0.0,
           .goal = 3,
           .stretch = 4,
           .note = Formatted("%.1f million lines/s, snprintf %.1f; %s",
                             static_cast<double>(count) / paired.seconds / 1e6,
                             static_cast<double>(count) / paired.reference_seconds / 1e6,
                             same ? "same bytes" : "BYTES DIFFER")}};
}

}  // namespace zentor::bench
