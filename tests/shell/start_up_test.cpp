#include "shell/start_up.h"

#include <gtest/gtest.h>

#include "platform/system.h"
#include "platform/text.h"
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

}  // namespace
}  // namespace zentor
