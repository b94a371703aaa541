// Every kind of element record, against words placed by hand.
#include <algorithm>
#include <cstddef>
#include <string>

#include "authoring/table_builder.h"
#include "services/stop.h"
#include "stress/stress_study.h"

namespace zentor::test {
namespace {

// Where the record of a four-node element has its values: node number of node j, first component of node j.
struct Row {
  const char* name;
  StressKind kind;
  int type_code;
  int layer;  // of three
  int surface;
  std::size_t node, node_stride, component, component_stride;
  int components = 6;
};

// A layer's block is 8 n + 22 = 54 words for type 46, 15 n + 44 = 104 words for shells, 18 n + 79 = 151 words
// for types 53 and 54 of ".STN".
constexpr Row kRows[] = {
    {"SteDirect3", StressKind::kSte, 3, 1, 1, 7, 12, 15, 12, 3},
    {"StpPlane42Layer3", StressKind::kStp, 42, 3, 2, 29, 8, 30, 8},
    {"SteLayered46Layer0", StressKind::kSte, 46, 0, 1, 29, 8, 30, 8},
    {"SteLayered46Layer3", StressKind::kSte, 46, 3, 1, 29 + 108, 8, 30 + 108, 8},
    {"StnLayered46Layer2", StressKind::kStn, 46, 2, 1, 29 + 54, 8, 30 + 54, 8},
    {"SteShell63TopOfAnySurface", StressKind::kSte, 63, 1, 0, 59, 15, 60, 15},
    {"SteShell94Bottom", StressKind::kSte, 94, 1, 2, 59, 15, 67, 15},
    {"StpShell54Layer3Top", StressKind::kStp, 54, 3, 1, 59 + 208, 15, 60 + 208, 15},
    {"SteShell91Layer2Bottom", StressKind::kSte, 91, 2, 2, 59 + 104, 15, 67 + 104, 15},
    {"StnDirect9", StressKind::kStn, 9, 1, 1, 7, 17, 15, 27, 3},
    {"StnSolid72", StressKind::kStn, 72, 1, 1, 45, 9, 47, 9},
    {"StnShell64Layer3Bottom", StressKind::kStn, 64, 3, 2, 90, 16, 99, 16},
    {"StnShell93Layer2Bottom", StressKind::kStn, 93, 2, 2, 59 + 104, 15, 68 + 104, 15},
    {"StnShell54Layer2Bottom", StressKind::kStn, 54, 2, 2, 94 + 151, 18, 103 + 151, 18},
};

class StressLayout : public StressStudy, public ::testing::WithParamInterface<Row> {};

TEST_P(StressLayout, ReadsTheWordsOfItsRow) {
  const Row& row = GetParam();
  const int nodes[] = {5, 2, 9, 4};
  StressWords words(1, 1);
  words.Step(1, 22);
  words.Element(1, 1);
  words.Fill(22, 500, 7777.0F);  // what must not be read
  words.Head(22, 1, 500, row.type_code, 4, 3);
  for (std::size_t j = 0; j < 4; ++j) {
    for (std::size_t c = 0; c < static_cast<std::size_t>(row.components); ++c) {
      words.Real(22 + row.component + j * row.component_stride + c, static_cast<float>(10 * (j + 1) + c));
    }
  }
  // Numbers last: in one row they lie between the components of other nodes.
  for (std::size_t j = 0; j < 4; ++j)
    words.Real(22 + row.node + j * row.node_stride, static_cast<float>(nodes[j]));
  words.Write(Path(row.kind == StressKind::kStn ? ".STN" : row.kind == StressKind::kStp ? ".STP" : ".STE"));
  study.stress_kind = row.kind;
  study.properties.ShellLayer = row.layer;
  study.properties.ShellSurface = row.surface;

  const NodalStressStore store = BuildCase(1);
  for (std::size_t j = 0; j < 4; ++j) {
    StressTensor expected = Rising(10 * static_cast<double>(j + 1));
    for (std::size_t c = static_cast<std::size_t>(row.components); c < 6; ++c) expected[c] = 0.0;
    EXPECT_EQ(store.NodalStress(nodes[j], 1), expected) << "node " << nodes[j];
  }
  EXPECT_EQ(store.NodalStress(1, 1), StressTensor{});
}

INSTANTIATE_TEST_SUITE_P(Rows, StressLayout, ::testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

// One element of every type code, all with the same words: which of them have stresses, and where.
TEST_F(StressStudy, EveryTypeCodeHasItsLayout) {
  struct Family {
    std::vector<int> types;
    int ste, stn;
  };
  const Family families[] = {
      {{2, 42, 45, 72, 92, 98}, 30, 47}, {{46}, 30, 30},         {{3, 4, 9, 17}, 15, 15},
      {{43, 44, 63, 64, 94}, 60, 92},    {{90, 91, 93}, 60, 61}, {{53, 54}, 60, 96}};
  const auto place_of = [&](int type, bool stn) {
    for (const Family& family : families) {
      if (std::count(family.types.begin(), family.types.end(), type) != 0)
        return stn ? family.stn : family.ste;
    }
    return 0;
  };
  for (const bool stn : {false, true}) {
    for (int type = -1; type <= 100; ++type) {
      if (type == 1 || type == 8) continue;  // take their nodes from the model
      StressWords words(1, 1);
      words.Step(1, 22);
      words.Element(1, 1);
      for (std::size_t w = 7; w < 200; ++w) words.Real(22 + w, 3.0F + static_cast<float>(w) / 1024);
      words.Head(22, 1, 200, type, 1, 1);
      words.Write(Path(stn ? ".STN" : ".STE"));
      study.stress_kind = stn ? StressKind::kStn : StressKind::kSte;
      const int place = place_of(type, stn);
      const double expected = place == 0 ? 0.0 : 3.0 + place / 1024.0;
      EXPECT_EQ(BuildCase(1).NodalStress(3, 1)[0], expected) << "type " << type << (stn ? " of .STN" : "");
    }
  }
}

// Elements 1 (nodes 1, 2) and 2 (nodes 2, 3) are lines, element 3 a later solid at nodes 3 and 4.
TEST_F(StressStudy, LineElementsAddToNodesOfTheModel) {
  TableBuilder elements(8, 10);
  for (const auto& [element, field, node] : {std::array{1, 6, 1}, {1, 7, 2}, {2, 6, 2}, {2, 7, 3}}) {
    elements.SetInt(element, field, node);
  }
  WriteBytes(Path(".ELE"), elements.Bytes());
  DbOpenStudyTables(run.database);
  for (const bool stn : {false, true}) {
    StressWords words(1, 3);
    words.Step(1, 24);
    words.Element(1, 1);
    words.Element(2, 21);
    words.Element(3, 41);
    words.Fill(24, 40, 7777.0F);
    words.Head(24, 1, 20, 1, 2, 1);
    words.Real(24 + (stn ? 10 : 9), 10.0F);
    words.Head(44, 2, 20, 8, 2, 1);
    words.Real(44 + (stn ? 10 : 9), 20.0F);
    if (!stn) words.Solid(64, 3, {3, 4}, 100.0F);
    words.Write(Path(stn ? ".STN" : ".STE"));
    study.stress_kind = stn ? StressKind::kStn : StressKind::kSte;
    study.sizes.highest_element = stn ? 2 : 3;

    const NodalStressStore store = BuildCase(1);
    EXPECT_EQ(store.NodalStress(1, 1), (StressTensor{10, 0, 0, 0, 0, 0}));
    // Element 2 adds nothing here: the node has exactly one contribution.
    EXPECT_EQ(store.NodalStress(2, 1), (StressTensor{0, 10, 0, 0, 0, 0}));
    const StressTensor with_solid = {50, 60.5, 51, 51.5, 52, 52.5};
    EXPECT_EQ(store.NodalStress(3, 1), stn ? (StressTensor{0, 20, 0, 0, 0, 0}) : with_solid);
  }

  elements.SetInt(2, 7, 10);
  WriteBytes(Path(".ELE"), elements.Bytes());
  DbCloseTable(run.database, DbTable::kEle, CloseMode::kKeepHeader);
  try {
    BuildCase(1);
    FAIL() << "a line element at node 10 of a model with 9 nodes";
  } catch (const InputFault& fault) {
    EXPECT_EQ(fault.place(), "element 2, field 7");
    EXPECT_EQ(fault.found(), "10");
  }
}

// Types with direct stresses skip a node of one contribution, but not one of two.
TEST_F(StressStudy, DirectStressesSkipANodeWithOneContribution) {
  StressWords words(1, 4);
  words.Step(1, 25);
  std::size_t next = 0;
  for (int element = 1; element <= 4; ++element) {
    words.Element(element, static_cast<int>(next) + 1);
    if (element == 2) {
      words.Solid(25 + next, 2, {1}, 8.0F);
    } else {
      words.Head(25 + next, element, 40, 4, 1, 1);
      words.Real(25 + next + 7, element == 3 ? 2.0F : 1.0F);
      for (std::size_t c = 0; c < 3; ++c) words.Real(25 + next + 15 + c, static_cast<float>(4 * element));
      words.Real(25 + next + 39, 0.0F);
    }
    next += 40;
  }
  words.Write(Path(".STE"));
  const NodalStressStore store = BuildCase(1);
  // Element 1 and 2 make two contributions, so element 4 counts as well.
  EXPECT_EQ(store.NodalStress(1, 1)[0], static_cast<double>((4.0F + 8.0F + 16.0F) * (1.0F / 3.0F)));
  EXPECT_EQ(store.NodalStress(2, 1)[0], 12.0);
}

TEST_F(StressStudy, ALayerThatAnElementLacksStopsTheRun) {
  study.properties.ShellLayer = 3;
  for (const int type : {46, 43, 54, 90}) {
    StressWords words(1, 1);
    words.Step(1, 22);
    words.Element(1, 1);
    words.Head(22, 1, 600, type, 4, 2);
    words.Real(22 + 599, 0.0F);
    words.Write(Path(".STE"));
    EXPECT_EQ(StopsWith({{1, 1}}), 9048) << "type " << type;
  }
}

}  // namespace
}  // namespace zentor::test
