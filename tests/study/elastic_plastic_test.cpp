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
  // The fault of a thermal file with one other word.
  std::string FaultWith(std::size_t word, int value) {
    const int sound = std::exchange(words[word], value);
    AddWords(".HTO", words);
    words[word] = sound;
    return FaultIn(".HTO");
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

TEST_F(ElasticPlastic, EachMissingPieceStopsAtItsFlag) {
  struct Case {
    const char* what;
    const char* flags;
    std::function<void(ElasticPlastic&)> prepare;
  };
  const Case cases[] = {
      {"parameters not given", "0000", [](ElasticPlastic& s) { s.ftc.SetInt(97, 7, 0); }},
      {"n is 1", "0000", [](ElasticPlastic& s) { s.ftc.SetReal(97, 6, 1.0F); }},
      {"stored stress without temperature", "1000",
       [](ElasticPlastic& s) { s.SetLoading(1, 2, -1, 1.0F), s.Store(kLocation, 2, true, true, false); }},
      {"load case 2000 lies behind the file", "1100",
       [](ElasticPlastic& s) { s.SetLoading(1, 2, 2000, 1.0F); }},
      {"all nodes", "1000", [](ElasticPlastic& s) { s.ftc.SetInt(103, 3, kAllNodes); }},
      {"a zero load case needs no temperature", "1111",
       [](ElasticPlastic& s) { s.SetLoading(1, 2, kZeroLoadCase, 1.0F), s.words[14] = 0; }},
  };
  const TableBuilder sound = ftc;
  const std::vector<int> file = words;
  for (const Case& c : cases) {
    ftc = sound;
    words = file;
    c.prepare(*this);
    ASSERT_EQ(ReadWithTemperatures(), Outcome::kComplete) << c.what << ": " << fault;
    EXPECT_EQ(Flags(), c.flags) << c.what;
  }
}

TEST_F(ElasticPlastic, WhatCannotBeUsedIsAFault) {
  EXPECT_EQ(FaultWith(0, -8), "table offset is -8, expected 0 or more");
  for (const int record : {-1, 9, 0x7FFFFFFF})
    EXPECT_EQ(FaultWith(12, record), "load case 1, first record is " + std::to_string(record) +
                                         ", expected records inside the file");
  EXPECT_EQ(FaultWith(74, std::bit_cast<int>(kNaN)),
            "load case 2, temperature is nan, expected a finite number");
  AddFile(".HTO", "");
  EXPECT_EQ(FaultIn(".HTO"), "table offset, byte offset is 0, expected a word inside the file");
  ftc.SetInt(97, 4, 11);
  EXPECT_EQ(FaultIn(".FTC"), "entity 97, field 4 is 11, expected 0 to 10 points");
  ftc.SetInt(97, 4, 2);

  AddWords(".HTO", words);
  const int stored = 604 + (kLocation - 1) * 40 + 2;
  for (const auto& [entity, field] : {std::pair{98, 3}, {99, 2}, {stored, 13}, {stored, 14}, {stored, 18}}) {
    Store(kLocation, 2, true, true, true);
    const TableBuilder sound = ftc;
    ftc.SetReal(entity, field, kNaN);
    EXPECT_EQ(FaultIn(".FTC"), "entity " + std::to_string(entity) + ", field " + std::to_string(field) +
                                   " is nan, expected a finite number");
    ftc = sound;
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
