// How the layers below the run driver report a file that cannot be used.
#pragma once

#include <exception>
#include <string>
#include <utility>

namespace zentor {

// A value in an input file that cannot be true of a sound file (beyond the file's end, negative, cyclic,
// ...). Low layers throw it; the run driver alone catches it, writes it to the listing and stops the run.
class InputFault : public std::exception {
 public:
  // file: path; place: "header word 3", "element 17, word 2"; found: the value; wanted: what was expected.
  InputFault(std::string file, std::string place, std::string found, std::string wanted)
      : file_(std::move(file)),
        place_(std::move(place)),
        found_(std::move(found)),
        wanted_(std::move(wanted)),
        text_(file_ + ": " + place_ + " is " + found_ + ", expected " + wanted_) {}
  const char* what() const noexcept override { return text_.c_str(); }
  const std::string& file() const { return file_; }
  const std::string& place() const { return place_; }
  const std::string& found() const { return found_; }
  const std::string& wanted() const { return wanted_; }

 private:
  std::string file_, place_, found_, wanted_, text_;
};

}  // namespace zentor
