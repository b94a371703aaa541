#include "shell/study_access.h"

#include "platform/text.h"
#include "services/faults.h"
#include "services/message_arguments.h"

namespace zentor {
namespace {

constexpr int kStudyInUse = 9090;
constexpr int kStudyHalfBuilt = 9091;
constexpr int kStudyNotLocked = 9092;
constexpr int kStudyUnprotected = 9093;

}  // namespace

StudyAccess::StudyAccess(platform::FileSystem& files, const std::string& study_base) {
  Settle(files, study_base);
}

void StudyAccess::Settle(platform::FileSystem& files, const std::string& study_base) {
  const auto say = [this](int message, std::string argument) {
    message_ = message;
    argument_ = std::move(argument);
  };
  try {
    lock_.emplace(study_base, "zentor-fatigue");
  } catch (const platform::FileError& error) {
    return say(kStudyNotLocked, error.what());
  } catch (const InputFault& fault) {
    return say(kStudyNotLocked, fault.what());
  }
  if (!lock_->holder().empty()) return say(kStudyInUse, lock_->holder());
  if (files.Exists(HalfBuiltMark(study_base))) return say(kStudyHalfBuilt, "");
  refused_ = false;
  if (!lock_->unprotected().empty()) say(kStudyUnprotected, lock_->unprotected());
}

std::u16string StudyAccess::Text(const MessageCatalog& catalog) const {
  if (message_ == 0) return {};
  return FormatCatalogMessage(catalog, message_, TextArguments(platform::ToWide(argument_)));
}

}  // namespace zentor
