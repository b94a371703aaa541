#include "shell/start_up.h"

#include <algorithm>
#include <span>

#include "platform/code_pages.h"
#include "platform/system.h"
#include "platform/text.h"

namespace zentor {
namespace {

constexpr int kSolverTitle = 919;
constexpr int kCaptionSecondPart = 932;
constexpr std::size_t kNarrowNameLimit = 255;  // bytes
constexpr std::size_t kNumberLimit = 7;        // characters of an environment variable that holds a number
constexpr long kMostThreads = 1024;

long NumberOf(const std::optional<std::string>& text) {
  if (!text || text->size() > kNumberLimit) return 1;
  return LeadingInteger(platform::ToWide(*text));
}

}  // namespace

std::optional<std::u16string> StudyNameOf(const CommandLine& line, platform::FileSystem& files) {
  if (line.count > 2) return line.tokens[2];
  try {
    const auto file = files.Open("X.BAT", platform::OpenMode::kReadOnly);
    std::string bytes(256, '\0');
    bytes.resize(file->ReadAt(0, std::as_writable_bytes(std::span(bytes.data(), bytes.size()))));
    return StudyNameFromBatch(bytes);
  } catch (const platform::FileError&) {
    return std::nullopt;
  }
}

void SettleCodePage(ShellContext& shell) {
  const std::u16string& name = shell.names.Name(0);
  for (const CatalogLanguage& language : kCatalogLanguages) {
    const std::string_view code_page = platform::CodePageOf(language.locale);
    const auto narrow = platform::RoundTrip(name, code_page);
    if (!narrow || narrow->size() > kNarrowNameLimit) continue;
    shell.code_page = code_page;
    shell.narrow_name = *narrow;
    return;
  }
  shell.code_page.clear();
  shell.narrow_name = platform::ToUtf8(name);
}

void SettleThreadCount(ShellContext& shell) {
  const auto processors = platform::Environment("NUMBER_OF_PROCESSORS");
  const long count = NumberOf(processors);
  if (count <= 1 || count == NumberOf(platform::Environment("OMP_NUM_THREADS"))) return;
  platform::SetEnvironment("OMP_NUM_THREADS", *processors);
  // The evaluation's own threads have read the environment already.
  shell.solver_threads = static_cast<int>(std::min(count, kMostThreads));
}

void ComposeCaption(ShellContext& shell) {
  shell.title = FormatCatalogMessage(shell.catalog, kSolverTitle);
  shell.caption = shell.title + FormatCatalogMessage(shell.catalog, kCaptionSecondPart);
  const std::u16string& name = shell.names.Name(0);
  const auto space =
      static_cast<std::ptrdiff_t>(kScreenColumns) - static_cast<std::ptrdiff_t>(shell.caption.size()) - 9;
  if (static_cast<std::ptrdiff_t>(name.size()) <= space) {
    shell.caption += name;
  } else {
    const auto tail = static_cast<std::size_t>(std::max<std::ptrdiff_t>(space - 6, 0));
    shell.caption += name.substr(0, 3) + u"..." + name.substr(name.size() - std::min(tail, name.size()));
  }
  if (!shell.caption.empty() && shell.caption.back() == u'\n') shell.caption.pop_back();
}

}  // namespace zentor
