#include "shell/run_summary.h"

#include <array>
#include <string>
#include <utility>

#include "database/bytes.h"
#include "platform/text.h"
#include "shell/master_control.h"

namespace zentor {
namespace {

constexpr int kSummaryMessage = 939;
constexpr std::uint64_t kHighestIdOffset = 32;  // header word 9 of a table

using Failures = std::vector<std::string>;

float HighestId(ShellContext& shell, Extension extension, Failures& failures) {
  try {
    const auto file =
        platform::OpenIfThere(shell.files, shell.names.OwnFileName(extension), platform::OpenMode::kReadOnly);
    std::array<std::byte, 4> word{};
    if (file && file->ReadAt(kHighestIdOffset, word) == word.size()) {
      return static_cast<float>(LoadInt(word.data()));
    }
  } catch (const platform::FileError& error) {
    failures.emplace_back(error.what());
  }
  return 0.0F;
}

void WriteText(platform::RandomAccessFile& file, std::uint64_t& position, const std::string& text) {
  file.WriteAt(position, std::as_bytes(std::span(text.data(), text.size())));
  position += text.size();
}

// Where the summary begins: behind a line feed `offset` bytes before the end, or at the end when the log is
// not that long; without an offset behind the text that earlier runs left.
std::uint64_t StartPosition(platform::RandomAccessFile& log, std::int32_t offset) {
  std::uint64_t position = log.Size();
  if (offset > 0 && static_cast<std::uint64_t>(offset) <= position) {
    position -= static_cast<std::uint64_t>(offset);
  }
  if (offset != 0) WriteText(log, position, "\n");
  return position;
}

// The text of the summary message, and where it begins in a log that is not empty. Without a readable ".MAS"
// the text is empty.
std::pair<std::u16string, std::int32_t> SummaryOf(ShellContext& shell, Failures& failures) {
  MasterControl values;
  try {
    values = ReadMasterControl(shell.files, shell.names.OwnFileName(".MAS"), platform::OpenMode::kReadOnly);
  } catch (const platform::FileError& error) {
    if (!error.NotThere()) failures.emplace_back(error.what());
    return {};
  }
  const std::array<float, 3> arguments = {HighestId(shell, ".NOD", failures),
                                          HighestId(shell, ".ELE", failures),
                                          static_cast<float>(values.summary_value)};
  return {FormatCatalogMessage(shell.catalog, kSummaryMessage, arguments), values.summary_offset};
}

}  // namespace

std::vector<std::string> WriteRunSummary(ShellContext& shell, const std::u16string& elapsed) {
  Failures failures;
  try {
    const auto log = shell.files.Open(shell.names.OwnFileName(".LOG"), platform::OpenMode::kReadWriteCreate);
    const auto [summary, offset] = SummaryOf(shell, failures);
    std::uint64_t position = StartPosition(*log, offset);
    WriteText(*log, position, platform::ToUtf8(summary));
    WriteText(*log, position, platform::ToUtf8(elapsed + u"\n"));
    WriteText(*log, position, platform::Printable(platform::ToUtf8(shell.warnings.LogText()), "\n\t"));
  } catch (const platform::FileError& error) {
    failures.emplace_back(error.what());
  }
  return failures;
}

}  // namespace zentor
