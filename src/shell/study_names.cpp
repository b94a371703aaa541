#include "shell/study_names.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "platform/text.h"

namespace zentor {
namespace {

constexpr Extension kStudyList = ".FTS";
constexpr std::size_t kListLimit = 1U << 20U;  // bytes of a study list that are read

std::u16string Decode(std::string_view bytes) {
  std::u16string text;
  text.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto low = static_cast<unsigned char>(bytes[i]);
    const auto high = static_cast<unsigned char>(bytes[i + 1]);
    text.push_back(static_cast<char16_t>(low | (high << 8U)));
  }
  if (!text.empty() && text.front() == u'\uFEFF') text.erase(0, 1);
  return text;
}

std::string ReadWhole(platform::FileSystem& files, const std::string& path) {
  const auto file = files.Open(path, platform::OpenMode::kReadOnly);
  std::vector<std::byte> bytes(std::min<std::uint64_t>(file->Size(), kListLimit));
  const std::size_t got = file->ReadAt(0, bytes);
  return {reinterpret_cast<const char*>(bytes.data()), got};
}

}  // namespace

std::u16string StudyListLine(std::string_view bytes, int number) {
  const std::u16string text = Decode(bytes);
  int line = 1;
  std::u16string out;
  for (std::size_t i = 0; i < text.size() && line <= number; ++i) {
    const char16_t c = text[i];
    if (c == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') continue;
    if (c == u'\0' || c == u'\n' || c == u'\r') {
      ++line;
    } else if (line == number) {
      out.push_back(c);
    }
  }
  return out;
}

StudyNames::StudyNames(platform::FileSystem& files, std::u16string study)
    : files_(files), names_{std::move(study), u""} {}

std::string StudyNames::FileName(Extension extension) const {
  return platform::ToUtf8(names_[selected_]) + std::string(extension);
}

std::string StudyNames::OwnFileName(Extension extension) const {
  return platform::ToUtf8(names_[0]) + std::string(extension);
}

void StudyNames::ReadSecond(int line) {
  const std::string list = OwnFileName(kStudyList);
  if (line == 0 || !files_.Exists(list)) return;
  names_[1] = Located(StudyListLine(ReadWhole(files_, list), line));
}

std::u16string StudyNames::Located(const std::u16string& name) const {
  const std::size_t folder_end = names_[0].find_last_of(u'/');
  const bool relative = !name.empty() && name.front() != u'/';
  if (!relative || folder_end == std::u16string::npos) return name;
  const std::array<const char*, 3> stress_files = {".STE", ".STN", ".STP"};
  const auto has_files = [&](const std::u16string& base) {
    const std::string path = platform::ToUtf8(base);
    return std::any_of(stress_files.begin(), stress_files.end(),
                       [&](const char* extension) { return files_.Exists(path + extension); });
  };
  const std::u16string beside = names_[0].substr(0, folder_end + 1) + name;
  return !has_files(name) && has_files(beside) ? beside : name;
}

}  // namespace zentor
