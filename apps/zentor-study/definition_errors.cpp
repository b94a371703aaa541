#include "definition_errors.h"

#include <fmt/format.h>

#include <algorithm>

namespace zentor::companion {

namespace {

constexpr std::size_t kMostShown = 20;
constexpr std::size_t kMostOfOneTable = 5;
constexpr std::size_t kMostKept = 1000;

}  // namespace

DefinitionErrors::Place DefinitionErrors::Add(const DefinitionError& error) {
  ++count_;
  if (kept_.size() < kMostKept) kept_.push_back({error});
  return kept_.size() - 1;
}

void DefinitionErrors::AddOfTable(const DefinitionError& error, std::size_t nth) {
  if (nth <= kMostOfOneTable) {
    Add(error);
  } else {
    ++count_;
  }
}

void DefinitionErrors::Withdraw(Place place) {
  if (kept_[place].withdrawn) return;
  kept_[place].withdrawn = true;
  --count_;
}

// By file, the others in the order in which they came up, and by line.
std::vector<const DefinitionError*> DefinitionErrors::InOrder() const {
  std::vector<const DefinitionError*> order;
  std::vector<std::string> files = {definition_};
  for (const Entry& entry : kept_) {
    if (entry.withdrawn) continue;
    order.push_back(&entry.error);
    const bool known = std::find(files.begin(), files.end(), entry.error.file()) != files.end();
    if (!known) files.push_back(entry.error.file());
  }
  const auto rank = [&files](const DefinitionError* error) {
    return std::pair(std::find(files.begin(), files.end(), error->file()) - files.begin(), error->line());
  };
  std::stable_sort(order.begin(), order.end(),
                   [&rank](const auto* a, const auto* b) { return rank(a) < rank(b); });
  return order;
}

void DefinitionErrors::Throw() const {
  const std::vector<const DefinitionError*> order = InOrder();
  const std::size_t shown = std::min(kMostShown, order.size());
  std::string lines;
  for (std::size_t i = 0; i < shown; ++i) lines += fmt::format("{}{}", i == 0 ? "" : "\n", order[i]->what());
  if (count_ > shown) lines += fmt::format("\nand {} more", count_ - shown);
  throw DefinitionError(lines);
}

}  // namespace zentor::companion
