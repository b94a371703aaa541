#include <gtest/gtest.h>

#include <filesystem>

#include "authoring/study_writer.h"
#include "results.h"
#include "services/faults.h"
#include "support/temp_folder.h"

namespace zentor::companion {
namespace {

using test::ReadText;
using test::TempFolder;

// A wedge and a quadrilateral; node 9 has no results.
StudyDefinition WedgeAndQuad() {
  StudyDefinition study;
  study.model.nodes = {{1, {0, 0, 0}, 0}, {2, {1, 0, 0}, 0}, {3, {0, 1, 0}, 0},   {4, {0, 0, 1}, 0},
                       {5, {1, 0, 1}, 0}, {6, {0, 1, 1}, 0}, {9, {5, 5, 0.1F}, 0}};
  study.model.elements = {{1, 45, 1, 2, 6, 0}, {4, 42, 2, 3, 4, 6}};
  study.model.element_nodes = {1, 2, 3, 4, 5, 6, 1, 2, 9, 3};
  study.model.groups = {{1, 45}, {2, 42}};
  study.stress_cases.push_back({"a", 1, {{1, false, std::vector<float>(60, 3.0F)}}, {}});
  return study;
}

class ExportedFiles : public testing::Test {
 protected:
  ExportedFiles() { WriteStudy(WedgeAndQuad(), folder_.Path("job"), platform::NativeFileSystem()); }
  Mesh ReadTheMesh() {
    StudyTables tables(folder_.Path("job"));
    return ReadMesh(tables);
  }
  TempFolder folder_;
};

TEST(VtkCells, WithoutTypeCodeAreToldByTheirShape) {
  const auto cell = [](std::vector<std::array<float, 3>> points, int type_code) {
    Mesh mesh;
    mesh.points = points;
    for (std::size_t i = 0; i < points.size(); ++i) mesh.connectivity.push_back(static_cast<std::int32_t>(i));
    mesh.ends = {points.size()};
    mesh.element_ids = {1};
    mesh.type_codes = {type_code};
    return VtkCellType(mesh, 0);
  };
  EXPECT_EQ(cell({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, 0), 9);
  EXPECT_EQ(cell({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}}, 0), 10);
  EXPECT_EQ(cell({{0, 0, 0}, {2, 0, 0}, {0, 2, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, 0), 22);
  EXPECT_EQ(cell({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {0, 1, 1}}, 0), 13);
  EXPECT_EQ(cell({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, 45), 10) << "a known code decides";
  EXPECT_EQ(cell({{0, 0, 0}, {2, 0, 0}, {0, 2, 0}, {1.5F, 0, 0}, {1, 1, 0}, {0, 1, 0}}, 0), 22);
  EXPECT_EQ(cell({{0, 0, 0}, {2, 0, 0}, {0, 2, 0}, {1.7F, 0, 0}, {1, 1, 0}, {0, 1, 0}}, 0), 13);
  const std::pair<std::size_t, int> by_count[] = {{0, 0},  {1, 1},   {2, 3},   {3, 5},   {5, 14},  {7, 2},
                                                  {8, 12}, {10, 24}, {13, 27}, {15, 26}, {20, 25}, {21, 2}};
  for (const auto& [count, type] : by_count) {
    std::vector<std::array<float, 3>> points(count);
    for (std::size_t i = 0; i < count; ++i) points[i][i % 3] = static_cast<float>(i);
    EXPECT_EQ(cell(points, 0), type) << count;
  }
}

TEST_F(ExportedFiles, ElementWithAnUnknownNodeIsAFault) {
  StudyDefinition study = WedgeAndQuad();
  study.model.element_nodes[8] = 8;
  WriteStudy(study, folder_.Path("job"), platform::NativeFileSystem());
  EXPECT_THROW(ReadTheMesh(), InputFault);
}

TEST_F(ExportedFiles, FailureLeavesTheEarlierFileAndLinksAreFollowed) {
  const std::string path = folder_.Path("table.csv"), link = folder_.Path("link.csv");
  test::WriteText(path, "earlier");
  const auto before = folder_.Contents();
  OutputFile(path).Write("half of a new");
  EXPECT_EQ(folder_.Contents(), before);
  std::filesystem::create_symlink(path, link);
  OutputFile out(link);
  out.Write("new");
  out.Commit();
  EXPECT_EQ(ReadText(path), "new");
  EXPECT_TRUE(std::filesystem::is_symlink(link));
}

}  // namespace
}  // namespace zentor::companion
