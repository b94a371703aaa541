// Text in the columns of a terminal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zentor::platform {

// Columns that a character takes: 0 for combining marks and invisible format characters, 2 for East Asian
// wide and full-width characters and pictographs, else 1. Control characters are the caller's business and
// count as 1. Independent of the process's locale. Source: Unicode Standard Annex 11, categories W and F;
// general categories Mn and Cf, of the scripts that occur in the message texts and their neighbours.
int CharacterWidth(char32_t character);

int TextWidth(std::u32string_view text);

// Number of characters from the start of the text that fit.
std::size_t Fitting(std::u32string_view text, int width);

// The text, which holds no line feed, in lines that fit: broken at blanks, and between two characters of
// which one is wide unless it is Korean or punctuation that belongs to the other (after Unicode Standard
// Annex 14); a longer word is cut. No line but the first begins and none ends with a blank. A width below 1
// counts as 1.
std::vector<std::u32string> Wrap(std::u32string_view text, int width);

}  // namespace zentor::platform
