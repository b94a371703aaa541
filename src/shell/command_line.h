// The command line: tokens, switches, the study name.
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace zentor {

inline constexpr int kTokenSlots = 10;           // slot 0 is the program's own
inline constexpr std::size_t kTokenLimit = 255;  // characters of a token

struct CommandLine {
  std::array<std::u16string, kTokenSlots> tokens;  // slot 0 "generic", 1 to 9 the tokens in order
  int count = 1;                                   // tokens in use, slot 0 included
  bool hidden = false;                             // "-silent", "-batch"
  long parent_window = 0;                          // "-HWND"
  bool too_long = false;                           // more than nine tokens or one over kTokenLimit characters
};

// Splits the text after the program's own name at blanks, double quotes group, and acts on the first switch.
CommandLine ParseCommandLine(std::u16string_view text);

// The arguments of a native main as one wide command line: arguments that hold a blank are quoted, those that
// hold a double quote stand as they are. A quoted part ends with its argument at the latest.
std::u16string JoinArguments(int count, const char* const* arguments);

// The study name in an "X.BAT": the text before the first carriage return without trailing blanks (the whole
// text when there is none), cut at the first remaining line end behind its first character. Each byte is one
// character.
std::u16string StudyNameFromBatch(std::string_view bytes);

// A decimal integer at the start of the text: leading blanks and a sign allowed, 0 without digits. Saturates.
long LeadingInteger(std::u16string_view text);

}  // namespace zentor
