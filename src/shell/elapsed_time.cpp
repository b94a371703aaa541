#include "shell/elapsed_time.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "platform/text.h"

namespace zentor {
namespace {

constexpr int kElapsedLabel = 931;
constexpr std::size_t kDefaultElapsedWidth = 8;  // "hh:mm:ss", for a catalog without a label
constexpr std::size_t kLongestElapsedText = 31;

}  // namespace

std::u16string ElapsedText(std::int64_t seconds) {
  const long long s = std::max<std::int64_t>(seconds, 0);
  const long long hours = s / 3600;
  const int digits = hours < 100 ? 2 : hours < 1000 ? 3 : 4;
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%0*lld:%02lld:%02lld", digits, hours, s / 60 % 60, s % 60);
  return platform::WidenBytes(text.data());
}

std::u16string ShowElapsed(const ShellContext& shell, ProgressHost& host) {
  std::u16string text = ElapsedText(shell.clock.Elapsed());
  if (!host.Loaded()) return text;
  const std::size_t label = FormatCatalogMessage(shell.catalog, kElapsedLabel).size();
  const std::size_t width = label == 0 ? kDefaultElapsedWidth : std::min(label, kLongestElapsedText);
  host.SetElapsed(platform::ToUtf8(text.substr(0, width)));
  return text;
}

}  // namespace zentor
