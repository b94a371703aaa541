// What build says of definitions that it takes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/definition_folder.h"

namespace zentor {
namespace {

using Edits = std::vector<std::pair<const char*, std::string>>;

const std::pair<Edits, std::vector<const char*>> kCases[] = {
    {{}, {}},
    {{{"'pull.csv'", "'corner.csv'"}},
     {"3 of 4 nodes have no stress range and get damage all the same, since infinite_life is not defined: "
      "stresses "
      "below an S-N curve count with its last number of cycles"}},
    {{{"'pull.csv'", "'corner.csv'"}, {"[options]", "[options]\ninfinite_life = 1e9"}}, {}},
    {{{"{case = 'pull'}", "{case = 'pull', scale = 0.01}"}},
     {"the largest stress component of the loadings is 0.4, far below the S-N curve's stresses of 100 to "
      "400: are "
      "both in the same unit?"}},
    {{{"{case = 'pull'}", "{case = 'pull', scale = 1e6}"}},
     {"the largest stress component of the loadings is 4e+07, far above the S-N curve's stresses of 100 to "
      "400: are "
      "both in the same unit?"}},
    {{{"[[event]]", "[[stress_case]]\nname = 'copy'\nstresses = 'pull.csv'\n[[event]]"},
      {"{case = 'zero'}", "{case = 'copy', scale = -1}"}},
     {"stress cases 'pull' and 'copy' hold the same stresses"}},
    {{{"[[event]]", "[[location]]\nnode = 2\nstress_factors = [2, 1, 1]\n[[event]]"}},
     {"all nodes are evaluated, so the 1 [[location]] and what is stored at them have no effect; "
      "options.evaluate "
      "names one to evaluate",
      "stress_factors of location 1 have no effect: they act on the stresses of stored conditions, of which "
      "it has "
      "none"}},
    {{{"[options]", "[options]\nmean_stress_correction = 'goodman'"},
      {"[[event]]", "[[material]]\nultimate_strength = 70\n[[event]]"}},
     {"the ultimate strength 70 of material 1 does not fit an S-N curve with stresses of 100 to 400: are "
      "both in the "
      "same unit?"}},
    {{{"[options]", "[options]\nload_amplitude = 'variable'"},
      {"cycles = 1000\nloadings = [{case = 'pull'}, {case = 'zero'}]",
       "case = 'pull'\nhistory = 1\n[[history]]\npoints = [[0, 0], [1, 0.02], [2, -0.01]]"}},
     {"the largest stress component of the loadings is 0.8, far below the S-N curve's stresses of 100 to "
      "400: are "
      "both in the same unit?"}},
};

TEST(DefinitionWarnings, SayWhatMisleads) {
  for (const auto& [edits, expected] : kCases) {
    test::DefinitionFolder folder;
    folder.AddFile("corner.csv",
                   "element,node,sx,sy,sz,txy,txz,tyz\n1,1,300,0,0,0,0,0\n1,2,0,0,0,0,0,0\n1,3,0,0,0,0,0,0\n"
                   "1,4,0,0,0,0,0,0\n");
    for (const auto& [piece, by] : edits) folder.Replace(piece, by);
    EXPECT_THAT(folder.Build().warnings, testing::ElementsAreArray(expected));
  }
}

}  // namespace
}  // namespace zentor
