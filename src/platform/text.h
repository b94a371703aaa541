// Conversions between UTF-8 (paths, terminal, TOML), UTF-16 (wide text of the shell and the catalog) and
// single characters.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace zentor::platform {

// Bytes that are not UTF-8 become the lone surrogates U+DC80..U+DCFF and turn back into the same bytes in
// ToUtf8, so that every file name survives the round trip.
std::u16string ToWide(std::string_view utf8);
std::string ToUtf8(std::u16string_view wide);

// Where the first byte is that belongs to no printable character of UTF-8 (control characters C0, DEL and C1,
// bytes that are not UTF-8); npos when there is none.
std::size_t FirstUnprintable(std::string_view text);
// The text for a terminal or a log: control characters, which could steer a terminal, become '?'. They are
// those below the blank, except the ones in `kept`, and 0x7F to 0x9F, as characters or as stray bytes.
std::string Printable(std::string_view utf8, std::string_view kept = {});
// The characters of a wide text; what is none (half a surrogate pair) becomes U+FFFD.
std::u32string Characters(std::u16string_view wide);
std::string ToUtf8(std::u32string_view characters);

// Puts the bytes of UTF-8 text together as they arrive. Bytes that are not UTF-8 are dropped.
class Utf8Decoder {
 public:
  // The character that this byte completes.
  std::optional<char32_t> Take(char byte);

 private:
  std::string bytes_;  // of a character that is not complete yet
};

// The small letter of a capital one, of the Latin, Latin-1 and Cyrillic letters; other characters as they
// are.
char32_t LowerCase(char32_t character);

// Each byte becomes one wide character.
std::u16string WidenBytes(std::string_view bytes);

}  // namespace zentor::platform
