#include "stress/pair_listing.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "platform/files.h"
#include "stress/study_parts.h"
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
  // Word `word` (0-based) of a record of ".FTI", numbered from 1.
  template <typename T>
  T Word(int record, int word) {
    const std::vector<std::byte> file = test::ReadBytes(folder_.Path("study.FTI"));
    const std::size_t at = (record - 1) * kResultRecordLength + word * 4;
    T value{};
    EXPECT_LE(at + 4, file.size());
    if (at + 4 <= file.size()) std::memcpy(&value, file.data() + at, 4);
    return value;
  }
  int Records() { return Word<std::int32_t>(1, 0); }

  test::TempFolder folder_;
  test::RecordingServices services_{folder_.Path("study")};
  RunContext run_{platform::NativeFileSystem(), services_};
  std::unique_ptr<PairArrays> pairs_ = std::make_unique<PairArrays>();
};

constexpr const char* kHeading = "\n\n\nF A T I G U E   C A L C U L A T I O N   R E S U L T S:\n\n\n";

TEST_F(PairListing, PairTable) {
  PrintPairTable(run_, *pairs_, false);
  PrintCumulativeUsage(run_, 0.0123456, false);
  EXPECT_EQ(Listing(), std::string(kHeading) +
                           "                                    CYCLES         ALTER.     PARTIAL\n"
                           " LOADING (EVN)   LOADING (EVN)    USED/ALLOWED     STRESS     FACTOR\n"
                           " -------------   -------------    --------------   ------     -------\n"
                           "    1      2        3      4  12345678 0.1235E+06 0.87654E+05 .12346E-01\n"
                           "\n"
                           " Cumulative Fatigue\n"
                           "    Usage  Factor    =   0.123456E-01\n");
  ASSERT_EQ(Records(), 3);
  EXPECT_EQ(Word<std::int32_t>(2, 0), 2);
  const std::int32_t expected[] = {1, 2, 3, 4, 12345678};
  for (int w = 0; w < 5; ++w) EXPECT_EQ(Word<std::int32_t>(2, w + 1), expected[w]) << w;
  EXPECT_EQ(Word<float>(2, 6), 123456.7F);
  EXPECT_EQ(Word<float>(2, 7), 87654.32F);
  EXPECT_EQ(Word<float>(2, 8), 0.0123456F);
  EXPECT_EQ(Word<std::int32_t>(3, 0), 3);
  EXPECT_EQ(Word<float>(3, 1), 0.0123456F);
}

TEST_F(PairListing, SectionTable) {
  pairs_->used[0] = 1234567;
  PrintPairTable(run_, *pairs_, true);
  PrintCumulativeUsage(run_, 2.5, true);
  EXPECT_EQ(Listing(), std::string(kHeading) +
                           "                       CYCLES                      ALTER.     LINEAR\n"
                           " LOADING  LOADING   USED/ALLOWED     TEMP.   Ke    STRESS     STRESS   FACTOR\n"
                           " -------  -------   -------------   ------  -----  ------     ------   ------\n"
                           "    1        3  1234567  0.123E+06   350.0  1.25  0.877E+05 -0.500E+00  0.012\n"
                           "\n"
                           " Cumulative Fatigue\n"
                           "    Usage  Factor    =   0.250000E+01\n");
  ASSERT_EQ(Records(), 3);
  const std::int32_t expected[] = {5, 1, 3, 1234567};
  for (int w = 0; w < 4; ++w) EXPECT_EQ(Word<std::int32_t>(2, w), expected[w]) << w;
  const float reals[] = {123456.7F, 350.04F, 1.25F, 87654.32F, -1.0F, 0.0123456F};  // the section's range
  for (int w = 0; w < 6; ++w) EXPECT_EQ(Word<float>(2, w + 4), reals[w]) << w;
  EXPECT_EQ(Word<std::int32_t>(3, 0), 6);
}

TEST_F(PairListing, WithoutCurve) {
  const SnCurveStore store;
  PrintMissingCurve(run_, store);
  PrintAlternatingStressTable(run_, *pairs_);
  PrintNoUsageFactor(run_, store);
  EXPECT_EQ(Listing(), "\n\n\nS - N   C U R V E:\n\n\n No S-N curve defined\n" + std::string(kHeading) +
                           "                                        ALTERNAT. STRESS\n"
                           "  LOADING (EVN)    LOADING (EVN)        (DECREAS. ORDER)\n"
                           "  -------------    -------------        ---------------- \n"
                           "     1       2        3       4              0.87654E+05\n"
                           "    11      12       13      14              0.15000E+01\n"
                           " No usage factor evaluated (no S-N curve defined)\n");
  ASSERT_EQ(Records(), 3);
  const std::int32_t expected[] = {4, 2, 11, 12, 13, 14};
  for (int w = 0; w < 6; ++w) EXPECT_EQ(Word<std::int32_t>(3, w), expected[w]) << w;
  EXPECT_EQ(Word<float>(3, 6), 1.5F);
  EXPECT_TRUE(services_.Showed(9053));
}

TEST_F(PairListing, ImproperCurve) {
  SnCurveStore store;
  store.point_count = 1;
  store.sets.PushBack({test::MakeCurve(0, 0.1F, {{1e4, 250}})});
  PrintMissingCurve(run_, store);
  PrintNoUsageFactor(run_, store);
  EXPECT_EQ(Listing(),
            "\n\n\n\n         S - N   C U R V E  #     1\n\n\n"
            "(Material set #    1; Stress ratio: 0.10)\n"
            "  POINT No.   No. of Cycles     Alt. Stress\n"
            "  ---------   -------------     -----------\n"
            "     1        0.100E+05         0.250E+03\n"
            " No usage factor evaluated (Improper S-N curve, i.e., atleast\n"
            "  2 pts. on the curve must be defined)\n");
  EXPECT_FALSE(services_.Showed(9053));
  EXPECT_TRUE(services_.Showed(9063));
  EXPECT_TRUE(services_.Showed(9064));
}

TEST_F(PairListing, AllNodesLines) {
  WriteAllNodesHeading(run_.listing);
  std::string lines;
  AppendAllNodesLine(lines, 7, 0.5);
  AppendAllNodesLine(lines, 1234567, 12345678901.0);
  run_.listing.Append(lines);
  EXPECT_EQ(Listing(), std::string(kHeading) +
                           "              (all-nodes option)   \n"
                           "                        cumulative fatigue\n"
                           "        node                usage factor \n"
                           "       ------           ------------------\n"
                           "           7                   0.500000\n"
                           "      1234567            ***************\n");
}

}  // namespace
}  // namespace zentor
