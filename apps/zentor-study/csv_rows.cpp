#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "csv_diagnosis.h"
#include "row_source.h"

namespace zentor::companion {

namespace {

constexpr std::size_t kAbsent = std::numeric_limits<std::size_t>::max();

std::string_view Trim(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r'))
    text.remove_suffix(1);
  return text;
}

// Lines of a file, read in large blocks. A line is at most kBlock bytes long.
class LineReader {
 public:
  LineReader(const std::string& path, platform::FileSystem& files)
      : path_(path), file_(files.Open(path, platform::OpenMode::kReadOnly)), size_(file_->Size()) {}

  // The line is valid until the next call.
  bool Next(std::string_view& line) {
    std::size_t end = FindEnd(begin_);
    if (end == kAbsent && offset_ < size_) {
      Refill();
      end = FindEnd(begin_);
      if (end == kAbsent && offset_ < size_) {
        begin_ = filled_;
        offset_ = size_;  // the end for whoever goes on
        throw DefinitionError(path_, number_ + 1, "is a line of more than 4 MiB; is this a CSV file?");
      }
    }
    if (end == kAbsent) end = filled_;
    if (begin_ >= filled_) return false;
    line = std::string_view(buffer_.data() + begin_, end - begin_);
    begin_ = end + 1;
    ++number_;
    return true;
  }
  int number() const { return number_; }
  const std::string& path() const { return path_; }

 private:
  static constexpr std::size_t kBlock = std::size_t{4} << 20U;

  std::size_t FindEnd(std::size_t from) const {
    if (from >= filled_) return kAbsent;
    const void* found = std::memchr(buffer_.data() + from, '\n', filled_ - from);
    return found == nullptr ? kAbsent
                            : static_cast<std::size_t>(static_cast<const char*>(found) - buffer_.data());
  }
  void Refill() {
    const std::size_t kept = begin_ < filled_ ? filled_ - begin_ : 0;
    if (kept > 0) std::memmove(buffer_.data(), buffer_.data() + begin_, kept);
    buffer_.resize(kBlock);
    const std::size_t read =
        file_->ReadAt(offset_, std::as_writable_bytes(std::span(buffer_)).subspan(kept, kBlock - kept));
    offset_ = read == 0 ? size_ : offset_ + read;
    filled_ = kept + read;
    begin_ = 0;
  }

  std::string path_;
  std::unique_ptr<platform::RandomAccessFile> file_;
  std::uint64_t size_;
  std::uint64_t offset_ = 0;  // of the next byte to read from the file
  std::vector<char> buffer_;
  std::size_t begin_ = 0;
  std::size_t filled_ = 0;
  int number_ = 0;
};

class CsvRows final : public RowSource {
 public:
  CsvRows(const std::string& path, const Columns& columns, platform::FileSystem& files)
      : lines_(path, files), columns_(columns) {
    ReadHeader();
  }

  bool Next() override {
    std::string_view line;
    do {
      if (!lines_.Next(line)) return false;
    } while (Trim(line).empty());
    Split(line);
    if (fields_.size() > header_.size()) {
      Fail(SurplusFault(fields_, header_.size()));
    }
    return true;
  }

  bool Has(std::size_t column) const override { return !Field(place_[column]).empty(); }
  std::string_view Text(std::size_t column) const override { return Field(place_[column]); }
  int Integer(std::size_t column, IntegerRange range) const override {
    return ParseInteger(Field(place_[column]), columns_.fixed[column].name, range);
  }
  float Real(std::size_t column, RealRange range) const override {
    const std::string_view text = Field(place_[column]);
    const std::string_view digits = WithoutPlus(text);
    double value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc() || end != digits.data() + digits.size() || !Accepts(range, value)) {
      FailField(columns_.fixed[column].name, text, WantedReal(range, value) + NumberHint(text));
    }
    return static_cast<float>(value);
  }
  std::size_t TailCount() const override {
    std::size_t count = 0;
    while (count < tail_.size() && !Field(tail_[count]).empty()) ++count;
    for (std::size_t i = count; i < tail_.size(); ++i) {
      if (!Field(tail_[i]).empty()) FailField(header_[tail_[count]], "", "a value, since one follows it");
    }
    return count;
  }
  int TailInteger(std::size_t i, IntegerRange range) const override {
    const std::string_view text = Field(tail_[i]);
    if (text == "0") FailField(header_[tail_[i]], text, "a node; leave the fields behind the last one empty");
    return ParseInteger(text, header_[tail_[i]], range);
  }
  DefinitionError Error(std::string_view message) const override {
    return {lines_.path(), lines_.number(), message};
  }
  DefinitionError TableError(std::string_view message) const override { return {lines_.path(), 0, message}; }
  int Line() const override { return lines_.number(); }
  DefinitionError TableErrorAt(int line, std::string_view message) const override {
    return {lines_.path(), line, message};
  }

