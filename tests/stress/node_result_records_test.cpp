#include "stress/node_result_records.h"

#include <array>
#include <limits>

#include "authoring/table_builder.h"
#include "services/stop.h"
#include "stress/stress_study.h"

namespace zentor::test {
namespace {

// A model with nodes 7 and 100; node 7 has static results.
class NodeRecords : public StressStudy {
 protected:
  NodeRecords() {
    TableBuilder nodes(8, 120), results(23, 120);
    nodes.Create(7);
    nodes.Create(100);
    for (int field = 2; field <= 23; ++field) results.SetReal(7, field, static_cast<float>(field) * 10);
    WriteBytes(Path(".NOD"), nodes.Bytes());
    WriteBytes(Path(".PL1"), results.Bytes());
    DbOpenStudyTables(run.database);
    study.sizes.highest_node = 100;
    study.sizes.node_count = 2;
  }
  // Fills record `record` (from 1) of a step file: word w of the record is first + w.
  static void Record(WordFile& file, std::size_t record, std::size_t words, float first) {
    for (std::size_t w = 0; w < words; ++w)
      file.Real((record - 1) * words + w, first + static_cast<float>(w));
  }
  StressTensor stress{};
};

TEST_F(NodeRecords, StaticSolutionComesFromTheTable) {
  EXPECT_TRUE(NodeStressFromResultRecords(run, study, 0, 7, stress));
  EXPECT_EQ(stress, (StressTensor{20, 30, 40, 50, 60, 70}));
  EXPECT_FALSE(NodeStressFromResultRecords(run, study, 0, 8, stress));
}

TEST_F(NodeRecords, StepRecordsFollowStepAndNode) {
  WordFile pl4;
  Record(pl4, 107, 72, 500.0F);
  pl4.Write(Path(".PL4"));
  EXPECT_TRUE(NodeStressFromResultRecords(run, study, 2, 7, stress));
  EXPECT_EQ(stress, Rising(500));
  WordFile pl3;
  Record(pl3, 107, 6, 900.0F);
  pl3.Write(Path(".PL3"));
  StepFile file;
  std::array<float, 6> values{};
  ASSERT_EQ(StepFileOpen(run, 2, StepFileKind::kPl3, file), 0);
  NodeResultRead(run, 2, 7, 1, 6, values, file, 1);
  EXPECT_EQ(values[5], 905.0F);
}

TEST_F(NodeRecords, AShortFileOrANaNIsAFault) {
  WordFile pl4;
  Record(pl4, 107, 72, 500.0F);
  pl4.Write(Path(".PL4"));
  EXPECT_THROW(NodeStressFromResultRecords(run, study, 2, 100, stress), InputFault);
  EXPECT_THROW(NodeStressFromResultRecords(run, study, std::numeric_limits<int>::max(), 7, stress),
               InputFault);
  pl4.Real(106 * 72 + 5, std::numeric_limits<float>::quiet_NaN());
  pl4.Write(Path(".PL4"));
  EXPECT_THROW(NodeStressFromResultRecords(run, study, 2, 7, stress), InputFault);
  for (const FileUnits::Unit& unit : run.units.units) EXPECT_EQ(unit.file, nullptr) << unit.path;
}

TEST_F(NodeRecords, MissingFileAndNegativeStepStop) {
  EXPECT_THROW(NodeStressFromResultRecords(run, study, 1, 7, stress), RunStopped);
  EXPECT_EQ(services.asked.at(0).message, 9000);
  std::string name = folder.Path("part");
  name.resize(256, ' ');
  const std::string expected = " *** ERROR - MISSING FILE: " + name + "\n  \n     STOP\n";
  EXPECT_EQ(Listing(), expected);

  EXPECT_THROW(NodeStressFromResultRecords(run, study, -1, 7, stress), RunStopped);
  EXPECT_EQ(Listing(), expected + " *** ERROR - Time step can not be negative\n     STOP\n");
}

}  // namespace
}  // namespace zentor::test
