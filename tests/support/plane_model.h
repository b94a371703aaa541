// Small models of squares and stresses given by node.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <numeric>
#include <vector>

#include "authoring/study_definition.h"

namespace zentor::test {

// Squares of material 1 side by side over nodes of these ascending numbers, four to a square.
inline StudyModel PlaneModel(const std::vector<int>& numbers) {
  StudyModel model;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const std::size_t square = i / 4;
    const std::size_t corner = i % 4;
    const float left = 20.0F * static_cast<float>(square);
    const float x = corner == 1 || corner == 2 ? left + 10.0F : left;
    model.nodes.push_back({numbers[i], {x, corner < 2 ? 0.0F : 10.0F, 0.0F}, 0});
  }
  for (std::size_t first = 0; first < numbers.size(); first += 4) {
    const auto place = static_cast<std::uint32_t>(model.element_nodes.size());
    model.elements.push_back({static_cast<int>(model.elements.size()) + 1, 42, 1, 1, 4, place});
    for (std::size_t i = first; i < first + 4; ++i)
      model.element_nodes.push_back(numbers[std::min(i, numbers.size() - 1)]);
  }
  return model;
}

inline std::vector<int> NodesUpTo(int highest) {
  std::vector<int> numbers(static_cast<std::size_t>(highest));
  std::iota(numbers.begin(), numbers.end(), 1);
  return numbers;
}

// A stress case by node; elements that share a node agree on it.
inline StressCase CaseOf(int number, const StudyModel& model,
                         const std::function<std::array<float, 6>(int node)>& stress) {
  StressField field;
  for (const int node : model.element_nodes) {
    const std::array<float, 6> values = stress(node);
    field.values.insert(field.values.end(), values.begin(), values.end());
  }
  return {"case", number, {field}, {}};
}
inline StressCase Uniaxial(int number, const StudyModel& model, const std::function<double(int node)>& sx) {
  return CaseOf(number, model, [&](int node) { return std::array<float, 6>{static_cast<float>(sx(node))}; });
}

}  // namespace zentor::test
