#include "study_files.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <iostream>

#include "binary_file.h"
#include "commands.h"
#include "database/study_lock.h"
#include "definition_state.h"
#include "platform/text.h"
#include "services/faults.h"
#include "study/extended_options.h"

namespace zentor::companion {

namespace {

using platform::OpenMode;
using platform::RandomAccessFile;

constexpr std::array kFileKinds = {
    FileKind{".MAS", "master control table"},
    FileKind{".NOD", "nodes"},
    FileKind{".CSY", "coordinate systems"},
    FileKind{".ELE", "elements"},
    FileKind{".EGR", "element groups"},
    FileKind{".RLC", "real constants"},
    FileKind{".MAT", "materials"},
    FileKind{".PL1", "nodal results of the static solution"},
    FileKind{".FTC", "fatigue definition"},
    FileKind{".SNC", "S-N curves"},
    FileKind{".STE", "element stresses"},
    FileKind{".STN", "element stresses, nonlinear"},
    FileKind{".STP", "element stresses, time steps"},
    FileKind{".PL3", "nodal results by time step, 24-byte records"},
    FileKind{".PL4", "nodal results by time step, 288-byte records"},
    FileKind{".HTO", "nodal temperatures"},
    FileKind{".FLH", "load histories"},
    FileKind{".FBD", "surface faces"},
    FileKind{".FTS", "list of studies"},
    FileKind{".FTX", "extended options"},
    FileKind{".FTG", "listing"},
    FileKind{".OUT", "listing, multi-study"},
    FileKind{".LOG", "run summaries"},
    FileKind{".FTR", "results per node"},
    FileKind{".FTI", "result records of single locations"},
    FileKind{".FTD", "range-mean matrices"},
    FileKind{".SFA", "scratch store of nodal stresses"},
};

std::string Upper(std::string_view text) {
  std::string upper(text);
  std::transform(upper.begin(), upper.end(), upper.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return upper;
}

class ReadOnlyFile final : public RandomAccessFile {
 public:
  explicit ReadOnlyFile(std::unique_ptr<RandomAccessFile> file) : file_(std::move(file)) {}
  std::size_t ReadAt(std::uint64_t offset, std::span<std::byte> out) override {
    return file_->ReadAt(offset, out);
  }
  void WriteAt(std::uint64_t, std::span<const std::byte>) override {}
  std::uint64_t Size() override { return file_->Size(); }

 private:
  std::unique_ptr<RandomAccessFile> file_;
};

void RequireNoMark(const std::string& base) {
  if (!platform::NativeFileSystem().Exists(HalfBuiltMark(base))) return;
  throw CommandFailure(base +
                       ": a build was ended before it had replaced all files of the study, so they do not "
                       "belong together; build the study again");
}

// A listed study as the solver finds it: by its name, or beside the study `base` when only there it has
// stresses.
std::string Located(const std::string& name, const std::string& base) {
  const std::size_t folder_end = base.find_last_of('/');
  if (name.front() == '/' || folder_end == std::string::npos) return name;
  const auto has_stresses = [](const std::string& study) {
    constexpr std::array kExtensions = {".STE", ".STN", ".STP"};
    return std::any_of(kExtensions.begin(), kExtensions.end(), [&](const char* extension) {
      return platform::NativeFileSystem().Exists(study + extension);
    });
  };
  const std::string beside = base.substr(0, folder_end + 1) + name;
  return !has_stresses(name) && has_stresses(beside) ? beside : name;
}

}  // namespace

std::span<const FileKind> FileKinds() { return kFileKinds; }

std::string_view KnownExtension(std::string_view path) {
  if (path.size() < 4) return {};
  const std::string ending = Upper(path.substr(path.size() - 4));
  const auto* const found = std::find_if(kFileKinds.begin(), kFileKinds.end(),
                                         [&](const FileKind& kind) { return kind.extension == ending; });
  return found == kFileKinds.end() ? std::string_view{} : found->extension;
}

std::string StudyBase(std::string_view typed) {
  if (!KnownExtension(typed).empty()) typed.remove_suffix(4);
  const bool is_folder_name =
      typed == "." || typed == ".." || typed.ends_with("/.") || typed.ends_with("/..");
  if (typed.ends_with('.') && !is_folder_name) typed.remove_suffix(1);
  return std::string(typed);
}

std::optional<std::string> StudyNameFault(const std::string& base) {
  constexpr std::size_t kMostCharacters = 255;  // of an argument of the solver
  const std::string name = base.substr(base.find_last_of('/') + 1);
  if (name.find_first_not_of('.') == std::string::npos) {
    return "is a folder, expected the base path of a study's files";
  }
  if (const std::string taken = StudyBase(base); taken != base) {
    return fmt::format("is taken for the study {} wherever a study is named; name that", taken);
  }
  if (base.find('"') != std::string::npos) return "the solver takes no study with a double quote in its name";
  const std::u16string wide = platform::ToWide(base);
  const auto is_control = [](char16_t c) { return c < 0x20 || (c >= 0x7F && c < 0xA0); };
  if (std::any_of(wide.begin(), wide.end(), is_control)) {
    return "the solver takes no study with a control character in its name";
  }
  const std::size_t characters = wide.size() + (base.starts_with('-') ? 2 : 0);  // run writes "./" before it
  if (characters > kMostCharacters) {
    return fmt::format("the solver takes no base path of more than {} characters; it has {}", kMostCharacters,
                       characters);
  }
  return std::nullopt;
}

std::vector<std::string> ReadStudyList(const std::string& path) {
  constexpr std::uint64_t kLongestStudyList = std::uint64_t{1} << 20U;
  BinaryFile file(path);
  if (file.size() > kLongestStudyList) {
    file.Fault("size", std::to_string(file.size()) + " bytes", "a list of at most 1 MiB");
  }
  std::u16string text;
  for (std::uint64_t at = 0; at + 2 <= file.size(); at += 2) {
    std::array<std::byte, 2> pair{};
    file.Read(at, pair, "text");
    text +=
        static_cast<char16_t>(std::to_integer<unsigned>(pair[0]) | std::to_integer<unsigned>(pair[1]) << 8U);
  }
  if (text.starts_with(u'\uFEFF')) text.erase(0, 1);
  std::vector<std::string> names;
  std::u16string_view rest = text;
  while (!rest.empty()) {
    const std::size_t end = rest.find_first_of(std::u16string_view(u"\0\n\r", 3));
    names.push_back(platform::ToUtf8(rest.substr(0, end)));
    if (end == std::u16string_view::npos) break;
    // A carriage return and a line feed are one line end.
    const bool pair = rest[end] == u'\r' && end + 1 < rest.size() && rest[end + 1] == u'\n';
    rest.remove_prefix(end + (pair ? 2 : 1));
  }
  return names;
}

void RequireWholeStudy(const std::string& base) {
  RequireNoMark(base);
  const std::string list = base + ".FTS";
  if (!platform::NativeFileSystem().Exists(list)) return;
  for (const std::string& name : ReadStudyList(list)) {
    if (!name.empty()) RequireNoMark(Located(name, base));
  }
}

namespace {

// Those of a study without any where they cannot be read: the solver says why.
ExtendedOptions StoredOptions(const std::string& base) {
  try {
    return ReadExtendedOptions(platform::NativeFileSystem(), base + std::string(ftx_format::kExtension));
  } catch (const InputFault&) {
    return {};
  } catch (const platform::FileError&) {
    return {};
  }
}

}  // namespace

std::vector<std::string> StoredDefinitionFiles(const std::string& base) {
  return DefinitionFiles(base, StoredOptions(base), platform::NativeFileSystem());
}

void TellDefinitionChange(const std::string& base) {
  const std::string change = DefinitionChange(base, StoredOptions(base), platform::NativeFileSystem());
  if (!change.empty()) std::cerr << "warning: " << change << '\n';
}

std::optional<DbTable> TableNamed(std::string_view name) {
  std::string extension = Upper(name);
  if (!extension.starts_with('.')) extension.insert(extension.begin(), '.');
  for (std::size_t i = 0; i < kTableExtensions.size(); ++i) {
    if (kTableExtensions[i] == extension) return static_cast<DbTable>(i + 1);
  }
  return std::nullopt;
}

std::unique_ptr<RandomAccessFile> ReadOnlyFiles::Open(const std::string& path, OpenMode) {
  return std::make_unique<ReadOnlyFile>(platform::NativeFileSystem().Open(path, OpenMode::kReadOnly));
}

bool ReadOnlyFiles::Exists(const std::string& path) { return platform::NativeFileSystem().Exists(path); }
void ReadOnlyFiles::Remove(const std::string&) {}
void ReadOnlyFiles::Rename(const std::string&, const std::string&) {}

bool StudyTables::HasFile(Extension extension) { return files_.Exists(Path(extension)); }

TableFile* StudyTables::Find(DbTable table) {
  const auto i = static_cast<std::size_t>(table) - 1;
  Slot& slot = tables_[i];
  if (!slot.tried) {
    slot.tried = true;
    const std::string path = Path(kTableExtensions[i]);
    if (TableIsPresent(files_, path)) slot.file = std::make_unique<TableFile>(files_, path);
  }
  return slot.file.get();
}

bool StudyTables::Has(DbTable table, int id) {
  const TableFile* file = Find(table);
  return file != nullptr && file->SlotOf(id) != 0;
}

void StudyTables::Read(DbTable table, int id, int first, std::span<std::byte> out) {
  if (TableFile* file = Find(table)) {
    return file->Read(id, std::int64_t{first} + (table == DbTable::kMas ? 1 : 0), out);
  }
  std::fill(out.begin(), out.end(), std::byte{0});
}

std::int32_t StudyTables::Int(DbTable table, int id, int field) {
  std::int32_t value = 0;
  Ints(table, id, field, {&value, 1});
  return value;
}

float StudyTables::Real(DbTable table, int id, int field) {
  float value = 0;
  Reals(table, id, field, {&value, 1});
  return value;
}

void StudyTables::Ints(DbTable table, int id, int first, std::span<std::int32_t> out) {
  Read(table, id, first, std::as_writable_bytes(out));
}

void StudyTables::Reals(DbTable table, int id, int first, std::span<float> out) {
  Read(table, id, first, std::as_writable_bytes(out));
}

int StudyTables::Count(DbTable table) {
  const TableFile* file = Find(table);
  return file != nullptr ? file->live_count() : 0;
}

int StudyTables::MaxId(DbTable table) {
  const TableFile* file = Find(table);
  return file != nullptr ? file->highest_id() : 0;
}

}  // namespace zentor::companion
