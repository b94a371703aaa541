#include "shell/start_up.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <tuple>
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
  using Case = std::tuple<const char16_t*, const char*, const char*>;
  for (const auto& [name, code_page, narrow] :
       {Case{u"plain", "CP1252", "plain"}, Case{u"caf\u00E9", "CP1252", "caf\xE9"},
        Case{u"\u7814\u7A76", "CP950", "\xAC\xE3\xA8\x73"},
        Case{u"\u041C\u0438\u0440", "CP932", "\x84\x4D\x84\x79\x84\x82"},
        Case{u"\uD55C", "CP949", "\xC7\xD1"}, Case{u"\u0159", "CP1250", "\xF8"},
        Case{u"\u0142\u0159\u7814", "", "\u0142\u0159\u7814"}}) {
    ShellContext shell = Study(name);
    SettleCodePage(shell);
    EXPECT_EQ(shell.code_page, code_page);
    EXPECT_EQ(shell.narrow_name, narrow);
    EXPECT_EQ(shell.names.OwnFileName(".MAS"), platform::ToUtf8(name) + ".MAS")
        << "files by the name in UTF-8";
  }
  ShellContext too_long = Study(std::u16string(200, u'\u7814'));
  SettleCodePage(too_long);
  EXPECT_EQ(too_long.code_page, "") << "400 bytes are more than a narrow name has room for";
}

TEST(StartUp, ProcessorsDecideTheThreadsWhereTheyDiffer) {
  using Case = std::tuple<const char*, const char*, const char*, int>;
  for (const auto& [processors, threads, left, used] :
       {Case{"4", "2", "4", 4}, Case{"4", "4", "4", 0}, Case{"1", "3", "3", 0}, Case{"-4", "3", "3", 0},
        Case{"9999999", "2", "9999999", 1024}}) {
    platform::SetEnvironment("NUMBER_OF_PROCESSORS", processors);
    platform::SetEnvironment("OMP_NUM_THREADS", threads);
    ShellContext shell = Study(u"s");
    SettleThreadCount(shell);
    EXPECT_EQ(platform::Environment("OMP_NUM_THREADS"), left) << processors;
    EXPECT_EQ(shell.solver_threads, used) << processors;
  }
}

TEST(StartUp, ValuesOfTheMasterControlFileLieAtTheirPlaces) {
  const test::TempFolder folder;
  std::vector<std::byte> bytes(36 * 20 + 64);
  const auto read = [&](std::int32_t record_length) {
    StoreInt(bytes.data(), record_length);
    test::WriteBytes(folder.Path("s.MAS"), bytes);
    const MasterControl m =
        ReadMasterControl(platform::NativeFileSystem(), folder.Path("s.MAS"), platform::OpenMode::kReadOnly);
    return std::vector{m.edition, m.language, m.seconds_spent, m.summary_value, m.summary_offset};
  };
  const int places[] = {36 * 20 + 60, 6 * 20 + 56, 28 * 20 + 68, 7 * 20 + 100, 28 * 20 + 72};
  for (int i = 0; i < 5; ++i) StoreInt(bytes.data() + places[i], 11 + i);
  EXPECT_EQ(read(20), (std::vector{11, 12, 13, 14, 15}));
  EXPECT_EQ(read(-2'000'000'000), (std::vector{0, 0, 0, 0, 0}));
  bytes.resize(36 * 20 + 63);
  EXPECT_EQ(read(20).front(), 0) << "a value that is cut";
}

// The program itself, copied beside a catalog or what the case has in its place.
TEST(StartUp, EndsAsItsFailuresSay) {
  using Files = std::map<std::string, std::string>;
  struct Case {
    std::vector<std::string> arguments;
    Files catalog;
    int exit_code;
    const char* told;
    std::vector<std::string> left;  // in the study's folder
  };
  const std::string own = ZENTOR_PROGRAM_DIRECTORY "/";
  const std::string header = test::ReadText(own + "anlmsg.h"), texts = test::ReadText(own + "anlmsg.rc");
  const Files sound = {{"/anlmsg.h", header}, {"/anlmsg.rc", texts}};
  const Files twice = {{"/anlmsg.h", header + "#define TWICE 901\n"}, {"/anlmsg.rc", texts}};
  const Files cut = {{"/anlmsg.h", header}, {"/anlmsg.rc", texts.substr(0, 3000)}};
  const std::vector<std::string> run = {"run", "s", "-silent"};
  const Case cases[] = {
      {{"s"}, sound, 0, "Analysis: Unable to Access Study\n", {}},
      {{"run", "no/s"}, sound, 0, "Analysis: Unable to Open Master Control File.", {}},
      {std::vector<std::string>(10, "s"), sound, 0, "at most nine arguments", {}},
      {{"-silent"}, sound, 1, "9014: No location", {"X.BAT", "s.FTG", "s.LOG", "s.MAS"}},
      {run, {}, 0, "Installation error: Unable to open anlmsg.h", {"s.MAS"}},
      {run, {{"/anlmsg.h", header}}, 0, "Installation error: Unable to open anlmsg.rc", {"s.MAS"}},
      {run, twice, 1, "Repeated parameter 901", {"s.LOG", "s.MAS"}},
      {run, cut, 1, "no text for", {"s.FTG", "s.LOG", "s.MAS"}},
  };
  const test::TempFolder beside;
  std::filesystem::copy_file(own + "zentor-fatigue", beside.Path("program"));
  const std::filesystem::path before = std::filesystem::current_path();
  for (const Case& c : cases) {
    const test::TempFolder folder;
    std::filesystem::current_path(folder.Path());
    for (const char* name : {"anlmsg.h", "anlmsg.rc"}) std::filesystem::remove(beside.Path(name));
    for (const auto& [name, text] : c.catalog) test::WriteText(beside.Path() + name, text);
    if (c.arguments.front() == "-silent") test::WriteText(folder.Path("X.BAT"), "s  \r\n");
    platform::ChildProcess program({beside.Path("program"), c.arguments, {}, "", false});
    std::optional<platform::ChildEnd> end;
    while (!end) end = program.Wait(100);
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
