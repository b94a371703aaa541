// The files that the study input opens for the run: listing and result records.
#include "database/bytes.h"
#include "study_input_fixture.h"

namespace zentor::test {
namespace {

class RunOutputs : public StudyInput {
 public:
  std::vector<int> ResultWords() const {
    const std::vector<std::byte> bytes = ReadBytes(Path(".FTI"));
    std::vector<int> words;
    for (std::size_t i = 0; i + 4 <= bytes.size(); i += 4) words.push_back(LoadInt(&bytes[i]));
    return words;
  }
};

TEST_F(RunOutputs, ListingHead) {
  SetMasterTitle(mas, "0123456789012345678901234567890123456789012345678901234567890123456789ABCDEFGHIJ");
  ASSERT_EQ(Read(), Outcome::kComplete);
  const std::string rule(74, '-');
  EXPECT_TRUE(Lists(
      std::string("\n\n\n") + rule +
      "\nZENTOR                   FATIGUE MODULE              3/ 9/2011   14: 5: 7\n" + rule +
      "\n\n\n Title : 0123456789012345678901234567890123456789012345678901234567890123456789\n\n\n\n\n\n"
      "F A T I G U E   P R O P E R T I E S :"));
  mas = NewMasterTable();  // a title of zeroes is blank
  ASSERT_EQ(Read(), Outcome::kComplete);
  EXPECT_TRUE(Lists(" Title : " + std::string(70, ' ')));
}

TEST_F(RunOutputs, ListingModes) {
  struct Case {
    int mode;
    bool exists, kept;
  };
  for (const Case& c :
       {Case{0, true, false}, Case{1, true, true}, Case{1, false, false}, Case{7, true, false}}) {
    RemoveFile(".FTG");
    if (c.exists) AddFile(".FTG", "earlier run\n");
    SetMaster(mas, master::kListingMode, c.mode);
    ASSERT_EQ(Read(), Outcome::kComplete);
    EXPECT_EQ(Listing().starts_with("earlier run\n"), c.kept) << c.mode;
    EXPECT_EQ(!ListingHas("\nZENTOR"), c.kept) << "a continued listing gets no head";
  }
}

TEST_F(RunOutputs, TheFirstRecordNamesLocationAndNode) {
  ASSERT_EQ(Read(), Outcome::kComplete);
  EXPECT_EQ(ResultWords(),
            (std::vector<int>{2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, kLocation, 2, 1, 1, 0, 0, 0, 0, 0}));
  RemoveFile(".FTI");  // an all-nodes run only creates it
  ftc.SetInt(103, 3, kAllNodes);
  ASSERT_EQ(Read(), Outcome::kComplete);
  EXPECT_EQ(ResultWords(), (std::vector<int>{1, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(RunOutputs, DamagedResultRecordsAreAFault) {
  for (const int last : {0, -1, 3, 0x7FFFFFFF}) {
    std::vector<std::byte> bytes(40);
    StoreInt(bytes.data(), last);
    WriteBytes(Path(".FTI"), bytes);
    EXPECT_EQ(FaultIn(".FTI"), "record 1 is " + std::to_string(last) + ", expected 1 to 2");
  }
}

}  // namespace
}  // namespace zentor::test
