#include "platform/text.h"

#include <cstdint>

namespace zentor::platform {
namespace {

constexpr std::uint32_t kInvalid = 0xFFFFFFFFU;

bool IsContinuation(unsigned char c) { return (c & 0xC0U) == 0x80U; }

// Decodes one character at text[i] and moves i behind it; kInvalid leaves i alone.
std::uint32_t DecodeOne(std::string_view text, std::size_t& i) {
  const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(text[k]); };
  const unsigned char lead = byte(i);
  int length = 0;
  std::uint32_t code = 0;
  if (lead < 0x80U) {
    length = 1, code = lead;
  } else if (lead >= 0xC2U && lead < 0xE0U) {
    length = 2, code = lead & 0x1FU;
  } else if (lead >= 0xE0U && lead < 0xF0U) {
    length = 3, code = lead & 0x0FU;
  } else if (lead >= 0xF0U && lead < 0xF5U) {
    length = 4, code = lead & 0x07U;
  } else {
    return kInvalid;
  }
  if (i + length > text.size()) return kInvalid;
  for (int k = 1; k < length; ++k) {
    if (!IsContinuation(byte(i + k))) return kInvalid;
    code = (code << 6U) | (byte(i + k) & 0x3FU);
  }
  const bool overlong = (length == 3 && code < 0x800U) || (length == 4 && code < 0x10000U);
  if (overlong || code > 0x10FFFFU || (code >= 0xD800U && code < 0xE000U)) return kInvalid;
  i += length;
  return code;
}

void EncodeOne(std::string& out, std::uint32_t code) {
  const auto put = [&out](std::uint32_t b) { out.push_back(static_cast<char>(b)); };
  if (code < 0x80U) {
    put(code);
  } else if (code < 0x800U) {
    put(0xC0U | (code >> 6U)), put(0x80U | (code & 0x3FU));
  } else if (code < 0x10000U) {
    put(0xE0U | (code >> 12U)), put(0x80U | ((code >> 6U) & 0x3FU)), put(0x80U | (code & 0x3FU));
  } else {
    put(0xF0U | (code >> 18U)), put(0x80U | ((code >> 12U) & 0x3FU));
    put(0x80U | ((code >> 6U) & 0x3FU)), put(0x80U | (code & 0x3FU));
  }
}

bool IsControl(std::uint32_t code) { return code < 0x20U || (code >= 0x7FU && code < 0xA0U); }

}  // namespace

std::u16string ToWide(std::string_view utf8) {
  std::u16string out;
  out.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size();) {
    const std::uint32_t code = DecodeOne(utf8, i);
    if (code == kInvalid) {
      out.push_back(static_cast<char16_t>(0xDC00U + static_cast<unsigned char>(utf8[i++])));
    } else if (code < 0x10000U) {
      out.push_back(static_cast<char16_t>(code));
    } else {
      out.push_back(static_cast<char16_t>(0xD800U + ((code - 0x10000U) >> 10U)));
      out.push_back(static_cast<char16_t>(0xDC00U + ((code - 0x10000U) & 0x3FFU)));
    }
  }
  return out;
}

std::string ToUtf8(std::u16string_view wide) {
  std::string out;
  out.reserve(wide.size());
  for (std::size_t i = 0; i < wide.size(); ++i) {
    const std::uint32_t unit = wide[i];
    const bool high = unit >= 0xD800U && unit < 0xDC00U;
    if (high && i + 1 < wide.size() && wide[i + 1] >= 0xDC00U && wide[i + 1] < 0xE000U) {
      EncodeOne(out, 0x10000U + ((unit - 0xD800U) << 10U) + (wide[i + 1] - 0xDC00U));
      ++i;
    } else if (unit >= 0xDC80U && unit <= 0xDCFFU) {
      out.push_back(static_cast<char>(unit - 0xDC00U));
    } else {
      EncodeOne(out, unit >= 0xD800U && unit < 0xE000U ? 0xFFFDU : unit);
    }
  }
  return out;
}

std::size_t FirstUnprintable(std::string_view text) {
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t start = i;
    const std::uint32_t code = DecodeOne(text, i);
    if (code == kInvalid || IsControl(code)) return start;
  }
  return std::string_view::npos;
}

std::string Printable(std::string_view utf8, std::string_view kept) {
  std::string out;
  out.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size();) {
    const std::size_t start = i;
    std::uint32_t code = DecodeOne(utf8, i);
    if (code == kInvalid) code = static_cast<unsigned char>(utf8[i++]);
    if (IsControl(code) && kept.find(utf8[start]) == kept.npos) {
      out.push_back('?');
    } else {
      out.append(utf8.substr(start, i - start));
    }
  }
  return out;
}

std::u32string Characters(std::u16string_view wide) {
  std::u32string out;
  out.reserve(wide.size());
  for (std::size_t i = 0; i < wide.size(); ++i) {
    const char32_t unit = wide[i];
    const bool high = unit >= 0xD800U && unit < 0xDC00U;
    if (high && i + 1 < wide.size() && wide[i + 1] >= 0xDC00U && wide[i + 1] < 0xE000U) {
      out.push_back(0x10000U + ((unit - 0xD800U) << 10U) + (wide[++i] - 0xDC00U));
    } else {
      out.push_back(unit >= 0xD800U && unit < 0xE000U ? 0xFFFDU : unit);
    }
  }
  return out;
}

std::string ToUtf8(std::u32string_view characters) {
  std::string out;
  out.reserve(characters.size());
  for (const char32_t c : characters) EncodeOne(out, c);
  return out;
}

std::optional<char32_t> Utf8Decoder::Take(char byte) {
  if (!IsContinuation(static_cast<unsigned char>(byte))) bytes_.clear();
  bytes_.push_back(byte);
  std::size_t end = 0;
  const std::uint32_t code = DecodeOne(bytes_, end);
  if (code == kInvalid) {
    if (bytes_.size() >= 4) bytes_.clear();
    return std::nullopt;
  }
  bytes_.clear();
  return code;
}

char32_t LowerCase(char32_t c) {
  constexpr char32_t kMultiplication = 0xD7;
  const bool latin = (c >= U'A' && c <= U'Z') || (c >= 0xC0 && c <= 0xDE && c != kMultiplication);
  if (latin || (c >= 0x410 && c <= 0x42F)) return c + 0x20;
  return c >= 0x400 && c <= 0x40F ? c + 0x50 : c;
}

std::u16string WidenBytes(std::string_view bytes) {
  std::u16string out;
  out.reserve(bytes.size());
  for (const char c : bytes) out.push_back(static_cast<unsigned char>(c));
  return out;
}

}  // namespace zentor::platform
