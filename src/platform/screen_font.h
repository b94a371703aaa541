// The built-in font of drawing surfaces: dot-matrix glyphs of the printable ASCII characters.
#pragma once

#include <array>
#include <cstdint>

namespace zentor::platform {

inline constexpr int kGlyphColumns = 5;
inline constexpr int kGlyphRows = 8;  // the eighth row lies below the base line
inline constexpr char16_t kFirstGlyph = 0x20;

// The columns of a glyph from left to right; bit 0 is the top row.
using Glyph = std::array<std::uint8_t, kGlyphColumns>;

// The glyph of a character; null for one without.
const Glyph* GlyphOf(char16_t character);

}  // namespace zentor::platform
