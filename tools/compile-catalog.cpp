// Turns the reviewed message texts of one language (UTF-8) into the form that the programs load: UTF-16
// little-endian with a byte-order mark and CR LF line ends.
//
//   compile-catalog HEADER SOURCE TARGET
//
// Refuses what the loader would misread: text that is not UTF-8, a line that is not `NAME "text"`, a name
// that HEADER does not define, a name of HEADER without text, a text that holds a quotation mark.

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>

#include "platform/text.h"

namespace {

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error(path + ": cannot be opened");
  return {std::istreambuf_iterator<char>(in), {}};
}

std::set<std::string> DefinedNames(const std::string& path) {
  static const std::regex definition(R"(#define\s+(\S+)\s+(\d+)\s*)");
  std::set<std::string> names;
  std::istringstream lines(ReadFile(path));
  for (std::string line; std::getline(lines, line);) {
    std::smatch match;
    if (!std::regex_match(line, match, definition)) continue;
    if (match[1].length() > 50)
      throw std::runtime_error(path + ": a name over 50 characters: " + match[1].str());
    if (!names.insert(match[1].str()).second)
      throw std::runtime_error(path + ": defined twice: " + match[1].str());
  }
  return names;
}

void CheckTexts(const std::string& source, std::set<std::string> names) {
  static const std::regex entry(R"rx(\s+(\S+)\s+"[^"]+")rx");
  std::istringstream lines(source);
  for (std::string line; std::getline(lines, line);) {
    if (line == "STRINGTABLE" || line == "BEGIN" || line == "END") continue;
    std::smatch match;
    if (!std::regex_match(line, match, entry)) throw std::runtime_error(line + ": not NAME \"text\"");
    if (names.erase(match[1].str()) == 0)
      throw std::runtime_error(match[1].str() + ": not defined, or given twice");
  }
  if (!names.empty()) throw std::runtime_error(*names.begin() + ": no text");
}

std::string Installed(const std::string& source) {
  const std::u16string wide = zentor::platform::ToWide(source);
  std::string out;
  const auto unit = [&out](unsigned value) {
    out += static_cast<char>(value & 0xFFU);
    out += static_cast<char>(value >> 8U);
  };
  unit(0xFEFF);
  for (std::size_t i = 0; i < wide.size(); ++i) {
    const bool low = wide[i] >= 0xDC00 && wide[i] <= 0xDFFF;
    const bool behind_high = i > 0 && wide[i - 1] >= 0xD800 && wide[i - 1] <= 0xDBFF;
    if (low && !behind_high)
      throw std::runtime_error("not UTF-8");  // how the conversion marks a foreign byte
    if (wide[i] == u'\n') unit('\r');
    unit(wide[i]);
  }
  return out;
}

void WriteFile(const std::string& path, const std::string& bytes) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::ofstream out(path, std::ios::binary);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out.flush()) throw std::runtime_error(path + ": cannot be written");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "usage: compile-catalog HEADER SOURCE TARGET\n";
    return EXIT_FAILURE;
  }
  try {
    const std::string source = ReadFile(argv[2]);
    CheckTexts(source, DefinedNames(argv[1]));
    WriteFile(argv[3], Installed(source));
  } catch (const std::exception& fault) {
    std::cerr << "compile-catalog: " << argv[2] << ": " << fault.what() << '\n';
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
