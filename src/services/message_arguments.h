// Arguments of catalog messages that are not plain numbers.
#pragma once

#include <string_view>
#include <vector>

namespace zentor {

// A text as a message takes it: one code unit per argument, ended by 0.
inline std::vector<float> TextArguments(std::u16string_view text) {
  std::vector<float> arguments;
  arguments.reserve(text.size() + 1);
  for (const char16_t unit : text) arguments.push_back(static_cast<float>(unit));
  arguments.push_back(0.0F);
  return arguments;
}

}  // namespace zentor
