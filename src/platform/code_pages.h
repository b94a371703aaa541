// Code pages by locale name.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zentor::platform {

// Name of the code page that belongs to a locale name ("Japanese": "CP932"); empty for an unknown locale.
std::string_view CodePageOf(std::string_view locale);

// The text in that code page; nothing when one of its characters has no place there or the system does not
// know the code page.
std::optional<std::string> ToCodePage(std::u16string_view text, std::string_view code_page);
std::optional<std::u16string> FromCodePage(std::string_view bytes, std::string_view code_page);

// The text in that code page, when turning it back gives the same text.
std::optional<std::string> RoundTrip(std::u16string_view text, std::string_view code_page);

}  // namespace zentor::platform
