#include "stress/pair_listing.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "platform/files.h"
#include "study/result_record_file.h"
#include "support/recording_services.h"
#include "support/temp_folder.h"

namespace zentor {
namespace {

class PairListing : public ::testing::Test {
 protected:
  PairListing() {
    run_.listing.Open(run_.files, folder_.Path("study.FTG"), TextRecordFile::Mode::kNew);
    OpenResultRecords(run_);
    pairs_->count = 2;
    pairs_->first_loading = {1, 11};
    pairs_->first_event = {2, 12};
    pairs_->second_loading = {3, 13};
    pairs_->second_event = {4, 14};
    pairs_->used = {12345678, 0};
    pairs_->allowed = {123456.7, 0};
    pairs_->alternating = {87654.32, 1.5};
    pairs_->partial_usage = {0.0123456, 0};
    pairs_->ke = {1.25, 0};
    pairs_->temperature = {350.04, 0};
    pairs_->section_alternating = {-0.5, 0};
  }
  std::string Listing() {
    run_.listing.Flush();
    return test::ReadText(folder_.Path("study.FTG"));
  }

  test::TempFolder folder_;
  test::RecordingServices services_{folder_.Path("study")};
  RunContext run_{platform::NativeFileSystem(), services_};
  std::unique_ptr<PairArrays> pairs_ = std::make_unique<PairArrays>();
};

// The blocks as wholes and their records are looked at in whole runs.
TEST_F(PairListing, WideValuesKeepTheirColumns) {
  const auto lists = [this](const std::string& lines) {
    EXPECT_TRUE(Listing().ends_with('\n' + lines)) << Listing();
  };
  PrintPairTable(run_, *pairs_, false);
  lists("    1      2        3      4  12345678 0.1235E+06 0.87654E+05 .12346E-01\n");
  PrintAlternatingStressTable(run_, *pairs_);
  lists(
      "     1       2        3       4              0.87654E+05\n"
      "    11      12       13      14              0.15000E+01\n");
  pairs_->used[0] = 1234567;
  PrintPairTable(run_, *pairs_, true);
  lists("    1        3  1234567  0.123E+06   350.0  1.25  0.877E+05 -0.500E+00  0.012\n");
  std::string node;
  AppendAllNodesLine(node, 1234567, 12345678901.0);
  EXPECT_EQ(node, "      1234567            ***************\n");
  const std::vector<std::byte> file = test::ReadBytes(folder_.Path("study.FTI"));
  float range = 0;  // of the section in the last record
  ASSERT_EQ(file.size(), std::size_t{5 * kResultRecordLength});
  std::memcpy(&range, &file[std::size_t{4 * kResultRecordLength + 32}], 4);
  EXPECT_EQ(range, -1.0F);
}

}  // namespace
}  // namespace zentor