 private:
  static std::string_view WithoutPlus(std::string_view text) {
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
    return text;
  }
  [[noreturn]] void FailField(std::string_view column, std::string_view found,
                              std::string_view wanted) const {
    const std::string shown = found.empty() ? "empty" : fmt::format("'{}'", found.substr(0, 60));
    throw DefinitionError(lines_.path(), lines_.number(), fmt::format("column {}", column), shown, wanted);
  }
  int ParseInteger(std::string_view text, std::string_view column, IntegerRange range) const {
    const std::string_view digits = WithoutPlus(text);
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    const bool whole = error == std::errc() && end == digits.data() + digits.size();
    if (whole && value >= range.first && value <= range.last) return static_cast<int>(value);
    return IntegerOfReal(text, column, range);
  }
  // "1e6" and "12.0" are whole numbers too.
  int IntegerOfReal(std::string_view text, std::string_view column, IntegerRange range) const {
    const std::string_view digits = WithoutPlus(text);
    double value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc() || end != digits.data() + digits.size()) {
      FailField(column, text, Describe(range) + NumberHint(text));
    }
    const std::optional<std::int64_t> whole = WholeNumber(value);
    if (!whole || *whole < range.first || *whole > range.last) {
      FailField(column, text, WantedInteger(range, value));
    }
    return static_cast<int>(*whole);
  }
  std::string_view Field(std::size_t place) const { return place < fields_.size() ? fields_[place] : ""; }

  void Split(std::string_view line) {
    fields_.clear();
    while (true) {
      const std::size_t comma = line.find(',');
      fields_.push_back(Trim(line.substr(0, comma)));
      if (comma == std::string_view::npos) return;
      line.remove_prefix(comma + 1);
    }
  }

  void ReadHeader() {
    std::string_view line;
    if (!lines_.Next(line))
      throw DefinitionError(lines_.path(), 0, "is empty, expected a header line and rows");
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (line.substr(0, kByteOrderMark.size()) == kByteOrderMark) line.remove_prefix(kByteOrderMark.size());
    const std::string encoding = EncodingFault(line);
    if (!encoding.empty()) throw DefinitionError(lines_.path(), 0, encoding);
    Split(line);
    const std::string fault = HeaderFault(Trim(line), fields_, Expected());
    if (!fault.empty()) Fail(fault);
    for (const std::string_view name : fields_) header_.emplace_back(name);
    place_.assign(columns_.fixed.size(), kAbsent);
    for (std::size_t place = 0; place < header_.size(); ++place) Assign(place);
    for (std::size_t i = 0; i < place_.size(); ++i) {
      if (place_[i] == kAbsent && columns_.fixed[i].required) {
        Fail(fmt::format("the header line lacks the column {}, expected {}", columns_.fixed[i].name,
                         Expected()));
      }
    }
  }
  void Assign(std::size_t place) {
    const std::string& name = header_[place];
    for (std::size_t i = 0; i < columns_.fixed.size(); ++i) {
      if (columns_.fixed[i].name != name) continue;
      if (place_[i] != kAbsent) Fail(fmt::format("the column {} appears twice", name));
      place_[i] = place;
      return;
    }
    if (!columns_.tail.empty() && name == fmt::format("{}{}", columns_.tail, tail_.size() + 1)) {
      tail_.push_back(place);
      return;
    }
    std::vector<std::string_view> names;
    for (const Column& column : columns_.fixed) names.push_back(column.name);
    Fail(fmt::format("'{}' is not a column of this table, expected {}{}", name, Expected(),
                     DidYouMean(name, names)));
  }
  std::string Expected() const {
    std::string text;
    for (const Column& column : columns_.fixed) {
      if (!text.empty()) text += ',';
      text += column.required ? std::string(column.name) : fmt::format("[{}]", column.name);
    }
    if (!columns_.tail.empty()) text += fmt::format(",{0}1,{0}2,...", columns_.tail);
    return text;
  }

  LineReader lines_;
  Columns columns_;
  std::vector<std::string> header_;
  std::vector<std::size_t> place_;  // field of each fixed column
  std::vector<std::size_t> tail_;   // fields of the tail columns
  std::vector<std::string_view> fields_;
};

}  // namespace

std::unique_ptr<RowSource> OpenCsv(const std::string& path, const Columns& columns,
                                   platform::FileSystem& files) {
  return std::make_unique<CsvRows>(path, columns, files);
}

}  // namespace zentor::companion
