// Why a line is not that of a CSV table: what people and programs write instead of commas, points and plain
// values. A text is empty where the line shows none of it.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace zentor::companion {

inline constexpr std::string_view kCarriageReturnsAlone =
    "the lines end with carriage returns (CR) alone, expected line ends LF or CR LF";

// From the first bytes of a text file: whether they are UTF-16.
std::string EncodingFault(std::string_view start);

// Of a header line, split at its commas, that does not name the columns. `expected` lists them.
std::string HeaderFault(std::string_view line, std::span<const std::string_view> fields,
                        std::string_view expected);

// Of a row with more fields than the header line has names.
std::string SurplusFault(std::span<const std::string_view> fields, std::size_t names);

// What to do about a field that is no number; begins with "; ".
std::string NumberHint(std::string_view field);

}  // namespace zentor::companion
