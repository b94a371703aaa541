#include "platform/code_pages.h"

#include <iconv.h>

#include <array>
#include <bit>
#include <cerrno>
#include <cstdint>
#include <utility>

namespace zentor::platform {
namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 12> kCodePages = {{
    {"English", "CP1252"},
    {"Chinese", "CP950"},
    {"French", "CP1252"},
    {"German", "CP1252"},
    {"Japanese", "CP932"},
    {"Chinese-simplified", "CP936"},
    {"Russian", "CP1251"},
    {"Italian", "CP1252"},
    {"Korean", "CP949"},
    {"Spanish", "CP1252"},
    {"Polish", "CP1250"},
    {"Czech", "CP1250"},
}};

class Converter {
 public:
  Converter(const std::string& to, const std::string& from)
      : handle_(::iconv_open(to.c_str(), from.c_str())) {}
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;
  ~Converter() {
    if (Known()) ::iconv_close(handle_);
  }

  // The converted bytes; nothing when the system cannot convert all of them without loss.
  std::optional<std::string> Convert(std::string bytes) const {
    if (!Known()) return std::nullopt;
    std::string out;
    char* in = bytes.data();
    std::size_t left = bytes.size();
    for (bool flushed = false; !flushed;) {
      std::array<char, 512> piece;
      char* place = piece.data();
      std::size_t room = piece.size();
      const bool last = left == 0;  // writes what a code page with shifts needs at its end
      const std::size_t lossy = ::iconv(handle_, last ? nullptr : &in, last ? nullptr : &left, &place, &room);
      if (lossy == static_cast<std::size_t>(-1) && errno != E2BIG) return std::nullopt;
      if (lossy != static_cast<std::size_t>(-1) && lossy != 0) return std::nullopt;
      out.append(piece.data(), piece.size() - room);
      flushed = last;
    }
    return out;
  }

 private:
  bool Known() const { return std::bit_cast<std::intptr_t>(handle_) != -1; }

  iconv_t handle_;
};

}  // namespace

std::string_view CodePageOf(std::string_view locale) {
  for (const auto& [name, code_page] : kCodePages) {
    if (name == locale) return code_page;
  }
  return {};
}

std::optional<std::string> ToCodePage(std::u16string_view text, std::string_view code_page) {
  std::string bytes;
  for (const char16_t unit : text) {
    bytes.push_back(static_cast<char>(unit & 0xFFU));
    bytes.push_back(static_cast<char>(unit >> 8U));
  }
  return Converter(std::string(code_page), "UTF-16LE").Convert(std::move(bytes));
}

std::optional<std::u16string> FromCodePage(std::string_view bytes, std::string_view code_page) {
  const auto wide = Converter("UTF-16LE", std::string(code_page)).Convert(std::string(bytes));
  if (!wide) return std::nullopt;
  std::u16string text;
  for (std::size_t i = 0; i + 1 < wide->size(); i += 2) {
    const auto low = static_cast<unsigned char>((*wide)[i]);
    const auto high = static_cast<unsigned char>((*wide)[i + 1]);
    text.push_back(static_cast<char16_t>(low | (high << 8U)));
  }
  return text;
}

std::optional<std::string> RoundTrip(std::u16string_view text, std::string_view code_page) {
  std::optional<std::string> bytes = ToCodePage(text, code_page);
  if (!bytes || FromCodePage(*bytes, code_page) != text) return std::nullopt;
  return bytes;
}

}  // namespace zentor::platform
