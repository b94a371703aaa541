// Model data: sizes, node materials, surface flags.
#include "study/model_input.h"
#include "study_input_fixture.h"

namespace zentor::test {
namespace {

class Model : public StudyInput {
 public:
  std::vector<int> NodeMaterials() const {
    return {study.materials.node_material.begin(), study.materials.node_material.end()};
  }
};

TEST_F(Model, StrengthIsWhatTheCorrectionNeeds) {
  ASSERT_EQ(Read(), Outcome::kComplete);
  EXPECT_EQ(study.materials.strength[1], 400.0);
  SetMaster(mas, master::kMeanStressCorrection, kSoderberg);
  ASSERT_EQ(Read(), Outcome::kComplete);
  EXPECT_EQ(study.materials.strength[1], 250.0);
}

TEST_F(Model, NodeTakesTheWeakestMaterialAroundIt) {
  struct Case {
    const char* what;
    float strength1, strength2;
    int word1, word2;  // material fields of elements 1 (nodes 1, 2) and 2 (nodes 2, 4)
    std::vector<int> nodes;
  };
  const Case cases[] = {
      {"weaker second", 400.0F, 300.0F, 1, 2, {1, 2, 0, 2}},
      {"equal strengths", 300.0F, 300.0F, 1, 2, {1, 1, 0, 2}},
      {"strength 0 never replaces", 300.0F, 0.0F, 1, 2, {1, 1, 0, 2}},
      {"10000 is taken off", 400.0F, 300.0F, 20001, 10002, {1, 2, 0, 2}},
      {"no material", 400.0F, 300.0F, 0, 10000, {0, 0, 0, 0}},
  };
  SetCurve(2, 2, {{1e3F, 500.0F}, {1e6F, 100.0F}});
  for (const Case& c : cases) {
    SetMaterial(1, 1.0F, c.strength1);
    SetMaterial(2, 1.0F, c.strength2);
    SetElement(1, c.word1, {1, 2});
    SetElement(2, c.word2, {2, 4});
    ASSERT_EQ(Read(), Outcome::kComplete) << c.what << ": " << fault;
    EXPECT_EQ(NodeMaterials(), c.nodes) << c.what;
  }
}

TEST_F(Model, NumbersThatStressResultsCannotHoldAreFaults) {
  RunContext run(platform::NativeFileSystem(), services);
  run.database.paths = {"", "s.NOD", "", "s.ELE"};
  const auto fault_of = [&run](int node, int element) -> std::string {
    try {
      CheckStressNumbers(run, {.highest_node = node, .highest_element = element});
    } catch (const InputFault& found) {
      return found.what();
    }
    return "";
  };
  const std::string limit = "16777217, expected at most 16777216, the numbers that stress results can hold";
  EXPECT_EQ(fault_of(16777216, 16777216), "");
  EXPECT_EQ(fault_of(16777217, 1), "s.NOD: highest node number is " + limit);
  EXPECT_EQ(fault_of(1, 16777217), "s.ELE: highest element number is " + limit);
}

TEST_F(Model, LongElementsAreReadWhole) {
  ele = TableBuilder(60, 5);
  SetMaterial(2, 1.0F, 1.0F);
  std::vector<int> nodes(54, 1);
  nodes.back() = 4;
  SetElement(1, 2, nodes);
  ASSERT_EQ(Read(), Outcome::kComplete);
  EXPECT_EQ(NodeMaterials(), (std::vector<int>{2, 0, 0, 2}));
}

TEST_F(Model, HostileElementsAreFaults) {
  SetMaterial(2, 1.0F, 1.0F);
  const std::tuple<int, int, std::string> cases[] = {
      {5, 8, "field 5 is 8, expected 0 to 7 nodes"},
      {7, -1, "field 7 is -1, expected a node of 0 (none) to 4"},
      {3, 3, "field 3 is 3, expected a material of 0 to 2"}};
  for (const auto& [field, value, wanted] : cases) {
    SetElement(2, 1, {2, 4});
    ele.SetInt(2, field, value);
    EXPECT_EQ(FaultIn(".ELE"), "entity 2, " + wanted);
  }
}

class Surface : public Model {
 public:
  Surface() {
    MakeMultiStudy();
    ftc.SetInt(60, 14, 1);
    words.assign(60, 0);
    words[1] = 3;
    SetFace(1, 2, {2, 4});
    SetFace(2, 2, {4});
  }
  void SetFace(int record, int element, const std::vector<int>& nodes) {
    int* face = &words[20 * static_cast<std::size_t>(record)];
    face[1] = element;
    face[3] = static_cast<int>(nodes.size());
    std::copy(nodes.begin(), nodes.end(), face + 4);
  }
  Outcome ReadWithFaces(std::size_t bytes) {
    AddWords(".FBD", words);
    std::filesystem::resize_file(Path(".FBD"), bytes);
    return Read();
  }
  std::vector<int> words;  // header record and two faces, 20 words each
};

TEST_F(Surface, FlagsNodesAndElements) {
  ASSERT_EQ(ReadWithFaces(204), Outcome::kComplete) << "the last record may end early; " << fault;
  EXPECT_EQ(std::vector<int>(study.surface.node.begin(), study.surface.node.end()),
            (std::vector<int>{0, 1, 0, 1}));
  EXPECT_EQ((std::array{study.surface.node_count, study.surface.element_count}), (std::array{2, 1}));
}

TEST_F(Surface, OutsideAnOrdinaryFileIsAFault) {
  const auto fault_with = [this](std::size_t word, int value, std::size_t bytes = 240) {
    const int sound = std::exchange(words[word], value);
    EXPECT_EQ(ReadWithFaces(bytes), Outcome::kFault);
    words[word] = sound;
    return fault.substr(Path(".FBD: ").size());
  };
  EXPECT_EQ(fault_with(1, -1), "number of records is -1, expected 1 to 3");
  EXPECT_EQ(fault_with(1, 3, 203), "number of records is 3, expected 1 to 2");
  EXPECT_EQ(fault_with(21, 3), "face 1, element is 3, expected 1 to 2");
  EXPECT_EQ(fault_with(43, 17), "face 2, number of nodes is 17, expected 0 to 16");
  EXPECT_EQ(fault_with(44, 0), "face 2, node 1 is 0, expected 1 to 4");
  EXPECT_EQ(fault_with(44, 5), "face 2, node 1 is 5, expected 1 to 4");
}

}  // namespace
}  // namespace zentor::test
