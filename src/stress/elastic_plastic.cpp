#include "stress/elastic_plastic.h"

#include <algorithm>

namespace zentor {

double SmAtTemperature(const SmTCurve& curve, double temperature) {
  const int last = std::min(curve.count, kMaxSmTPoints);
  if (last < 1) return 0.0;
  if (temperature <= curve.temperature[1]) return curve.sm[1];
  if (temperature >= curve.temperature[last]) return curve.sm[last];
  // The first point is below and the last above, so the search ends at 2 .. last, between two temperatures
  // that differ, in whatever order the points are. (NaN passes every point and comes back as NaN.)
  int k = 2;
  while (k < last && curve.temperature[k] < temperature) ++k;
  const double t = curve.temperature[k - 1];
  const double sm = curve.sm[k - 1];
  return sm + (temperature - t) * (curve.sm[k] - sm) / (curve.temperature[k] - t);
}

double ElasticPlasticFactor(double sn, double sm, double m, double n) {
  if (sn <= 3.0 * sm) return 1.0;
  if (sn < 3.0 * m * sm) return 1.0 + (1.0 - n) / (n * (m - 1.0)) * (sn / (3.0 * sm) - 1.0);
  return 1.0 / n;
}

bool IsNonIncreasing(const SmTCurve& curve) {
  const int last = std::min(curve.count, kMaxSmTPoints);
  for (int k = 2; k <= last; ++k) {
    if (curve.sm[k] > curve.sm[k - 1]) return false;
  }
  return true;
}

}  // namespace zentor
