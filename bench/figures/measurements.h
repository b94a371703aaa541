// The parts of the performance report, in the order of its table.
#pragma once

#include "figures/figure.h"

namespace zentor::bench {

std::vector<Figure> MeasureRainflow(const ReportOptions& options);
std::vector<Figure> MeasurePrincipalStress(const ReportOptions& options);
std::vector<Figure> MeasurePairs(const ReportOptions& options);
std::vector<Figure> MeasureNodeHistory(const ReportOptions& options);
std::vector<Figure> MeasureStoreBuilding(const ReportOptions& options);
std::vector<Figure> MeasureNodeLines(const ReportOptions& options);
std::vector<Figure> MeasureWholeRuns(const ReportOptions& options);

}  // namespace zentor::bench
