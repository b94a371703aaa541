// The answers that a user can choose by a key, in the user's language.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace zentor::platform {

// A text that marks its key by brackets, "[Y]es" or "[Y] はい"; without any its first letter is the
// key.
struct AnswerLabel {
  std::u32string shown;  // with the brackets
  std::u32string word;   // without them, and without a key that is not a letter of the word
  char32_t key = 0;      // in lower case
  char32_t latin = 0;    // the key of this answer in every language, in lower case
};

AnswerLabel LabelOf(std::u32string_view text, char32_t latin);

// The answer that a typed character stands for. The keys of the language come first, then first letters of
// its words, then the keys of every language; last the character on the same key of a keyboard: Russian and
// Korean keyboards type no Latin letters until they are switched over. Case and full-width forms do not
// matter.
std::optional<std::size_t> AnswerOfKey(std::span<const AnswerLabel> answers, char32_t typed);

}  // namespace zentor::platform
