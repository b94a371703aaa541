#include "definition_error.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <vector>

namespace zentor::companion {

namespace {

std::string At(const std::string& file, int line) {
  return line > 0 ? fmt::format("{}:{}", file, line) : file;
}

// One line whatever was typed: a value may hold line ends, NULs and the commands of a terminal.
std::string Printable(std::string_view text) {
  std::string line;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    const bool control = byte < 0x20 || byte == 0x7f;
    line += control ? fmt::format("\\x{:02x}", byte) : std::string(1, c);
  }
  return line;
}

// Smallest number of inserted, dropped or changed characters that turn one text into the other.
std::size_t EditDistance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t changed = diagonal + (a[i] == b[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({row[j] + 1, row[j + 1] + 1, changed});
    }
  }
  return row[b.size()];
}

}  // namespace

DefinitionError::DefinitionError(const std::string& file, int line, std::string_view what,
                                 std::string_view found, std::string_view wanted)
    : DefinitionError(file, line, fmt::format("{} is {}, expected {}", what, found, wanted)) {}

DefinitionError::DefinitionError(const std::string& file, int line, std::string_view message)
    : std::runtime_error(Printable(fmt::format("{}: {}", At(file, line), message))),
      file_(std::make_shared<const std::string>(file)),
      line_(line) {}

DefinitionError::DefinitionError(const std::string& lines)
    : std::runtime_error(lines), file_(std::make_shared<const std::string>()) {}

std::string_view Closest(std::string_view typed, std::span<const std::string_view> candidates) {
  std::string_view best;
  std::size_t best_distance = std::numeric_limits<std::size_t>::max();
  for (const std::string_view candidate : candidates) {
    const std::size_t distance = EditDistance(typed, candidate);
    if (distance < best_distance) {
      best = candidate;
      best_distance = distance;
    }
  }
  const std::size_t close = std::max<std::size_t>(2, typed.size() / 3);
  return best_distance <= close ? best : std::string_view{};
}

std::string DidYouMean(std::string_view typed, std::span<const std::string_view> candidates) {
  const std::string_view best = Closest(typed, candidates);
  return best.empty() ? std::string() : fmt::format("; did you mean '{}'?", best);
}

std::string OneOf(std::span<const std::string_view> names) {
  std::string text;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i > 0) text += i + 1 == names.size() ? " or " : ", ";
    text += fmt::format("'{}'", names[i]);
  }
  return text;
}

}  // namespace zentor::companion
