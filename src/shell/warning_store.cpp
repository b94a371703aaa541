#include "shell/warning_store.h"

namespace zentor {

void WarningStore::Record(std::u16string_view warning, std::u16string_view step,
                          std::u16string_view elapsed) {
  if (recent_.size() == capacity_) recent_.pop_front();
  recent_.emplace_back(warning);
  log_.append(step).append(u"+").append(elapsed).append(u"+").append(warning).append(u"\n");
}

std::u16string WarningStore::RecentText() const {
  std::u16string text;
  for (const std::u16string& warning : recent_) text.append(warning).append(u"\n");
  return text;
}

}  // namespace zentor
