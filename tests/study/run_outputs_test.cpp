// The files that the study input opens for the run: listing and result records.
#include "database/bytes.h"
#include "database/table_file.h"
#include "study_input_fixture.h"

namespace zentor::test {
namespace {

class RunOutputs : public StudyInput {};

TEST_F(RunOutputs, ListingHead) {
  SetMasterTitle(mas,
                 "0\x1b\xc2\x9b\x9b"
                 "56789012345678901234567890123456789012345678901234567890123456789ABCDEFGHIJ");
  ASSERT_EQ(Read(), Outcome::kComplete);
  const std::string rule(74, '-');
  EXPECT_TRUE(Lists(std::string("\n\n\n") + rule +
                    "\nZENTOR                   FATIGUE MODULE              3/ 9/2011   14: 5: 7\n" + rule +
                    "\n\n\n Title : 0   \x9b"
                    "56789012345678901234567890123456789012345678901234567890123456789\n\n\n\n\n\n"
                    "F A T I G U E   P R O P E R T I E S :"));
}

// A study whose tables cannot be read loses the mark of an earlier run; so does one whose bins cannot be
// used.
TEST_F(RunOutputs, ADamagedStudyDoesNotStayCompleted) {
  const auto flag_after = [this](auto damage) {
    ftc.SetInt(60, 15, 1);
    SetMaster(mas, master::kRangeBinCount, 1);
    EXPECT_EQ(Read(), Outcome::kComplete);
    WriteBytes(Path(".FTC"), ftc.Bytes());
    damage();
    EXPECT_NE(ReadFiles(), Outcome::kComplete);
    std::array<std::byte, 4> flag{};
    TableFile(platform::NativeFileSystem(), Path(".FTC")).Read(60, 15, flag);
    return LoadInt(flag.data());
  };
  const auto live_count = [this](std::string extension) {
    return [this, extension] {
      std::vector<std::byte> bytes = ReadBytes(Path(extension));
      StoreInt(bytes.data() + 16, 1 << 20);
      WriteBytes(Path(extension), bytes);
    };
  };
  EXPECT_EQ(flag_after(live_count(".MAS")), 0);
  EXPECT_EQ(flag_after(live_count(".SNC")), 0);
  EXPECT_EQ(flag_after([this] {
              SetMaster(mas, master::kRangeBinCount, 201);
              WriteBytes(Path(".MAS"), mas.Bytes());
            }),
            0);
  MakeMultiStudy();
  std::filesystem::create_directory(Path("-listed.BLD"));
  const auto half_built = [this] { AddFile("-listed.BLD/replacing", ""); };
  EXPECT_EQ(flag_after(half_built), 0);
  EXPECT_EQ(services.asked.back().message, 9091);
  RemoveFile("-listed.BLD/replacing");
  EXPECT_EQ(flag_after([this] { RemoveFile("-listed.STE"); }), 0);
  EXPECT_EQ(services.asked.back().message, 9040);
}

TEST_F(RunOutputs, DamagedResultRecordsAreAFault) {
  std::vector<std::byte> bytes(40);
  for (const int last : {0, 4}) {
    StoreInt(bytes.data(), last);
    WriteBytes(Path(".FTI"), bytes);
    EXPECT_EQ(FaultIn(".FTI"), "record 1 is " + std::to_string(last) +
                                   ", expected 1 to 3; delete the file, or build the study again");
  }
}

// One or two runs that ended between the count and its record, or within the record, leave no trace.
TEST_F(RunOutputs, UnwrittenResultRecordsAreForgotten) {
  EXPECT_EQ(Read(), Outcome::kComplete);
  const std::vector<std::byte> sound = ReadBytes(Path(".FTI"));
  ASSERT_EQ(sound.size(), 80U);
  for (const auto& [last, size] : {std::pair{2, 40}, {3, 40}, {2, 60}}) {
    std::vector<std::byte> bytes(sound.begin(), sound.begin() + size);
    StoreInt(bytes.data(), last);
    WriteBytes(Path(".FTI"), bytes);
    EXPECT_EQ(ReadFiles(), Outcome::kComplete);
    EXPECT_EQ(ReadBytes(Path(".FTI")), sound) << last << ", " << size;
  }
}

}  // namespace
}  // namespace zentor::test
