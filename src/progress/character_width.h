// How many columns of a terminal a character takes.
#pragma once

namespace zentor::progress {

// 0 for combining marks and invisible format characters, 2 for East Asian wide and full-width characters and
// pictographs, else 1. Control characters are the caller's business and count as 1. Independent of the
// process's locale. Source: Unicode Standard Annex 11, categories W and F; general categories Mn and Cf, of
// the scripts that occur in the message texts and their neighbours.
int CharacterWidth(char32_t character);

}  // namespace zentor::progress
