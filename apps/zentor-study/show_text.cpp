#include <fmt/format.h>
#include <fmt/ostream.h>

#include <algorithm>

#include "binary_file.h"
#include "show.h"
#include "study_files.h"

namespace zentor::companion {

namespace {

constexpr std::uint64_t kPiece = std::uint64_t{1} << 16U;

std::uint64_t CountLines(BinaryFile& file) {
  std::uint64_t lines = 0;
  std::vector<std::byte> piece;
  for (std::uint64_t at = 0; at < file.size(); at += piece.size()) {
    piece.resize(static_cast<std::size_t>(std::min(kPiece, file.size() - at)));
    file.Read(at, piece, "text");
    lines += static_cast<std::uint64_t>(std::count(piece.begin(), piece.end(), std::byte{'\n'}));
  }
  const bool open_end = file.size() > 0 && piece.back() != std::byte{'\n'};
  return lines + (open_end ? 1 : 0);
}

// Writes lines as they come; leaves out those between `head` and `tail_start` (counted from 0).
class LinePrinter {
 public:
  LinePrinter(std::ostream& out, std::uint64_t head, std::uint64_t tail_start)
      : out_(out), head_(head), tail_start_(tail_start) {}

  void Add(std::string_view text) {
    while (!text.empty()) {
      const std::size_t end = text.find('\n');
      const bool whole = end != std::string_view::npos;
      const std::string_view part = text.substr(0, whole ? end + 1 : end);
      if (line_ < head_ || line_ >= tail_start_) out_ << part;
      if (whole && ++line_ == head_ && tail_start_ > head_) {
        fmt::print(out_, "... {} lines (--all shows them)\n", tail_start_ - head_);
      }
      text.remove_prefix(part.size());
    }
  }

 private:
  std::ostream& out_;
  std::uint64_t head_, tail_start_, line_ = 0;
};

}  // namespace

void RowLimit::End(std::ostream& out, std::uint64_t total, std::string_view what) const {
  if (total > limit_) fmt::print(out, "  ... {} more {} (--all shows them)\n", total - limit_, what);
}

void ShowText(const std::string& path, const ShowRequest& request, std::ostream& out) {
  BinaryFile file(path);
  const std::uint64_t lines = CountLines(file);
  const std::uint64_t shown = std::min(lines, request.limit);
  // The start says what was read, the end how it went.
  const std::uint64_t head = shown < lines ? std::max<std::uint64_t>(1, shown / 2) : lines;
  LinePrinter printer(out, head, shown < lines ? lines - (shown - head) : head);
  std::vector<std::byte> piece;
  for (std::uint64_t at = 0; at < file.size(); at += piece.size()) {
    piece.resize(static_cast<std::size_t>(std::min(kPiece, file.size() - at)));
    file.Read(at, piece, "text");
    printer.Add({reinterpret_cast<const char*>(piece.data()), piece.size()});
  }
  out << '\n';
}

void ShowStudyList(const std::string& path, std::ostream& out) {
  const std::vector<std::string> names = ReadStudyList(path);
  fmt::print(out, "{}\n", path);
  for (std::size_t i = 0; i < names.size(); ++i) fmt::print(out, "  line {:>3}  {}\n", i + 1, names[i]);
}

}  // namespace zentor::companion
