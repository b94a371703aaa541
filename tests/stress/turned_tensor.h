// Tensors of known principal values in any orientation.
#pragma once

#include <cmath>
#include <random>

#include "stress/principal_stress.h"

namespace zentor::test {

using Rotation = std::array<std::array<double, 3>, 3>;

inline Rotation RandomRotation(std::mt19937& random) {
  std::normal_distribution<double> normal;
  double w = normal(random), x = normal(random), y = normal(random), z = normal(random);
  const double length = std::sqrt(w * w + x * x + y * y + z * z);
  w /= length, x /= length, y /= length, z /= length;
  return {{{1 - 2 * (y * y + z * z), 2 * (x * y - w * z), 2 * (x * z + w * y)},
           {2 * (x * y + w * z), 1 - 2 * (x * x + z * z), 2 * (y * z - w * x)},
           {2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y)}}};
}

// Diagonal d turned: the principal values are known without solving anything.
inline StressTensor Turned(const PrincipalValues& d, const Rotation& r) {
  const auto entry = [&](int i, int j) {
    return r[i][0] * d[0] * r[j][0] + r[i][1] * d[1] * r[j][1] + r[i][2] * d[2] * r[j][2];
  };
  return {entry(0, 0), entry(1, 1), entry(2, 2), entry(0, 1), entry(0, 2), entry(1, 2)};
}

// As stress files hold it.
inline StressTensor InSinglePrecision(StressTensor s) {
  for (double& c : s) c = static_cast<float>(c);
  return s;
}

}  // namespace zentor::test
