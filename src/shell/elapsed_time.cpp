#include "shell/elapsed_time.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "platform/text.h"

namespace zentor {

std::u16string ElapsedText(std::int64_t seconds) {
  const long long s = std::max<std::int64_t>(seconds, 0);
  const long long hours = s / 3600;
  const int digits = hours < 100 ? 2 : hours < 1000 ? 3 : 4;
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%0*lld:%02lld:%02lld", digits, hours, s / 60 % 60, s % 60);
  return platform::WidenBytes(text.data());
}

}  // namespace zentor
