// An error in what the user wrote: where it is, what is there, what was expected.
#pragma once

#include <memory>
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

  const std::string& file() const { return *file_; }
  int line() const { return line_; }

 private:
  friend class DefinitionErrors;
  // Several errors in one, a line each; the lines are printable already.
  explicit DefinitionError(const std::string& lines);

  std::shared_ptr<const std::string> file_;  // shared: a copy of an exception must not throw
  int line_ = 0;
};

// The candidate closest to what was typed, empty when none is close.
std::string_view Closest(std::string_view typed, std::span<const std::string_view> candidates);
// "; did you mean 'cycles'?" for the closest candidate, empty when none is close.
std::string DidYouMean(std::string_view typed, std::span<const std::string_view> candidates);

// "'a', 'b' or 'c'".
std::string OneOf(std::span<const std::string_view> names);

}  // namespace zentor::companion
