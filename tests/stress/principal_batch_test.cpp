#include "stress/principal_batch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "stress/principal_stress.h"

namespace zentor {
namespace {

struct Batch {
  explicit Batch(const std::vector<StressTensor>& tensors) {
    for (std::size_t c = 0; c < 6; ++c) {
      for (const StressTensor& tensor : tensors) components[c].push_back(tensor[c]);
    }
  }
  PrincipalValues At(std::size_t i) const { return {values[0][i], values[1][i], values[2][i]}; }
  void Solve() {
    std::array<std::span<const double>, 6> in;
    std::array<std::span<double>, 3> out;
    for (std::size_t c = 0; c < 6; ++c) in[c] = components[c];
    for (std::size_t k = 0; k < 3; ++k) {
      values[k].assign(components[0].size(), -7.0);
      out[k] = values[k];
    }
    PrincipalBatch(in, out, VectorForm::kBaseline);
  }
  std::array<std::vector<double>, 6> components;
  std::array<std::vector<double>, 3> values;
};

// General, close to repeated values, repeated, hydrostatic with a little shear, tiny, huge, damaged.
std::vector<StressTensor> Tensors(std::size_t count, std::mt19937& random) {
  std::normal_distribution<double> normal(0.0, 60.0);
  std::vector<StressTensor> tensors(count);
  for (std::size_t i = 0; i < count; ++i) {
    StressTensor& s = tensors[i];
    const double x = normal(random);
    for (double& component : s) component = normal(random);
    if (i % 7 == 1) s = {x, x, x * (1.0 + 1e-9 * normal(random)), 0.0, 1e-7 * normal(random), 0.0};
    if (i % 7 == 2) s = {x, 0.0, x, 0.0, x, 0.0};
    if (i % 7 == 3) s = {1e6 + s[0], 1e6 + s[1], 1e6 + s[2], s[3], s[4], s[5]};
    if (i % 7 == 4) std::for_each(s.begin(), s.end(), [](double& c) { c *= 1e-5; });
    if (i % 7 == 5) std::for_each(s.begin(), s.end(), [](double& c) { c *= 1e60; });
    if (i % 700 == 6) s[i % 6] = std::numeric_limits<double>::quiet_NaN();
  }
  return tensors;
}

TEST(PrincipalBatch, WithinItsBoundOfTheScalarValues) {
  std::mt19937 random(7);
  const std::vector<StressTensor> tensors = Tensors(20000, random);
  Batch batch(tensors);
  batch.Solve();
  for (std::size_t i = 0; i < tensors.size(); ++i) {
    const PrincipalValues expected = PrincipalGeneral(tensors[i]);
    const PrincipalValues found = batch.At(i);
    // The values are at 2 sqrt(-q) cos(u + 120 deg k) from their mean: the range is at least 1.5 sqrt(-q).
    const double mean = (expected[0] + expected[1] + expected[2]) / 3.0;
    const double range = *std::max_element(expected.begin(), expected.end()) -
                         *std::min_element(expected.begin(), expected.end());
    const double bound = 0x1p-41 * 4.0 / 3.0 * range + 0x1p-50 * std::abs(mean);
    for (std::size_t k = 0; k < 3; ++k) {
      if (std::isnan(expected[k])) {
        EXPECT_TRUE(std::isnan(found[k])) << "tensor " << i;
      } else {
        ASSERT_LE(std::abs(found[k] - expected[k]), bound) << "tensor " << i << " value " << k;
      }
    }
  }
}

}  // namespace
}  // namespace zentor
