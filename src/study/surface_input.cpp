#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "database/bytes.h"
#include "services/faults.h"
#include "study/model_input.h"
#include "study/study_messages.h"

namespace zentor {
namespace {

// ".FBD": record 0 is the header, records 1 .. N - 1 are faces. A record is 20 words, of which a writer may
// leave out the unused end of the last one.
constexpr std::int64_t kRecordBytes = 80;
constexpr std::int64_t kCountOffset = 4;
constexpr std::int64_t kShortestFaceBytes = 44;
constexpr int kElementWord = 1;  // words of a face, counted from 0
constexpr int kNodeCountWord = 3;
constexpr int kFirstNodeWord = 4;
constexpr int kMostNodes = 16;
constexpr std::int64_t kRecordsAtOnce = 4096;

struct SurfaceFile {
  RunContext& run;
  int unit;

  [[noreturn]] void Fault(const std::string& place, std::int64_t found, const std::string& wanted) const {
    throw InputFault(FilePath(run.units, unit), place, std::to_string(found), wanted);
  }
};

SurfaceFile OpenSurfaceFile(RunContext& run) {
  if (!run.services.StudyFileExists(".FBD")) StopWithMessage(run.services, message::kSurfaceFileMissing);
  const std::string path = run.services.StudyFileName(".FBD");
  const OpenedPath opened = FileOpenPath(run.units, path);
  if (opened.unit == 0) throw platform::FileError(path, "open", opened.error);
  return {run, opened.unit};
}

// N, with every face record inside the file.
std::int32_t ReadRecordCount(const SurfaceFile& file) {
  std::array<std::byte, 4> word{};
  FileRead64(file.run.units, file.unit, word, kCountOffset);
  const std::int32_t count = LoadInt(word.data());
  if (count == 0) StopWithMessage(file.run.services, message::kSurfaceFileEmpty);
  const auto size = static_cast<std::int64_t>(FileSize(file.run.units, file.unit));
  const std::int64_t held = size < kShortestFaceBytes ? 0 : (size - kShortestFaceBytes) / kRecordBytes + 1;
  if (count < 0 || (count > 1 && count > held)) {
    file.Fault("number of records", count, "1 to " + std::to_string(std::max<std::int64_t>(held, 1)));
  }
  return count;
}

void FlagFace(const SurfaceFile& file, const ModelSizes& sizes, std::int64_t face, const std::byte* record,
              SurfaceFlags& flags) {
  const auto word = [record](int w) { return LoadInt(record + std::ptrdiff_t{4} * w); };
  const auto place = [face](const std::string& what) { return "face " + std::to_string(face) + ", " + what; };
  const std::int32_t element = word(kElementWord);
  if (element < 1 || element > sizes.highest_element) {
    file.Fault(place("element"), element, "1 to " + std::to_string(sizes.highest_element));
  }
  const std::int32_t count = word(kNodeCountWord);
  if (count < 0 || count > kMostNodes) file.Fault(place("number of nodes"), count, "0 to 16");
  flags.element[element] = 1;
  for (int i = 0; i < count; ++i) {
    const std::int32_t node = word(kFirstNodeWord + i);
    if (node < 1 || node > sizes.highest_node) {
      file.Fault(place("node " + std::to_string(i + 1)), node, "1 to " + std::to_string(sizes.highest_node));
    }
    flags.node[node] = 1;
  }
}

void FlagFaces(const SurfaceFile& file, const ModelSizes& sizes, std::int32_t record_count,
               SurfaceFlags& flags) {
  std::vector<std::byte> block(
      static_cast<std::size_t>(std::min<std::int64_t>(kRecordsAtOnce, record_count) * kRecordBytes));
  for (std::int64_t first = 1; first < record_count; first += kRecordsAtOnce) {
    std::fill(block.begin(), block.end(), std::byte{0});
    FileRead64(file.run.units, file.unit, block, first * kRecordBytes);
    const std::int64_t end = std::min<std::int64_t>(first + kRecordsAtOnce, record_count);
    for (std::int64_t face = first; face < end; ++face) {
      FlagFace(file, sizes, face, block.data() + (face - first) * kRecordBytes, flags);
    }
  }
}

void CountFlags(SurfaceFlags& flags) {
  flags.node_count = static_cast<int>(std::count(flags.node.begin(), flags.node.end(), 1));
  flags.element_count = static_cast<int>(std::count(flags.element.begin(), flags.element.end(), 1));
  for (int e = 1; e <= flags.element.size(); ++e) {
    if (flags.element[e] != 0) flags.highest_element = e;
  }
}

}  // namespace

void ReadSurface(RunContext& run, StudyState& study) {
  const SurfaceFile file = OpenSurfaceFile(run);
  const std::int32_t record_count = ReadRecordCount(file);
  study.surface.node.Assign(study.sizes.highest_node);
  study.surface.element.Assign(study.sizes.highest_element);
  FlagFaces(file, study.sizes, record_count, study.surface);
  FileClose(run.units, file.unit);
  CountFlags(study.surface);
}

}  // namespace zentor
