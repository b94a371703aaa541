#include "authoring/study_stage.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <filesystem>
#include <memory>
#include <system_error>

#include "database/study_lock.h"

namespace zentor {

namespace {

using platform::FileError;
using platform::OpenMode;

// What a study can consist of, and what a run leaves behind of an earlier definition.
constexpr std::array<std::string_view, 24> kOwnExtensions = {
    ".MAS", ".NOD", ".CSY", ".ELE", ".EGR", ".RLC", ".MAT", ".PL1", ".FTC", ".SNC", ".STE", ".STN",
    ".STP", ".PL3", ".PL4", ".FTS", ".FTX", ".FBD", ".HTO", ".FLH", ".FTR", ".FTD", ".FTI", ".SFA"};

// A link is none.
bool IsFolder(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::is_directory(std::filesystem::symlink_status(path, ignored));
}

// Also a link to nowhere.
bool IsThere(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::exists(std::filesystem::symlink_status(path, ignored));
}

// Extensions that the mark of a killed build names. It may be cut or be something else.
std::string MarkText(platform::FileSystem& files, const std::string& path) {
  constexpr std::size_t kMost = 1024;
  std::string text(kMost, '\0');
  const auto file = files.Open(path, OpenMode::kReadOnly);
  text.resize(file->ReadAt(0, std::as_writable_bytes(std::span(text))));
  return text;
}

}  // namespace

std::span<const std::string_view> ReplacedExtensions() { return kOwnExtensions; }

StudyStage::StudyStage(const std::string& study_base, platform::FileSystem& files)
    : files_(files), folder_(BuildFolder(study_base)), mark_(HalfBuiltMark(study_base)) {
  for (const std::string_view extension : kOwnExtensions) {
    const std::string name(extension);
    places_.push_back({extension, study_base + name, folder_ + "/new" + name, folder_ + "/old" + name});
  }
  order_.reserve(places_.size());
  if (IsFolder(folder_)) Recover();
  files_.CreateFolder(folder_);
}

StudyStage::~StudyStage() {
  if (marked_) return;  // the next build needs what lies there
  try {
    Clear();
  } catch (const std::exception&) {
    // The build has failed already; what is left behind is a folder that no program reads.
  }
}

const std::string& StudyStage::Stage(std::string_view extension) {
  const auto place = std::find_if(places_.begin(), places_.end(),
                                  [extension](const Place& one) { return one.extension == extension; });
  assert(place != places_.end() && !place->written);
  place->written = true;
  order_.push_back(static_cast<std::size_t>(place - places_.begin()));
  return place->fresh;
}

void StudyStage::Write(std::string_view extension, std::span<const std::byte> bytes,
                       std::span<const std::byte> more) {
  const auto file = files_.Open(Stage(extension), OpenMode::kCreateNew);
  file->WriteAt(0, bytes);
  if (!more.empty()) file->WriteAt(bytes.size(), more);
}

WriteReport StudyStage::Commit() {
  WriteReport report;
  for (const std::size_t i : order_) {
    const Place& place = places_[i];
    const std::uint64_t size = files_.Open(place.fresh, OpenMode::kReadOnly)->Size();
    report.files.push_back({std::string(place.extension), size});
    RequireNoFolder(place);
  }
  report.removed.reserve(places_.size());
  SetMark();
  try {
    Replace(report);
    files_.Remove(mark_);
  } catch (...) {
    TryToPutBack();
    throw;
  }
  marked_ = false;
  try {
    Clear();
  } catch (const FileError& error) {
    report.left_over = error.what();
  }
  return report;
}

// False when there is nothing of that name. Tried instead of asked for, so that a link to nowhere is kept,
// too.
bool StudyStage::Moved(const std::string& from, const std::string& to) {
  try {
    files_.Rename(from, to);
    return true;
  } catch (const FileError& error) {
    if (!error.NotThere()) throw;
    return false;
  }
}

// A folder in the place of a file would be moved as the file is.
void StudyStage::RequireNoFolder(const Place& place) {
  if (IsFolder(place.target)) {
    throw FileError(place.target, "write", static_cast<int>(std::errc::is_a_directory));
  }
}

void StudyStage::SetMark() {
  std::string text = "The files of the study are being replaced by these:";
  for (const std::size_t i : order_) text.append(" ").append(places_[i].extension);
  text += "\nWhere no build is running, one was ended before its time: build the study again.\n";
  const auto file = files_.Open(mark_, OpenMode::kCreateNew);
  marked_ = true;
  try {
    file->WriteAt(0, std::as_bytes(std::span(text)));
  } catch (...) {
    TryToPutBack();
    throw;
  }
}

void StudyStage::Replace(WriteReport& report) {
  for (Place& place : places_) {
    if (!place.written && IsFolder(place.target)) continue;
    place.moved = Moved(place.target, place.earlier);
    if (place.moved && !place.written) report.removed.emplace_back(place.extension);
  }
  for (auto place = places_.rbegin(); place != places_.rend(); ++place) {
    if (place->written) files_.Rename(place->fresh, place->target);
  }
}

// The earlier study, from every point of Replace; and from every point of itself, since it is what a later
// build does for one that was killed here.
void StudyStage::PutBack() {
  for (auto place = places_.rbegin(); place != places_.rend(); ++place) {
    if (place->written && !files_.Exists(place->fresh)) Moved(place->target, place->fresh);
    if (place->moved) files_.Rename(place->earlier, place->target);
  }
  files_.Remove(mark_);
  marked_ = false;
}

void StudyStage::TryToPutBack() {
  try {
    PutBack();
  } catch (const std::exception&) {
    // The mark stays, so that nobody runs the study, and the build fails for the reason it has already.
  }
}

void StudyStage::Recover() {
  if (files_.Exists(mark_)) {
    const std::string text = MarkText(files_, mark_);
    const std::string list = text.substr(0, text.find('\n'));
    for (Place& place : places_) {
      place.written = list.find(place.extension) != std::string::npos;
      place.moved = IsThere(place.earlier);
    }
    PutBack();
    for (Place& place : places_) place.written = place.moved = false;
  }
  Clear();
}

void StudyStage::Clear() {
  for (const Place& place : places_) {
    files_.Remove(place.fresh);
    files_.Remove(place.earlier);
  }
  files_.RemoveFolder(folder_);
}

}  // namespace zentor
