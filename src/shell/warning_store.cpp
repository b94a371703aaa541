#include "shell/warning_store.h"

namespace zentor {

void WarningStore::Record(std::u16string_view warning, std::u16string_view step,
                          std::u16string_view elapsed) {
  const std::lock_guard lock(mutex_);
  recent_.emplace_back(warning.substr(0, room_ - 1)).push_back(u'\n');
  used_ += recent_.back().size();
  while (recent_.size() > most_ || used_ > room_) {
    used_ -= recent_.front().size();
    recent_.pop_front();
  }
  log_.append(step).append(u"+").append(elapsed).append(u"+").append(warning).append(u"\n");
}

std::u16string WarningStore::RecentText() const {
  const std::lock_guard lock(mutex_);
  std::u16string text;
  for (const std::u16string& warning : recent_) text.append(warning);
  return text;
}

std::u16string WarningStore::LogText() const {
  const std::lock_guard lock(mutex_);
  return log_;
}

}  // namespace zentor
