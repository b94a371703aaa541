// Whether a run may work on its study, settled before anything of the study is opened.
#pragma once

#include <optional>
#include <string>

#include "database/study_lock.h"
#include "platform/files.h"
#include "shell/message_catalog.h"

namespace zentor {

// Holds the study's lock as long as it lives, unless the run is refused.
class StudyAccess {
 public:
  StudyAccess(platform::FileSystem& files, const std::string& study_base);

  bool Refused() const { return refused_; }
  // Why the run is refused, or what speaks against it all the same; empty when there is nothing to say.
  std::u16string Text(const MessageCatalog& catalog) const;

 private:
  void Settle(platform::FileSystem& files, const std::string& study_base);

  std::optional<StudyLock> lock_;
  bool refused_ = true;
  int message_ = 0;
  std::string argument_;
};

}  // namespace zentor
