// All mistakes of a definition, gathered while it is read, so that the user hears of them in one go.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "definition_error.h"

namespace zentor::companion {

class DefinitionErrors {
 public:
  using Place = std::size_t;

  // definition: its own path; errors there are told before those in the files it names.
  explicit DefinitionErrors(std::string definition) : definition_(std::move(definition)) {}

  // Returns the error's place for Withdraw.
  Place Add(const DefinitionError& error);
  // A mistake in a long table, the `nth` one there. Of one table only the first few are shown, since the same
  // mistake tends to be in every row and would hide those of other tables.
  void AddOfTable(const DefinitionError& error, std::size_t nth);
  // Takes an error back that follows from another one.
  void Withdraw(Place place);

  // Grows with every error, those included that are not shown.
  std::size_t count() const { return count_; }
  bool empty() const { return count_ == 0; }
  // REQUIRES: not empty. Throws one DefinitionError with a line for each of the first errors, by file and
  // line, and "and N more" for the rest.
  [[noreturn]] void Throw() const;

 private:
  struct Entry {
    DefinitionError error;
    bool withdrawn = false;
  };
  std::vector<const DefinitionError*> InOrder() const;

  std::string definition_;
  std::vector<Entry> kept_;
  std::size_t count_ = 0;
};

}  // namespace zentor::companion
