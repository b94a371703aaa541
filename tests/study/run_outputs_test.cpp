// The files that the study input opens for the run: listing and result records.
#include "database/bytes.h"
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

TEST_F(RunOutputs, DamagedResultRecordsAreAFault) {
  std::vector<std::byte> bytes(40);
  for (const int last : {0, 3}) {
    StoreInt(bytes.data(), last);
    WriteBytes(Path(".FTI"), bytes);
    EXPECT_EQ(FaultIn(".FTI"), "record 1 is " + std::to_string(last) + ", expected 1 to 2");
  }
}

}  // namespace
}  // namespace zentor::test
