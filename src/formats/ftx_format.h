// The extended options of a study, ".FTX" (docs/formats/ftx.md): what the tables have no place for. A new
// option is a field of ExtendedOptions and a row of one of the tables below; reader and writer follow these.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace zentor {

// As a study without the file has them.
struct ExtendedOptions {
  bool exact_principal_stresses = false;  // false: by the closed formulas as stated
  std::string definition;                 // path of the definition the study was built from; empty: not known
  std::string definition_state;           // digests of the definition and of the files it names
};

namespace ftx_format {

inline constexpr std::string_view kExtension = ".FTX";
inline constexpr std::string_view kFormatName = "zentor-study-options";
inline constexpr std::string_view kVersion = "1";
inline constexpr std::size_t kMostFileBytes = 65536;
inline constexpr std::size_t kMostLineBytes = 20000;  // a path of 4096 bytes, every one of them escaped

// One of two words.
struct SwitchKey {
  std::string_view key;
  std::string_view off, on;
  bool ExtendedOptions::*member;
};
inline constexpr std::array kSwitches = {
    SwitchKey{"principal_stresses", "as-stated", "exact", &ExtendedOptions::exact_principal_stresses}};

// A text in double quotes; left out when it is empty.
struct TextKey {
  std::string_view key;
  std::string ExtendedOptions::*member;
};
inline constexpr std::array kTexts = {TextKey{"definition", &ExtendedOptions::definition},
                                      TextKey{"definition_state", &ExtendedOptions::definition_state}};

}  // namespace ftx_format
}  // namespace zentor
