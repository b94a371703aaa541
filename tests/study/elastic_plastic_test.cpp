// Readiness of the elastic-plastic factor: parameters, linearised stresses, temperatures, section.
#include <functional>

#include "study_input_fixture.h"

namespace zentor::test {
namespace {

// Location 3 at node 2, in section 1, with everything that the factor needs. ".HTO": a header record, a table
// of two load cases at byte 48 whose records start with number 3 and 6, then two times three node records of
// 48 bytes.
class ElasticPlastic : public StudyInput {
 public:
  ElasticPlastic() {
    SetElasticPlastic();
    SetLocation(kLocation, 2, 1, 11);
    words.assign(96, 0);
    words[0] = 48;
    words[12] = 3;
    words[14] = 6;
    for (int node = 0; node < 3; ++node) {
      SetTemperature(3 + node, 100.0F + static_cast<float>(node));
      SetTemperature(6 + node, 200.0F + static_cast<float>(node));
    }
  }
  void SetTemperature(int record, float value) {
    words[12 * static_cast<std::size_t>(record - 1) + 2] = std::bit_cast<int>(value);
  }
  Outcome ReadWithTemperatures() {
    AddWords(".HTO", words);
    return Read();
  }
  // The four flags in order, 1 for set.
  std::string Flags() const {
    const ElasticPlasticReadiness& r = study.readiness;
    std::string flags;
    for (const bool flag : {r.EpParamsReady, r.EpLinearizedReady, r.EpTemperatureReady, r.EpSectionReady}) {
      flags += flag ? '1' : '0';
    }
    return flags;
  }
  std::vector<int> words;
};

TEST_F(ElasticPlastic, EverythingReady) {
  ASSERT_EQ(ReadWithTemperatures(), Outcome::kComplete) << fault;
  EXPECT_EQ(Flags(), "1111");
  EXPECT_EQ(study.sm_t.n, static_cast<double>(0.2F));
  // Node 2 is the second node that exists.
  EXPECT_EQ(study.conditions.temperature[1], 101.0);
  EXPECT_EQ(study.conditions.temperature[2], 201.0);
  // The section gave 1, 2, 3, 4 for each; the factors of the loadings are 2 and -0.5.
  EXPECT_EQ(study.conditions.linearised[1], (LinearisedStress{2.0, 4.0, 6.0, 8.0}));
  EXPECT_EQ(study.conditions.linearised[2], (LinearisedStress{-0.5, -1.0, -1.5, -2.0}));
  EXPECT_TRUE(services.Showed(9027));
  EXPECT_EQ(steps.stores, 1);
}

TEST_F(ElasticPlastic, EachMissingPieceStopsAtItsFlag) {
  struct Case {
    const char* what;
    const char* flags;
    std::function<void(ElasticPlastic&)> prepare;
  };
  const Case cases[] = {
      {"parameters not given", "0000", [](ElasticPlastic& s) { s.ftc.SetInt(97, 7, 0); }},
      {"n is 0", "0000", [](ElasticPlastic& s) { s.ftc.SetReal(97, 6, 0.0F); }},
      {"n is 1", "0000", [](ElasticPlastic& s) { s.ftc.SetReal(97, 6, 1.0F); }},
      {"stored stress without temperature", "1000",
       [](ElasticPlastic& s) { s.SetLoading(1, 2, -1, 1.0F), s.Store(kLocation, 2, true, true, false); }},
      {"all stored", "1111",
       [](ElasticPlastic& s) {
         s.SetLocation(kLocation, 2);  // no section is needed
         for (const int k : {1, 2}) s.Store(kLocation, k, true, true, true);
       }},
      {"load case 3 is not in the file", "1100", [](ElasticPlastic& s) { s.SetLoading(1, 2, 3, 1.0F); }},
      {"load case 2000 lies behind the file", "1100",
       [](ElasticPlastic& s) { s.SetLoading(1, 2, 2000, 1.0F); }},
      {"all stresses stored, temperature of load case 2 in the file", "1111",
       [](ElasticPlastic& s) {
         s.Store(kLocation, 1, true, true, true), s.Store(kLocation, 2, true, true, false);
       }},
      {"all stresses stored, temperature of load case 3 missing", "1100",
       [](ElasticPlastic& s) {
         s.SetLoading(1, 2, 3, 1.0F);
         s.Store(kLocation, 1, true, true, true), s.Store(kLocation, 2, true, true, false);
       }},
      {"section not found", "1110", [](ElasticPlastic& s) { s.steps.section_found = false; }},
  };
  const TableBuilder sound = ftc;
  for (const Case& c : cases) {
    ftc = sound;
    steps = RecordingSteps();
    c.prepare(*this);
    ASSERT_EQ(ReadWithTemperatures(), Outcome::kComplete) << c.what << ": " << fault;
    EXPECT_EQ(Flags(), c.flags) << c.what;
  }
}

TEST_F(ElasticPlastic, ZeroLoadCasesNeedNoTemperature) {
  SetLoading(1, 2, 100, 1.0F);
  words[14] = 0;
  ASSERT_EQ(ReadWithTemperatures(), Outcome::kComplete);
  EXPECT_EQ(Flags(), "1111");
  EXPECT_EQ(study.conditions.temperature[2], 0.0);
}

TEST_F(ElasticPlastic, WithEveryConditionStoredNoStressFileIsNeeded) {
  RemoveFile(".STE");
  SetLocation(kLocation, 3);  // and no node
  for (const int k : {1, 2}) Store(kLocation, k, true, true, true);
  ASSERT_EQ(Read(), Outcome::kComplete);
  EXPECT_EQ(Flags(), "1111");
  EXPECT_EQ(steps.stores, 0);
  EXPECT_EQ(steps.sections, 0);
}

TEST_F(ElasticPlastic, AllNodesRunsAreNeverReady) {
  ftc.SetInt(103, 3, kAllNodes);
  ASSERT_EQ(ReadWithTemperatures(), Outcome::kComplete);
  EXPECT_EQ(Flags(), "1000");
  EXPECT_EQ(steps.stores, 0);
  EXPECT_EQ(study.conditions.stress_case[2], 2);
}

TEST_F(ElasticPlastic, HostileThermalFilesAreFaults) {
  struct Case {
    std::size_t word;
    int value;
    std::string wanted;
  };
  for (const Case& c :
       {Case{0, -8, "table offset is -8, expected 0 or more"},
        Case{12, -1, "load case 1, first record is -1, expected records inside the file"},
        Case{12, 9, "load case 1, first record is 9, expected records inside the file"},
        Case{14, 0x7FFFFFFF, "load case 2, first record is 2147483647, expected records inside the file"}}) {
    const std::vector<int> sound = words;
    words[c.word] = c.value;
    EXPECT_EQ(ReadWithTemperatures(), Outcome::kFault);
    EXPECT_EQ(fault, Path(".HTO") + ": " + c.wanted);
    words = sound;
  }
  words.clear();
  EXPECT_EQ(ReadWithTemperatures(), Outcome::kFault);
  EXPECT_EQ(fault, Path(".HTO") + ": table offset, byte offset is 0, expected a word inside the file");
}

TEST_F(ElasticPlastic, MorePointsThanTheTableHoldsIsAFault) {
  ftc.SetInt(97, 4, 11);
  EXPECT_EQ(Read(), Outcome::kFault);
  EXPECT_EQ(fault, Path(".FTC") + ": entity 97, field 4 is 11, expected 0 to 10 points");
}

TEST_F(ElasticPlastic, ValuesThatAreNoNumbersAreFaults) {
  SetTemperature(6 + 1, kNaN);
  EXPECT_EQ(ReadWithTemperatures(), Outcome::kFault);
  EXPECT_EQ(fault, Path(".HTO") + ": load case 2, temperature is nan, expected a finite number");
  SetTemperature(6 + 1, 0.0F);

  const int stored = 604 + (kLocation - 1) * 40 + 2;
  for (const auto& [entity, field] : {std::pair{98, 3}, {99, 2}, {stored, 13}, {stored, 14}, {stored, 18}}) {
    Store(kLocation, 2, true, true, true);
    const float sound = entity < 100 ? 100.0F : 1.0F;
    ftc.SetReal(entity, field, kNaN);
    EXPECT_EQ(ReadWithTemperatures(), Outcome::kFault);
    EXPECT_EQ(fault, Path(".FTC") + ": entity " + std::to_string(entity) + ", field " +
                         std::to_string(field) + " is nan, expected a finite number");
    ftc.SetReal(entity, field, sound);
  }
}

// Which of several stress files counts.
TEST_F(ElasticPlastic, StressKindByFile) {
  for (const auto& [extension, kind] :
       {std::pair{".STP", StressKind::kStp}, std::pair{".STN", StressKind::kStn},
        std::pair{".STE", StressKind::kSte}}) {
    if (kind == StressKind::kStp) RemoveFile(".STE");
    AddFile(extension, "");
    ASSERT_EQ(Read(), Outcome::kComplete);
    EXPECT_EQ(study.stress_kind, kind) << extension;
  }
}

}  // namespace
}  // namespace zentor::test
