// The table of a section: what it shows, and that reading it changes nothing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "authoring/study_writer.h"
#include "commands.h"
#include "results_section.h"
#include "stress/section_study.h"
#include "support/temp_folder.h"

namespace zentor::companion {
namespace {

using test::SectionWall;
using testing::AllOf;
using testing::HasSubstr;

class SectionTable : public testing::Test {
 protected:
  // Location 1 at (10, 0), location 2 at (14, 0), location 3 in no section; axial stress 12 (x - 10) in case
  // 1, uniform stresses in case 2.
  SectionTable() {
    wall.AddCase([](float x, float) { return std::array<float, 4>{0, 12 * (x - 10), 0, 0}; });
    wall.AddCase([](float, float) { return std::array<float, 4>{50, -20, 80, 35}; });
    wall.AddEvent(10, {{2, 3.0F}, {1, 2.0F}, {kZeroStressCase, 1.0F}, {2, -1.0F}});
    for (const int node : {1, 5}) wall.AddLocation(node, 1, 3);
    wall.AddLocation(8, 0);
    wall.study.options.activated_location = 2;
  }
  std::string Base() const { return folder.Path("wall"); }
  void Write() { WriteStudy(wall.study, Base(), platform::NativeFileSystem()); }
  std::string Table(int location) {
    const std::string path = tables.Path("table.csv");
    OutputFile out(path);
    WriteSectionCsv(Base(), location, out);
    out.Commit();
    return test::ReadText(path);
  }

  test::TempFolder folder, tables;
  SectionWall wall;
};

// Three points: bending of a linear stress comes out half as much again, 24 * 1.5 = 36.
TEST_F(SectionTable, PathsPointsAndPartsOfEveryLoadCase) {
  Write();
  const auto before = folder.Contents();
  EXPECT_EQ(Table(0),
            "load_case,point,distance,x,y,node,element,sx,sy,sz,txy,membrane_sx,membrane_sy,membrane_sz,"
            "membrane_txy,bending_sx,bending_sy,bending_sz,bending_txy\n"
            "2,1,0,10,0,1,,50,-20,80,35,50,-20,80,35,0,0,0,0\n"
            "2,2,2,12,0,3,,50,-20,80,35,50,-20,80,35,,,,\n"
            "2,3,4,14,0,5,,50,-20,80,35,50,-20,80,35,0,0,0,0\n"
            "1,1,0,10,0,1,,0,0,0,0,0,24,0,0,0,-36,0,0\n"
            "1,2,2,12,0,3,,0,24,0,0,0,24,0,0,,,,\n"
            "1,3,4,14,0,5,,0,48,0,0,0,24,0,0,0,36,0,0\n");
  EXPECT_EQ(folder.Contents(), before);
}

// Case 2 is uniform: its membrane parts come back from the section's axes.
TEST_F(SectionTable, CurvedSectionsAreShownInTheModelsAxes) {
  wall.study.locations[1].node = 15;
  for (AuthoredLocation& location : wall.study.locations) {
    location.radius = 900.0F;
    location.path_points = 4;
  }
  Write();
  EXPECT_THAT(Table(1),
              AllOf(HasSubstr("\n2,1,0,10,0,1,,50,-20,80,35,50,-20,80,35,"),
                    HasSubstr("\n2,2,1.490712,11.33333,0.6666667,,2,50,-20,80,35,50,-20,80,35,,,,\n")));
}

TEST_F(SectionTable, WhatCannotBeShownFailsByName) {
  wall.study.options.activated_location = kAllNodesLocation;
  Write();
  const auto refused = [&](int location, const char* why) {
    EXPECT_THAT([&] { Table(location); }, testing::ThrowsMessage<CommandFailure>(HasSubstr(why)));
  };
  refused(0, "name a location of a section with --location");
  refused(3, "location 3 is at no end of a section with two nodes");
  wall.study.locations[1].node = 16;
  Write();
  refused(1, "ERROR - Point  2 (X=     15.00  Y=      0.00)  of the section,");
}

}  // namespace
}  // namespace zentor::companion
