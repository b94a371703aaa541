// How deep the text of a definition nests, found without recursion before it is parsed.
#pragma once

#include <cstddef>
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

// Whether a text or comment begins with the character.
bool BeginsSpan(char c);
// Where the text or comment that begins at `start` ends: behind its closing quotes, or at the end of its
// line; npos for a text of several lines that does not end.
std::size_t EndOfSpan(std::string_view toml, std::size_t start);
// Where the text of several lines begins that does not end; npos when there is none.
std::size_t FindUnclosedText(std::string_view toml);

}  // namespace zentor::companion
