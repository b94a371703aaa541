#include "shell/command_line.h"

#include <algorithm>
#include <limits>

#include "platform/text.h"

namespace zentor {
namespace {

// Takes the text one character at a time, the end of the text included as a last separator.
class Splitter {
 public:
  explicit Splitter(CommandLine& out) : out_(out) {}

  void Take(char16_t c) {
    if (c == u'"') {
      if (quoted_) EndToken();
      token_.clear();  // an opening quote restarts the token
      quoted_ = !quoted_;
    } else if (c == u'\0' || (c == u' ' && !quoted_)) {
      EndToken();
      quoted_ = false;
    } else {
      token_.push_back(c);
    }
  }

 private:
  void EndToken() {
    if (token_.empty()) return;
    if (token_.size() > kTokenLimit || out_.count == kTokenSlots) {
      out_.too_long = true;
    } else {
      out_.tokens[static_cast<std::size_t>(out_.count++)] = token_;
    }
    token_.clear();
  }

  CommandLine& out_;
  std::u16string token_;
  bool quoted_ = false;
};

// Takes the window handle behind "-HWND" and removes both tokens.
void TakeParentWindow(CommandLine& line, std::size_t slot) {
  if (slot + 1 < line.tokens.size()) {
    line.parent_window = LeadingInteger(line.tokens[slot + 1]);
    line.tokens[slot + 1].clear();
  }
  line.tokens[slot].clear();
  line.count -= 2;
}

// At most one switch takes effect: the first slot that holds any of them ends the scan.
void ScanSwitches(CommandLine& line) {
  for (std::size_t slot = 0; slot < static_cast<std::size_t>(line.count); ++slot) {
    const std::u16string& token = line.tokens[slot];
    if (token == u"-HWND") return TakeParentWindow(line, slot);
    if (token == u"-silent" || token == u"-batch") {
      line.hidden = true;
      return;
    }
    if (token == u"-window" || token == u"-BW") return;
  }
}

}  // namespace

CommandLine ParseCommandLine(std::u16string_view text) {
  CommandLine line;
  line.tokens[0] = u"generic";
  Splitter splitter(line);
  for (const char16_t c : text) splitter.Take(c);
  splitter.Take(u'\0');
  ScanSwitches(line);
  return line;
}

std::u16string JoinArguments(int count, const char* const* arguments) {
  std::u16string out;
  for (int i = 1; i < count; ++i) {
    const std::u16string argument = platform::ToWide(arguments[i]);
    if (i > 1) out.push_back(u' ');
    const auto quotes = std::count(argument.begin(), argument.end(), u'"');
    const bool quote = quotes == 0 && argument.find(u' ') != std::u16string::npos;
    out += quote ? u'"' + argument + u'"' : argument;
    if (quotes % 2 != 0) out.push_back(u'"');
  }
  return out;
}

std::u16string StudyNameFromBatch(std::string_view bytes) {
  constexpr std::size_t kRead = 256;
  std::string_view text = bytes.substr(0, kRead);
  const std::size_t end = text.find('\r');
  if (end == std::string_view::npos) {
    text = text.substr(0, kRead - 1);
  } else {
    text = text.substr(0, end);
    text = text.substr(0, text.find_last_not_of(' ') + 1);
  }
  text = text.substr(0, text.find('\0'));
  const std::size_t line_end = text.find_first_of("\r\n", 1);
  return platform::WidenBytes(text.substr(0, line_end));
}

long LeadingInteger(std::u16string_view text) {
  std::size_t i = 0;
  while (i < text.size() && (text[i] == u' ' || text[i] == u'\t')) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == u'-' || text[i] == u'+')) negative = text[i++] == u'-';
  long value = 0;
  constexpr long kLargest = std::numeric_limits<long>::max();
  for (; i < text.size() && text[i] >= u'0' && text[i] <= u'9'; ++i) {
    const long digit = text[i] - u'0';
    value = value > (kLargest - digit) / 10 ? kLargest : value * 10 + digit;
  }
  return negative ? -value : value;
}

}  // namespace zentor
