#include "printable_output.h"

#include <algorithm>
#include <new>

#include "platform/text.h"

namespace zentor::companion {

namespace {

bool IsPlain(char c) { return (c >= ' ' && c < '\x7F') || c == '\n' || c == '\t'; }

// Bytes at the end of a text that begin a character of UTF-8 without ending it.
std::size_t OpenEnd(std::string_view text) {
  for (std::size_t n = 1; n <= std::min<std::size_t>(3, text.size()); ++n) {
    const auto byte = static_cast<unsigned char>(text[text.size() - n]);
    if (byte < 0x80) return 0;
    if (byte < 0xC0) continue;  // inside a character
    const std::size_t length = byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
    return n < length ? n : 0;
  }
  return 0;
}

}  // namespace

PrintableOutput::PrintableOutput(std::ostream& out) : out_(out), earlier_(out.rdbuf()), filter_(earlier_) {
  out_.rdbuf(&filter_);
}

PrintableOutput::~PrintableOutput() {
  try {
    filter_.WriteHeld();
  } catch (const std::bad_alloc&) {
    out_.setstate(std::ios::badbit);
  }
  const auto state = out_.rdstate();
  out_.rdbuf(earlier_);  // clears the state, which holds what has failed
  out_.clear(state);
}

PrintableOutput::Raw::Raw(std::ostream& out) : out_(out), earlier_(out.rdbuf()) {
  if (const auto* filter = dynamic_cast<Filter*>(earlier_)) out_.rdbuf(filter->unfiltered());
}

PrintableOutput::Raw::~Raw() {
  const auto state = out_.rdstate();
  out_.rdbuf(earlier_);  // clears the state, which holds what has failed
  out_.clear(state);
}

bool PrintableOutput::Filter::Write(std::string_view text) {
  const auto size = static_cast<std::streamsize>(text.size());
  return to_->sputn(text.data(), size) == size;
}

bool PrintableOutput::Filter::WriteHeld() {
  const std::string held = std::move(held_);
  held_.clear();
  return Write(platform::Printable(held));
}

std::streamsize PrintableOutput::Filter::xsputn(const char* text, std::streamsize size) {
  const std::string_view written(text, static_cast<std::size_t>(size));
  if (held_.empty() && std::all_of(written.begin(), written.end(), IsPlain)) return to_->sputn(text, size);
  held_.append(written);
  const std::size_t open = OpenEnd(held_);
  const std::string whole = held_.substr(0, held_.size() - open);
  held_.erase(0, whole.size());
  return Write(platform::Printable(whole, "\n\t")) ? size : 0;
}

PrintableOutput::Filter::int_type PrintableOutput::Filter::overflow(int_type c) {
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  const char byte = traits_type::to_char_type(c);
  return xsputn(&byte, 1) == 1 ? c : traits_type::eof();
}

int PrintableOutput::Filter::sync() { return to_->pubsync(); }

}  // namespace zentor::companion
