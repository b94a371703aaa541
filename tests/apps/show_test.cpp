#include "show.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "apps/word_file.h"
#include "build_study.h"
#include "commands.h"
#include "printable_output.h"
#include "reading_services.h"
#include "services/faults.h"

namespace zentor::companion {
namespace {

using test::TempFolder;
using test::WordFile;
using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

// The documented example studies, and files of a run made by hand.
class ShownStudy : public testing::Test {
 protected:
  ShownStudy() {
    BuildStudy(ZENTOR_DOCS "/study-example.toml", Base(), false, platform::NativeFileSystem());
    BuildStudy(ZENTOR_DOCS "/study-example-variable.toml", folder_.Path("var"), false,
               platform::NativeFileSystem());
    WordFile results, records;
    results.Ints({10, 7, 6, 2, 2, 0, 0, 0, 0, 0});
    for (const float node : {1.0F, 2.0F, 6.0F}) results.Reals({node, 0, node / 8, 0, 0.5F, 0, 0, 0, 0, 0});
    results.Write(Base() + ".FTR");
    records.Record({3}).Record({1, 2, 3, 1, 1}).Record({3}, {0.625F});
    records.Write(Base() + ".FTI");
    WordFile matrices(100);
    matrices.Set(0, 2).Set(1, 1).Set(10, 1).Ints({1}).Reals({0, 10, -20, 5}).Ints({0, 3, 0, 0});
    matrices.Write(Base() + ".FTD");
    WordFile store(35);  // five records of seven words
    store.Set(0, 1).Set(1, 5).SetReal(28, 123.5F).Write(Base() + ".SFA");
    WordFile step(864);  // two steps of six nodes, records of 72 words
    step.SetReal(504, 44.5F).Write(Base() + ".PL4");
    test::WriteText(Base() + ".FTG", " one\n two\n *** WARNING \x1b[2J\u009b\n four\n");
    const char16_t names[] = u"\uFEFFfirst\r\nsecond\n";
    test::WriteBytes(folder_.Path("list.FTS"), std::as_bytes(std::span(names, std::size(names) - 1)));
  }

  std::string Base() const { return folder_.Path("job"); }
  std::string Shown(const std::string& study, std::vector<std::string> words = {},
                    std::uint64_t limit = kNoLimit) {
    std::ostringstream out;
    Show(study, words, limit, out);
    return out.str();
  }

  TempFolder folder_;
};

TEST_F(ShownStudy, FilesAreFoundByTheirNamesInAnyForm) {
  EXPECT_EQ(Shown(Base() + ".FTC"), Shown(Base() + ".", {".ftc"}));
  EXPECT_EQ(Shown(Base(), {"ftc", "104", "3"}), "1  1e-45  node\n");
  EXPECT_EQ(Shown(Base(), {"mas", "33", "3"}), "1065353216  1  FatigueStrengthReductionFactor\n")
      << ".MAS fields count from the one behind the id";
  EXPECT_THAT(Shown(Base() + ".SFA"), ContainsRegex("record 5: +123.5"));
  EXPECT_THAT(Shown(Base() + ".PL4", {"2", "2"}), ContainsRegex("2 +2 +44.5"));
}

TEST_F(ShownStudy, LongListsAreBoundedAndTextIsHarmless) {
  EXPECT_THAT(Shown(Base(), {"NOD"}, 2),
              AllOf(HasSubstr("node 2"), Not(HasSubstr("node 3")), HasSubstr("4 more")));
  EXPECT_EQ(Shown(Base() + ".FTG", {}, 2), " one\n... 2 lines (--all shows them)\n four\n\n");
  EXPECT_THAT(Shown(Base() + ".FTG"), AllOf(HasSubstr("WARNING ?[2J?\n"), Not(HasSubstr("\x1b"))))
      << "text cannot command the terminal";
}

TEST(PrintableText, CharactersInPiecesStayWhole) {
  std::ostringstream out;
  {
    const PrintableOutput printable(out);
    for (const char* piece :
         {"\xC3", "\xA9\x1b", "\xE2\x82", "\xAC|", "\xF0\x9F\x98", "\x80\t\xC2", "\x9b", "\xE2"})
      out << piece;
  }
  EXPECT_EQ(out.str(), "\u00e9?\u20ac|\U0001f600\t?\xE2");
}

TEST_F(ShownStudy, WhatTheSolversFunctionsWriteStaysInMemory) {
  const auto before = folder_.Contents();
  MemoryOverlay files;
  const std::string store = Base() + ".SFA", other = Base() + ".NOD";
  const auto bytes = [](std::string_view text) { return std::as_bytes(std::span(text)); };
  EXPECT_EQ(files.Open(store, platform::OpenMode::kReadOnly)->Size(), 140U) << "of the disk";
  files.Open(store, platform::OpenMode::kReplace)->WriteAt(2, bytes("abcd"));
  const auto file = files.Open(store, platform::OpenMode::kReadWriteCreate);
  std::array<std::byte, 4> read{};
  EXPECT_EQ(file->ReadAt(4, read), 2U);
  EXPECT_TRUE(std::ranges::equal(std::span(read).first(2), bytes("cd")));
  EXPECT_EQ(file->ReadAt(6, read), 0U);
  EXPECT_EQ(file->Size(), 6U);
  files.Rename(store, other);
  EXPECT_FALSE(files.Exists(store));
  EXPECT_EQ(files.Open(other, platform::OpenMode::kReadOnly)->Size(), 6U);
  files.Remove(other);
  EXPECT_FALSE(files.Exists(other));
  EXPECT_EQ(folder_.Contents(), before);
}

TEST_F(ShownStudy, ResultsOfAKilledRunAreNoDamage) {
  test::WriteText(Base() + ".FTD", "cut");
  WordFile(30).Write(Base() + ".FTR");
  EXPECT_THAT(Shown(Base()), AllOf(HasSubstr(".FTR: the run that wrote it did not finish"),
                                   HasSubstr(".FTD: the run that wrote it did not finish")));
}

// Cut files and wild words: the dump succeeds or says what is wrong, and does nothing else.
TEST_F(ShownStudy, HostileFilesAreReportedOrShown) {
  const auto survives = [&](const std::string& path, std::span<const std::byte> bytes) {
    test::WriteBytes(path, bytes);
    try {
      Shown(path, {}, 20);
      Shown(Base(), {}, 20);
    } catch (const InputFault&) {
    } catch (const CommandFailure&) {
    }
  };
  for (const std::string name : {"job.MAS", "job.NOD", "job.FTC", "job.STE", "job.HTO", "job.FBD", "job.FTR",
                                 "job.FTI", "job.FTD", "job.SFA", "job.PL4", "var.FLH"}) {
    const std::string path = folder_.Path(name);
    const std::vector<std::byte> good = test::ReadBytes(path);
    for (std::size_t length = 0; length < good.size(); length += good.size() / 97 + 1)
      survives(path, std::span(good).first(length));
    for (std::size_t word = 0; word < good.size() / 4; word += word < 64 ? 1 : 41) {
      for (const std::int32_t value : {-1, 0, 1, 2147483647, -2147483647 - 1, 1 << 20, 0x7FC00000}) {
        std::vector<std::byte> bad = good;
        StoreInt(bad.data() + 4 * word, value);
        survives(path, bad);
      }
    }
    test::WriteBytes(path, good);
  }
  EXPECT_THAT(Shown(Base()), HasSubstr("Wall of a vessel"));
}

}  // namespace
}  // namespace zentor::companion
