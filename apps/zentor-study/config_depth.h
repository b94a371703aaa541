// How deep the text of a definition nests, found without recursion before it is parsed.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zentor::companion {

inline constexpr int kMostNesting = 64;  // parts of a key, lists and tables inside each other

struct DepthFault {
  int line = 0;
  std::string text;
};

// The first place of a TOML text where a dotted key or the values inside each other exceed kMostNesting: the
// parser goes a call deeper for each and the stack ends somewhere.
std::optional<DepthFault> FindDepthFault(std::string_view toml);

}  // namespace zentor::companion
