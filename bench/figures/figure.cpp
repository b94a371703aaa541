#include "figures/figure.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdarg>
#include <cstddef>
#include <cstdio>

namespace zentor::bench {
namespace {

double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

}  // namespace

std::string Formatted(const char* format, ...) {
  std::array<char, 512> text{};
  va_list values;
  va_start(values, format);
  std::vsnprintf(text.data(), text.size(), format, values);
  va_end(values);
  return text.data();
}

void Announce(const std::string& what) { std::fprintf(stderr, "measuring: %s\n", what.c_str()); }

double SecondsOf(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

Paired TimePaired(int rounds, const std::function<void()>& reference, const std::function<void()>& fast) {
  std::vector<double> slow_seconds;
  std::vector<double> fast_seconds;
  std::vector<double> ratios;
  for (int round = 0; round < rounds; ++round) {
    const bool reference_first = round % 2 == 0;
    if (reference_first) slow_seconds.push_back(SecondsOf(reference));
    fast_seconds.push_back(SecondsOf(fast));
    if (!reference_first) slow_seconds.push_back(SecondsOf(reference));
    ratios.push_back(slow_seconds.back() / fast_seconds.back());
  }
  return {Median(slow_seconds), Median(fast_seconds), Median(ratios)};
}

}  // namespace zentor::bench
