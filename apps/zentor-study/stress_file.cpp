#include "stress_file.h"

#include <algorithm>
#include <cmath>

#include "study_files.h"

namespace zentor::companion {

namespace {

std::string Word(int number) { return "header word " + std::to_string(number); }

// A count or code that the file stores as a real.
std::optional<int> Whole(float stored) {
  if (!(stored >= 0 && stored < 2147483648.0F)) return std::nullopt;
  return static_cast<int>(stored);
}

bool IsOneOf(int code, std::initializer_list<int> codes) {
  return std::find(codes.begin(), codes.end(), code) != codes.end();
}

}  // namespace

StressFile::StressFile(const std::string& path) : file_(path) {
  const auto words = file_.Ints(0, kHeaderWords, "header");
  std::copy(words.begin(), words.end(), header_.begin());
  const auto check = [&](int word, bool sound, const std::string& wanted) {
    if (!sound) file_.Fault(Word(word), std::to_string(header_[static_cast<std::size_t>(word)]), wanted);
  };
  for (const int word : {0, 1, 3, 5}) check(word, header_[static_cast<std::size_t>(word)] >= 0, "0 or more");
  check(18, header_[18] >= 0 && header_[18] <= 2, "0, 1 or 2 words per pointer");
  pointer_words_ = std::max(1, header_[18]);
  const int steps = KnownExtension(path) == ".STP" ? std::max(header_[5], header_[6]) : header_[5];
  check(5, steps <= header_[1], "at most the capacity in header word 1, " + std::to_string(header_[1]));
  const std::uint64_t table = 4 * static_cast<std::uint64_t>(header_[0]);
  const auto width = static_cast<std::uint64_t>(pointer_words_);
  steps_ = ReadPointers(table, steps, "step pointer table");
  elements_ = ReadPointers(table + 4 * width * static_cast<std::uint64_t>(header_[1]), header_[3],
                           "element pointer table");
}

std::vector<std::int64_t> StressFile::ReadPointers(std::uint64_t offset, int count,
                                                   const std::string& place) {
  const auto width = static_cast<std::uint64_t>(pointer_words_);
  const auto words = file_.Ints(offset, width * static_cast<std::uint64_t>(count), place);
  std::vector<std::int64_t> pointers;
  pointers.reserve(static_cast<std::size_t>(count));
  for (std::size_t i = 0; i < words.size(); i += width) {
    std::int64_t pointer = words[i];
    if (width == 2) pointer = (std::int64_t{words[i + 1]} << 32U) | static_cast<std::uint32_t>(words[i]);
    pointers.push_back(pointer);
  }
  return pointers;
}

std::optional<std::uint64_t> StressFile::RecordOffset(int step, int element) const {
  if (!HasStep(step) || element < 1 || element > element_count()) return std::nullopt;
  const std::int64_t pointer = ElementPointer(element);
  if (pointer <= 0) return std::nullopt;
  const auto size = static_cast<std::int64_t>(file_.size());
  const std::int64_t block = StepPointer(step);
  if (block > size || pointer > size / 4 ||
      !file_.Holds(static_cast<std::uint64_t>(block + 4 * (pointer - 1)), 8)) {
    file_.Fault("element " + std::to_string(element) + " of step " + std::to_string(step),
                "at byte " + std::to_string(block) + " + word " + std::to_string(pointer),
                "a place inside the " + std::to_string(size) + " bytes of the file");
  }
  return static_cast<std::uint64_t>(block + 4 * (pointer - 1));
}

std::optional<std::vector<float>> StressFile::Record(int step, int element) {
  const auto offset = RecordOffset(step, element);
  if (!offset) return std::nullopt;
  const std::string place = "record of element " + std::to_string(element) + ", step " + std::to_string(step);
  if (Whole(file_.Real(*offset, place)) != element) return std::nullopt;
  const float length = file_.Real(*offset + 4, place);
  const auto words = Whole(length);
  if (!words || *words < 2)
    file_.Fault(place + ", word 1", std::to_string(length), "the record's length, 2 or more");
  return file_.Reals(*offset, static_cast<std::uint64_t>(*words), place);
}

std::vector<int> StressFile::TypeCodes(std::span<const int> element_ids) {
  std::vector<int> codes(element_ids.size(), 0);
  int step = 1;
  while (step <= step_count() && !HasStep(step)) ++step;
  for (std::size_t i = 0; i < element_ids.size(); ++i) {
    const auto offset = RecordOffset(step, element_ids[i]);
    if (!offset || !file_.Holds(*offset, 12)) continue;
    if (Whole(file_.Real(*offset, "element number")) != element_ids[i]) continue;
    codes[i] = Whole(file_.Real(*offset + 8, "element type code")).value_or(0);
  }
  return codes;
}

namespace {

RecordLayout ShellLayout(bool stn, int code, int n, int layer, bool bottom) {
  const int side = bottom ? 7 : 0;
  int start = (layer - 1) * (15 * n + 44) + 60;
  int stride = 15;
  int shift = 0;
  if (stn) {
    shift = 1;
    if (IsOneOf(code, {43, 44, 63, 64, 94})) {
      start = 91;
      stride = 16;
    } else if (IsOneOf(code, {53, 54})) {
      start = (layer - 1) * (18 * n + 79) + 95;
      stride = 18;
    }
  }
  return {start - 1, stride, start + shift + side, stride, 6};
}

}  // namespace

std::optional<RecordLayout> LayoutOf(std::string_view kind, int code, int n, int layer, bool bottom) {
  const bool stn = kind == ".STN";
  if (n < 0 || n > 1000 || layer < 1 || layer > 10000) return std::nullopt;
  if (IsOneOf(code, {3, 4, 9, 17})) {
    return stn ? RecordLayout{7, 17, 15, 27, 3} : RecordLayout{7, 12, 15, 12, 3};
  }
  if (IsOneOf(code, {2, 42, 45, 72, 92, 98})) {
    return stn ? RecordLayout{45, 9, 47, 9, 6} : RecordLayout{29, 8, 30, 8, 6};
  }
  if (code == 46) {
    const int block = (8 * n + 22) * (layer - 1);
    return RecordLayout{block + 29, 8, block + 30, 8, 6};
  }
  if (IsOneOf(code, {43, 44, 53, 54, 63, 64, 90, 91, 93, 94}))
    return ShellLayout(stn, code, n, layer, bottom);
  return std::nullopt;
}

}  // namespace zentor::companion
