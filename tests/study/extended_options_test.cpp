// The extended options of a study, ".FTX": read back as written, and what no sound file holds.
#include "study/extended_options.h"

#include "authoring/extended_options_file.h"
#include "study_input_fixture.h"

namespace zentor::test {

const std::string kFirst = "zentor-study-options 1\n";

std::string FaultOf(const std::string& text) {
  try {
    ParseExtendedOptions(text, "job.FTX");
  } catch (const InputFault& fault) {
    return fault.what();
  }
  return "";
}

TEST(ExtendedOptionsFile, IsReadBackAsWritten) {
  ExtendedOptions written;
  written.exact_principal_stresses = true;
  written.definition = "lug \"2\"\\a\n\x1B[1m\xC3\xBC\xC2\x85\xFF.toml";
  const std::string text = ExtendedOptionsText(written);
  EXPECT_EQ(text, kFirst +
                      "principal_stresses exact\n"
                      "definition \"lug \\\"2\\\"\\\\a\\x0A\\x1B[1m\xC3\xBC\\xC2\\x85\\xFF.toml\"\n");
  const ExtendedOptions read = ParseExtendedOptions(text, "");
  EXPECT_EQ(std::tie(read.exact_principal_stresses, read.definition),
            std::tie(written.exact_principal_stresses, written.definition));
  // By hand: another order, comments, carriage returns, no last line end.
  EXPECT_TRUE(
      ParseExtendedOptions("zentor-study-options 1\r\n# set by hand\r\n\r\n  principal_stresses   exact ", "")
          .exact_principal_stresses);
  EXPECT_FALSE(ParseExtendedOptions(kFirst, "").exact_principal_stresses);
}

TEST(ExtendedOptionsFile, RefusesWhatIsNotOfTheFormat) {
  const std::vector<std::pair<std::string, std::string>> faults = {
      {"", "line 1 is '', expected 'zentor-study-options 1', the format and its version"},
      {"zentor-study-options 2\n", "line 1 is 'zentor-study-options 2', expected"},
      {kFirst + "principal_stress exact\n",
       "line 2, key is 'principal_stress', expected one of: principal_stresses definition"},
      {kFirst + "\nprincipal_stresses exactly\n",
       "line 3, principal_stresses is 'exactly', expected exact or as-stated"},
      {kFirst + "principal_stresses\n", "line 2, principal_stresses is '', expected"},
      {kFirst + "principal_stresses exact\nprincipal_stresses exact\n",
       "line 3, key is 'principal_stresses', which"},
      {kFirst + "definition a.toml\n", "line 2, definition is 'a.toml', expected a text in double quotes"},
      {kFirst + "definition \"a\\\"\n", "line 2, definition is"},
      {kFirst + "definition \"\\x00\"\n", "line 2, definition is"},
      {kFirst + "definition \"a\" b\"\n", "line 2, definition is"},
      {kFirst + "# \x1B[2J\n", "line 2, byte 3 is 0x1B, expected text in UTF-8 without control characters"},
      {kFirst + "# \xC2\x9B\n", "line 2, byte 3 is 0xC2, expected"},
      {kFirst + "#\xC3\n", "line 2, byte 2 is 0xC3, expected"},
      {kFirst + "#" + std::string(20000, 'a'), "line 2, length is 20001 bytes, expected at most 20000"},
      {kFirst + std::string(65536, '\n'), "size is 65559 bytes, expected at most 65536"}};
  for (const auto& [text, fault] : faults) {
    EXPECT_TRUE(FaultOf(text).starts_with("job.FTX: " + fault)) << FaultOf(text);
  }
}

// Absence alone means a study without the file.
TEST_F(StudyInput, ExtendedOptionsThatCannotBeReadStopTheRun) {
  Read();
  EXPECT_FALSE(study.properties.ExactPrincipalStresses);
  AddFile(".FTX", kFirst + "principal_stresses exact\n");
  ASSERT_EQ(ReadFiles(), Outcome::kComplete) << fault;
  EXPECT_TRUE(study.properties.ExactPrincipalStresses);
  AddFile(".FTX", "nonsense");
  EXPECT_EQ(ReadFiles(), Outcome::kFault);
  EXPECT_NE(fault.find(".FTX: line 1 is 'nonsense'"), std::string::npos) << fault;
  RemoveFile(".FTX");
  std::filesystem::create_directory(Path(".FTX"));
  EXPECT_THROW(ReadFiles(), platform::FileError);
}

}  // namespace zentor::test
