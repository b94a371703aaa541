#include "figures/measurements.h"

namespace zentor::bench {

std::vector<Figure> MeasureNodeHistory(const ReportOptions& /*options*/) { return {}; }

}  // namespace zentor::bench
