// A stream that a person reads in a terminal.
#pragma once

#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

namespace zentor::companion {

// As long as it lives, control characters of whatever is written to the stream become '?' (line feeds and
// tabs stay): titles, names and paths come from files and must not steer the terminal.
class PrintableOutput {
 public:
  explicit PrintableOutput(std::ostream& out);
  PrintableOutput(const PrintableOutput&) = delete;
  PrintableOutput& operator=(const PrintableOutput&) = delete;
  ~PrintableOutput();

  // As long as it lives, what is written to the stream stays as it is: for files that are no text.
  class Raw {
   public:
    explicit Raw(std::ostream& out);
    Raw(const Raw&) = delete;
    Raw& operator=(const Raw&) = delete;
    ~Raw();

   private:
    std::ostream& out_;
    std::streambuf* earlier_;
  };

 private:
  class Filter final : public std::streambuf {
   public:
    explicit Filter(std::streambuf* to) : to_(to) {}
    bool WriteHeld();
    std::streambuf* unfiltered() const { return to_; }

   protected:
    int_type overflow(int_type c) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;
    int sync() override;

   private:
    bool Write(std::string_view text);

    std::streambuf* to_;
    std::string held_;  // the beginning of a character whose end has not come yet
  };

  std::ostream& out_;
  std::streambuf* earlier_;
  Filter filter_;
};

}  // namespace zentor::companion
