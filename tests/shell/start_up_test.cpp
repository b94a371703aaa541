#include "shell/start_up.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "database/bytes.h"
#include "platform/child_process.h"
#include "platform/system.h"
#include "platform/text.h"
#include "shell/master_control.h"
#include "supervised_run.h"

namespace zentor {
namespace {

ShellContext Study(std::u16string name) { return {platform::NativeFileSystem(), std::move(name)}; }

TEST(StartUp, TheFirstCodePageThatHoldsTheNameIsKept) {
  struct Case {
    const char16_t* name;
    const char* code_page;
    const char* narrow;
  };
  for (const Case& c : {Case{u"plain", "CP1252", "plain"}, Case{u"caf\u00E9", "CP1252", "caf\xE9"},
                        Case{u"\u7814\u7A76", "CP950", "\xAC\xE3\xA8\x73"},
                        Case{u"\u30C6\u30B9", "CP932", "\x83\x65\x83\x58"},
                        Case{u"\u7B80\u4F53", "CP936", "\xBC\xF2\xCC\xE5"},
                        Case{u"\u041C\u0438\u0440", "CP932", "\x84\x4D\x84\x79\x84\x82"},
                        Case{u"\uD55C", "CP949", "\xC7\xD1"}, Case{u"\u0159", "CP1250", "\xF8"},
                        Case{u"\u0142\u0159\u7814", "", "\u0142\u0159\u7814"}}) {
    ShellContext shell = Study(c.name);
    SettleCodePage(shell);
    EXPECT_EQ(shell.code_page, c.code_page);
    EXPECT_EQ(shell.narrow_name, c.narrow);
    EXPECT_EQ(shell.names.OwnFileName(".MAS"), platform::ToUtf8(c.name) + ".MAS")
        << "files by the name in UTF-8";
  }
  ShellContext too_long = Study(std::u16string(200, u'\u7814'));
  SettleCodePage(too_long);
  EXPECT_EQ(too_long.code_page, "") << "400 bytes are more than a narrow name has room for";
}

TEST(StartUp, ProcessorsDecideTheThreadsWhereTheyDiffer) {
  struct Case {
    const char* processors;
    const char* threads;
    const char* left;
    int used;
  };
  for (const Case& c :
       {Case{"4", "", "4", 4}, Case{"4", "2", "4", 4}, Case{"4", "4", "4", 0}, Case{"1", "3", "3", 0},
        Case{"", "3", "3", 0}, Case{"-4", "3", "3", 0}, Case{"3x", "1", "3x", 3},
        Case{"99999999", "2", "2", 0}, Case{"9999999", "2", "9999999", 1024}}) {
    platform::SetEnvironment("NUMBER_OF_PROCESSORS", c.processors);
    platform::SetEnvironment("OMP_NUM_THREADS", c.threads);
    ShellContext shell = Study(u"s");
    SettleThreadCount(shell);
    EXPECT_EQ(platform::Environment("OMP_NUM_THREADS"), c.left) << c.processors;
    EXPECT_EQ(shell.solver_threads, c.used) << c.processors;
  }
}

TEST(StartUp, ALongNameIsShortenedInTheCaption) {
  const auto caption = [](std::u16string name) {
    ShellContext shell = Study(std::move(name));
    shell.catalog = ParseMessageCatalog("#define T 919\n#define C 932\n",
                                        u"STRINGTABLE BEGIN T \"Solver\" C \" on \" END")
                        .catalog;
    ComposeCaption(shell);
    EXPECT_EQ(shell.title, u"Solver");
    return shell.caption;
  };
  EXPECT_EQ(caption(u"ends\n"), u"Solver on ends");
  const std::u16string fits(51, u'n');
  EXPECT_EQ(caption(fits), u"Solver on " + fits);
  EXPECT_EQ(caption(u"abc" + std::u16string(100, u'x') + u"xyz"),
            u"Solver on abc..." + std::u16string(42, u'x') + u"xyz")
      << "nine columns are left";
}

TEST(StartUp, ValuesOfTheMasterControlFileLieAtTheirPlaces) {
  const test::TempFolder folder;
  constexpr int kLength = 20;
  std::vector<std::byte> bytes(36 * kLength + 64);
  const int places[] = {36 * kLength + 60, 6 * kLength + 56, 28 * kLength + 68, 7 * kLength + 100,
                        28 * kLength + 72};
  StoreInt(bytes.data(), kLength);
  for (int i = 0; i < 5; ++i) StoreInt(bytes.data() + places[i], 11 + i);
  const auto read = [&](std::size_t size) {
    test::WriteBytes(folder.Path("s.MAS"), std::span(bytes).first(size));
    const MasterControl m =
        ReadMasterControl(platform::NativeFileSystem(), folder.Path("s.MAS"), platform::OpenMode::kReadOnly);
    return std::vector{m.record_length, m.edition,       m.language,
                       m.seconds_spent, m.summary_value, m.summary_offset};
  };
  EXPECT_EQ(read(bytes.size()), (std::vector{kLength, 11, 12, 13, 14, 15}));
  EXPECT_EQ(read(28 * kLength + 75), (std::vector{kLength, 0, 12, 13, 14, 0})) << "a value that is cut is 0";
  StoreInt(bytes.data(), -2'000'000'000);
  EXPECT_EQ(read(bytes.size()), (std::vector{-2'000'000'000, 0, 0, 0, 0, 0}));
}

// The program itself, copied beside a catalog or what the case has in its place.
TEST(StartUp, EndsAsItsFailuresSay) {
  using Files = std::map<std::string, std::string>;
  struct Case {
    std::vector<std::string> arguments;
    Files catalog, study;
    int exit_code;
    const char* told;
    std::vector<std::string> left;  // in the study's folder
  };
  const std::string own = ZENTOR_PROGRAM_DIRECTORY "/";
  const std::string header = test::ReadText(own + "anlmsg.h"), texts = test::ReadText(own + "anlmsg.rc");
  const Files sound = {{"/anlmsg.h", header}, {"/anlmsg.rc", texts}};
  const Files twice = {{"/anlmsg.h", header + "#define TWICE 901\n"}, {"/anlmsg.rc", texts}};
  const Files cut = {{"/anlmsg.h", header}, {"/anlmsg.rc", texts.substr(0, 3000)}};
  const Files batch = {{"/X.BAT", "s  \r\n"}};
  const std::vector<std::string> run = {"run", "s", "-silent"};
  const Case cases[] = {
      {{"s"}, sound, {}, 0, "Analysis: Unable to Access Study\n", {}},
      {{"run", "no/s"}, sound, {}, 0, "Analysis: Unable to Open Master Control File.", {}},
      {std::vector<std::string>(10, "s"), sound, {}, 0, "at most nine arguments", {}},
      {{"-silent"}, sound, batch, 1, "9014: No location", {"X.BAT", "s.FTG", "s.LOG", "s.MAS"}},
      {run, {}, {}, 0, "Installation error: Unable to open anlmsg.h", {"s.MAS"}},
      {run, {{"/anlmsg.h", header}}, {}, 0, "Installation error: Unable to open anlmsg.rc", {"s.MAS"}},
      {run, twice, {}, 1, "Repeated parameter 901", {"s.LOG", "s.MAS"}},
      {run, cut, {}, 1, "no text for", {"s.FTG", "s.LOG", "s.MAS"}},
  };
  const test::TempFolder beside;
  std::filesystem::copy_file(own + "zentor-fatigue", beside.Path("program"));
  const std::filesystem::path before = std::filesystem::current_path();
  for (const Case& c : cases) {
    const test::TempFolder folder;
    std::filesystem::current_path(folder.Path());
    for (const char* name : {"anlmsg.h", "anlmsg.rc"}) std::filesystem::remove(beside.Path(name));
    for (const auto& [name, text] : c.catalog) test::WriteText(beside.Path() + name, text);
    for (const auto& [name, text] : c.study) test::WriteText(folder.Path() + name, text);
    platform::ChildProcess program({beside.Path("program"), c.arguments, {}, "", false});
    std::optional<platform::ChildEnd> end;
    while (!(end = program.Wait(100))) {
    }
    EXPECT_EQ(end->code, c.exit_code) << c.told;
    EXPECT_THAT(program.ErrorText(), testing::HasSubstr(c.told));
    std::vector<std::string> left;
    for (const auto& [name, text] : folder.Contents()) left.push_back(name);
    EXPECT_EQ(left, c.left) << c.told;
  }
  std::filesystem::current_path(before);
}

}  // namespace
}  // namespace zentor
