#include "stress_file.h"

#include <algorithm>
#include <cmath>

#include "study_files.h"

namespace zentor::companion {

namespace {

std::string Word(std::size_t number) { return "header word " + std::to_string(number); }

// A count or code that the file stores as a real.
std::optional<int> Whole(float stored) {
  if (!(stored >= 0 && stored < 2147483648.0F)) return std::nullopt;
  return static_cast<int>(stored);
}

}  // namespace

StressFile::StressFile(const std::string& path) : file_(path) {
  namespace sf = stress_format;
  const auto words = file_.Ints(0, sf::kHeaderWords, "header");
  std::copy(words.begin(), words.end(), header_.begin());
  const auto check = [&](std::size_t word, bool sound, const std::string& wanted) {
    if (!sound) file_.Fault(Word(word), std::to_string(header_[word]), wanted);
  };
  for (const std::size_t word : {sf::kStepTableStart, sf::kStepCapacity, sf::kElementCount, sf::kStepCount}) {
    check(word, header_[word] >= 0, "0 or more");
  }
  const std::int32_t width = header_[sf::kPointerWidth];
  check(sf::kPointerWidth, width >= 0 && width <= 2, "0, 1 or 2 words per pointer");
  pointer_words_ = std::max(1, width);
  const bool later = KnownExtension(path) == ".STP";
  const int steps =
      later ? std::max(header_[sf::kStepCount], header_[sf::kLaterStepCount]) : header_[sf::kStepCount];
  check(sf::kStepCount, steps <= header_[sf::kStepCapacity],
        "at most the capacity in header word 1, " + std::to_string(header_[sf::kStepCapacity]));
  const std::uint64_t table = sf::kWordBytes * static_cast<std::uint64_t>(header_[sf::kStepTableStart]);
  const std::uint64_t pointer = sf::kWordBytes * static_cast<std::uint64_t>(pointer_words_);
  steps_ = ReadPointers(table, steps, "step pointer table");
  elements_ = ReadPointers(table + pointer * static_cast<std::uint64_t>(header_[sf::kStepCapacity]),
                           header_[sf::kElementCount], "element pointer table");
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

}  // namespace zentor::companion
