#include "authoring/extended_options_file.h"

#include <algorithm>
#include <string_view>

#include "platform/text.h"

namespace zentor {

namespace {

// Escapes quotes, backslashes and whatever is no printable UTF-8.
std::string Quoted(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string out = "\"";
  while (!text.empty()) {
    const std::size_t printable = std::min(platform::FirstUnprintable(text), text.size());
    for (const char c : text.substr(0, printable)) {
      if (c == '"' || c == '\\') out += '\\';
      out += c;
    }
    text.remove_prefix(printable);
    if (text.empty()) break;
    const auto byte = static_cast<unsigned char>(text.front());
    out += {'\\', 'x', kDigits[byte >> 4U], kDigits[byte & 15U]};
    text.remove_prefix(1);
  }
  return out + '"';
}

}  // namespace

std::string ExtendedOptionsText(const ExtendedOptions& options) {
  using namespace ftx_format;
  std::string text = std::string(kFormatName) + ' ' + std::string(kVersion) + '\n';
  for (const SwitchKey& key : kSwitches) {
    text += std::string(key.key) + ' ' + std::string(options.*key.member ? key.on : key.off) + '\n';
  }
  for (const TextKey& key : kTexts) {
    if (!(options.*key.member).empty())
      text += std::string(key.key) + ' ' + Quoted(options.*key.member) + '\n';
  }
  return text;
}

}  // namespace zentor
