#include "shell/warning_store.h"

namespace zentor {

void WarningStore::Record(std::u16string_view warning, std::u16string_view step,
                          std::u16string_view elapsed) {
  const std::lock_guard lock(mutex_);
  if (recent_.size() == capacity_) recent_.pop_front();
  recent_.emplace_back(warning);
  log_.append(step).append(u"+").append(elapsed).append(u"+").append(warning).append(u"\n");
}

std::u16string WarningStore::RecentText() const {
  const std::lock_guard lock(mutex_);
  std::u16string text;
  for (const std::u16string& warning : recent_) text.append(warning).append(u"\n");
  return text;
}

std::u16string WarningStore::LogText() const {
  const std::lock_guard lock(mutex_);
  return log_;
}

}  // namespace zentor
