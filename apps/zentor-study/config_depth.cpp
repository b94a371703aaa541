#include "config_depth.h"

#include <fmt/format.h>

#include <algorithm>

namespace zentor::companion {

bool BeginsSpan(char c) { return c == '#' || c == '"' || c == '\''; }

std::size_t EndOfSpan(std::string_view toml, std::size_t start) {
  const char quote = toml[start];
  const std::string_view rest = toml.substr(start);
  if (quote == '#') return std::min(toml.find('\n', start), toml.size());
  const std::string three(3, quote);
  const bool long_text = rest.starts_with(three);
  std::string_view closing = three;
  if (!long_text) closing = closing.substr(0, 1);
  for (std::size_t i = start + closing.size(); i < toml.size(); ++i) {
    if (toml[i] == '\n' && !long_text) return i;
    if (toml[i] == '\\' && quote == '"') {
      ++i;
    } else if (toml.substr(i).starts_with(closing)) {
      return i + closing.size();
    }
  }
  return long_text ? std::string_view::npos : toml.size();
}

std::size_t FindUnclosedText(std::string_view toml) {
  for (std::size_t i = 0; i < toml.size();) {
    const std::size_t end = BeginsSpan(toml[i]) ? EndOfSpan(toml, i) : i + 1;
    if (end == std::string_view::npos) return i;
    i = end;
  }
  return std::string_view::npos;
}

std::optional<DepthFault> FindDepthFault(std::string_view toml) {
  int line = 1, parts = 1, depth = 0;
  for (std::size_t i = 0; i < toml.size();) {
    const char c = toml[i];
    const std::size_t next = BeginsSpan(c) ? std::min(EndOfSpan(toml, i), toml.size()) : i + 1;
    if (c == '.') {
      ++parts;
    } else if (std::string_view("\n=,[]{}").find(c) != std::string_view::npos) {
      parts = 1;
    }
    if (c == '[' || c == '{') ++depth;
    if (c == ']' || c == '}') --depth;
    if (parts > kMostNesting) {
      return DepthFault{line, fmt::format("a key of more than {} parts", kMostNesting)};
    }
    if (depth > kMostNesting) {
      return DepthFault{line, fmt::format("more than {} lists or tables inside each other", kMostNesting)};
    }
    line += static_cast<int>(std::count(toml.begin() + static_cast<std::ptrdiff_t>(i),
                                        toml.begin() + static_cast<std::ptrdiff_t>(next), '\n'));
    i = next;
  }
  return std::nullopt;
}

}  // namespace zentor::companion
