// Study names: the base paths from which study files are formed.
#pragma once

#include <string>
#include <string_view>

#include "platform/files.h"
#include "services/solver_services.h"

namespace zentor {

// Line `number` (from 1) of a study list: UTF-16 little-endian with or without a byte-order mark, lines ended
// by NUL, line feed or carriage return (a carriage return and line feed count once). Empty when there is no
// such line.
std::u16string StudyListLine(std::string_view bytes, int number);

// The name buffers of a run: 0 the study, 1 the second study of multi-study mode.
class StudyNames {
 public:
  StudyNames(platform::FileSystem& files, std::u16string study);

  // Path (UTF-8) of a file of the selected study.
  std::string FileName(Extension extension) const;
  // The same for the study itself, whichever is selected. Any thread.
  std::string OwnFileName(Extension extension) const;
  void Select(int buffer) { selected_ = buffer; }
  const std::u16string& Name(int buffer) const { return names_[buffer]; }
  // Fills buffer 1 from the study's ".FTS". A relative name that has no files where the program runs is taken
  // relative to the study's folder. Leaves the buffer alone when there is no list.
  void ReadSecond(int line);

 private:
  std::u16string Located(const std::u16string& name) const;

  platform::FileSystem& files_;
  std::u16string names_[2];
  int selected_ = 0;
};

}  // namespace zentor
