// The files of a study while they are built, and the step that puts them in the place of the earlier ones
// (docs/formats/build.md).
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"

namespace zentor {

struct WrittenFile {
  std::string extension;
  std::uint64_t size = 0;
};

struct WriteReport {
  std::vector<WrittenFile> files;
  std::vector<std::string>
      removed;            // extensions of files of an earlier study or run that no longer belong to it
  std::string left_over;  // why the folder of the build could not be removed; empty when it was
};

// What a build writes or takes away.
std::span<const std::string_view> ReplacedExtensions();

// Files are gathered in a folder beside the study. Commit replaces the earlier ones, all or none: it marks
// the study as half replaced, moves the earlier files into the folder, ".MAS" first, and the new ones out,
// ".MAS" last, and takes the mark away. Whatever fails before that, the earlier files are put back. A build
// that was killed in between leaves the mark; the next one puts back what it had moved. The caller holds the
// study's lock.
class StudyStage {
 public:
  // Puts back and clears away what a killed build has left, then creates the folder. Throws FileError.
  StudyStage(const std::string& study_base, platform::FileSystem& files);
  StudyStage(const StudyStage&) = delete;
  StudyStage& operator=(const StudyStage&) = delete;
  ~StudyStage();

  // The path to write a file of the new study to; extension: one of those a study can consist of.
  const std::string& Stage(std::string_view extension);
  void Write(std::string_view extension, std::span<const std::byte> bytes,
             std::span<const std::byte> more = {});

  // Replaces the study. Files of an earlier study or run that the new one lacks go with the earlier ones; the
  // listing and the run summary stay. Once; throws FileError.
  WriteReport Commit();

 private:
  // Built ahead, so that nothing need be allocated to undo.
  struct Place {
    std::string_view extension;
    std::string target, fresh, earlier;
    bool written = false;  // the new study has it
    bool moved = false;    // the earlier file is in the folder
  };
  void Recover();
  void RequireNoFolder(const Place& place);
  void SetMark();
  bool Moved(const std::string& from, const std::string& to);
  void Replace(WriteReport& report);
  void PutBack();
  void TryToPutBack();
  void Clear();

  platform::FileSystem& files_;
  std::string folder_, mark_;
  std::vector<Place> places_;       // ".MAS" first
  std::vector<std::size_t> order_;  // of staging, indices of places_
  bool marked_ = false;
};

}  // namespace zentor
