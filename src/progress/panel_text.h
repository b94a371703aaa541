// Text as a terminal shows it: characters, their widths, cutting and padding to columns.
#pragma once

#include <string>
#include <string_view>

#include "platform/text_columns.h"

namespace zentor::progress {

// One line of printable characters: line ends, tabs and control characters become blanks, runs of blanks one
// blank, blanks at both ends vanish; what could reorder or hide a line (format characters) is dropped; what
// is no character at all becomes U+FFFD. So no text can send commands to the terminal.
std::u32string Printable(std::u16string_view text);
std::u32string PrintableUtf8(std::string_view text);

using platform::TextWidth;
using platform::Wrap;

// The longest start of the text that fits, with "..." at its end when something was cut. Never wider than
// `width`; a width below 4 cuts without a mark.
std::u32string CutEnd(std::u32string_view text, int width);
// As CutEnd, but the middle gives way: both ends of a path tell more than its middle.
std::u32string CutMiddle(std::u32string_view text, int width);
// Cut to the width, then filled with blanks up to it.
std::u32string Pad(std::u32string_view text, int width);

}  // namespace zentor::progress
