// Load histories for the figures, the same in every run.
#pragma once

#include <cmath>
#include <cstddef>
#include <numbers>
#include <random>
#include <vector>

namespace zentor::bench {

inline std::vector<float> WhiteNoise(std::size_t n) {
  std::mt19937_64 random(1);
  std::normal_distribution<float> normal;
  std::vector<float> v(n);
  for (float& x : v) x = normal(random);
  return v;
}

inline std::vector<float> RandomWalk(std::size_t n) {
  std::mt19937_64 random(2);
  std::normal_distribution<float> normal;
  std::vector<float> v(n);
  double sum = 0.0;
  for (float& x : v) x = static_cast<float>(sum += normal(random));
  return v;
}

// A narrow-band signal with about 40 samples between turns.
inline std::vector<float> SmoothSignal(std::size_t n) {
  std::vector<float> v(n);
  for (std::size_t i = 0; i < n; ++i) {
    const double t = static_cast<double>(i) * 2.0 * std::numbers::pi / 80.0;
    v[i] = static_cast<float>(std::sin(t) * (1.0 + 0.5 * std::sin(t * 0.0137)) +
                              0.4 * std::sin(t * 0.0313 + 1.0));
  }
  return v;
}

// Noise with a memory of about 20 points, as the loads of a structure.
inline std::vector<float> ColouredNoise(std::size_t n, unsigned seed) {
  std::mt19937 random(seed);
  std::normal_distribution<float> normal;
  std::vector<float> v(n);
  float x = 0.0F;
  for (float& out : v) out = x = 0.95F * x + normal(random);
  return v;
}

}  // namespace zentor::bench
