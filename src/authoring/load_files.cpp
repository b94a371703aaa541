#include "authoring/load_files.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <stdexcept>

#include "database/bytes.h"
#include "platform/text.h"

namespace zentor {

namespace {

constexpr std::size_t kWord = 4;

// Words that are appended or set; the file is zero wherever nothing is set.
class WordBuffer {
 public:
  explicit WordBuffer(std::size_t words) : bytes_(words * kWord) {}
  void SetInt(std::size_t word, std::size_t value) {
    if (value > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
      throw std::length_error("more than 2^31 words in one study file");
    }
    StoreInt(bytes_.data() + word * kWord, static_cast<std::int32_t>(value));
  }
  void SetReal(std::size_t word, float value) { StoreReal(bytes_.data() + word * kWord, value); }
  std::vector<std::byte> Take() { return std::move(bytes_); }

 private:
  std::vector<std::byte> bytes_;
};

namespace history_file {
constexpr std::size_t kCurveCount = 1;
constexpr std::size_t kTimesFlag = 2;
constexpr std::size_t kTable = 10;  // start word and number of points of each curve
}  // namespace history_file

namespace temperature_file {
constexpr std::size_t kRecordWords = 12;
constexpr std::size_t kTableOffset = 48;  // bytes
constexpr std::size_t kTableEntryWords = 2;
constexpr std::size_t kNode = 0, kTemperature = 2;  // words of a record
}  // namespace temperature_file

namespace surface_file {
constexpr std::size_t kRecordWords = 20;
constexpr std::size_t kElement = 1, kNodeCount = 3, kFirstNode = 4;  // words of a record, from 0
constexpr std::size_t kNodesPerRecord = 7;
}  // namespace surface_file

}  // namespace

std::vector<std::byte> HistoryFileBytes(std::span<const AuthoredHistory> histories) {
  using namespace history_file;
  std::size_t curves = 0;
  std::size_t points = 0;
  bool times = !histories.empty();
  for (const AuthoredHistory& history : histories) {
    curves = std::max(curves, static_cast<std::size_t>(history.number));
    points += history.values.size();
    times = times && !history.times.empty();
  }
  std::size_t start = kTable + 2 * curves;
  WordBuffer file(start + 2 * points);
  file.SetInt(kCurveCount, curves);
  file.SetInt(kTimesFlag, times ? 1 : 0);
  for (const AuthoredHistory& history : histories) {
    const std::size_t entry = kTable + 2 * (static_cast<std::size_t>(history.number) - 1);
    const std::size_t count = history.values.size();
    file.SetInt(entry, start);
    file.SetInt(entry + 1, count);
    for (std::size_t i = 0; times && i < count; ++i) file.SetReal(start + i, history.times[i]);
    for (std::size_t i = 0; i < count; ++i) file.SetReal(start + count + i, history.values[i]);
    start += 2 * count;
  }
  return file.Take();
}

// Record 1 holds the byte offset of the load-case table and its length; the table's entry for a load case is
// the record number of its first node, records being counted from 1 in blocks of 48 bytes.
std::vector<std::byte> TemperatureFileBytes(std::span<const std::int32_t> node_numbers,
                                            std::span<const NodalTemperatures> temperatures) {
  using namespace temperature_file;
  std::size_t cases = 0;
  for (const NodalTemperatures& one : temperatures)
    cases = std::max(cases, static_cast<std::size_t>(one.stress_case));
  const std::size_t table_records = (cases * kTableEntryWords + kRecordWords - 1) / kRecordWords;
  std::size_t record = 1 + table_records;  // counted from 0
  WordBuffer file((record + node_numbers.size() * temperatures.size()) * kRecordWords);
  file.SetInt(0, kTableOffset);
  file.SetInt(1, cases);
  for (const NodalTemperatures& one : temperatures) {
    const std::size_t entry =
        kTableOffset / kWord + (static_cast<std::size_t>(one.stress_case) - 1) * kTableEntryWords;
    file.SetInt(entry, record + 1);
    file.SetInt(entry + 1, node_numbers.size());
    for (std::size_t i = 0; i < node_numbers.size(); ++i, ++record) {
      file.SetInt(record * kRecordWords + kNode, static_cast<std::size_t>(node_numbers[i]));
      file.SetReal(record * kRecordWords + kTemperature, one.values[i]);
    }
  }
  return file.Take();
}

std::vector<std::byte> SurfaceFileBytes(std::span<const SurfaceFace> faces) {
  using namespace surface_file;
  std::size_t records = 1;
  for (const SurfaceFace& face : faces)
    records += (face.nodes.size() + kNodesPerRecord - 1) / kNodesPerRecord;
  WordBuffer file(records * kRecordWords);
  file.SetInt(0, kRecordWords * kWord);
  file.SetInt(1, records);
  std::size_t record = 1;
  for (const SurfaceFace& face : faces) {
    for (std::size_t first = 0; first < face.nodes.size(); first += kNodesPerRecord, ++record) {
      const std::size_t count = std::min(kNodesPerRecord, face.nodes.size() - first);
      const std::size_t word = record * kRecordWords;
      file.SetInt(word + kElement, static_cast<std::size_t>(face.element));
      file.SetInt(word + kNodeCount, count);
      for (std::size_t i = 0; i < count; ++i) {
        file.SetInt(word + kFirstNode + i, static_cast<std::size_t>(face.nodes[first + i]));
      }
    }
  }
  return file.Take();
}

std::vector<std::byte> StudyListBytes(std::span<const std::string> base_names) {
  std::u16string text = u"\uFEFF";
  for (const std::string& name : base_names) text += platform::ToWide(name) + u"\r\n";
  std::vector<std::byte> file(text.size() * 2);
  for (std::size_t i = 0; i < text.size(); ++i) {
    file[2 * i] = static_cast<std::byte>(text[i] & 0xFF);
    file[2 * i + 1] = static_cast<std::byte>(text[i] >> 8);
  }
  return file;
}

}  // namespace zentor
