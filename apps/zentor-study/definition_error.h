// An error in what the user wrote: where it is, what is there, what was expected.
#pragma once

#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace zentor::companion {

class DefinitionError : public std::runtime_error {
 public:
  // "FILE:LINE: WHAT is FOUND, expected WANTED". line 0 when the file as a whole is meant.
  DefinitionError(const std::string& file, int line, std::string_view what, std::string_view found,
                  std::string_view wanted);
  // "FILE:LINE: MESSAGE".
  DefinitionError(const std::string& file, int line, std::string_view message);
};

// "; did you mean 'cycles'?" for the candidate closest to what was typed, empty when none is close.
std::string DidYouMean(std::string_view typed, std::span<const std::string_view> candidates);

// "'a', 'b' or 'c'".
std::string OneOf(std::span<const std::string_view> names);

}  // namespace zentor::companion
