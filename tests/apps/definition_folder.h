// A folder with a small definition that a test changes, and what building it gives.
#pragma once

#include <regex>
#include <string>
#include <string_view>

#include "build_study.h"
#include "definition_error.h"
#include "study_input.h"
#include "support/temp_folder.h"

namespace zentor::test {

// One quad4 with nodes 1 to 4, a stress case "pull" from a CSV file, one event and one curve.
class DefinitionFolder {
 public:
  DefinitionFolder() {
    WriteText(folder_.Path("pull.csv"),
              "element,node,sx,sy,sz,txy,txz,tyz\n"
              "1,1,10,0,0,0,0,0\n1,2,20,0,0,0,0,0\n1,3,30,0,0,0,0,0\n1,4,40,0,0,0,0,0\n");
  }

  std::string text = R"(title = 'small'
[options]
alternating_stress = 'von-mises'
[model]
nodes = [[1,0,0,0],[2,1,0,0],[3,1,1,0],[4,0,1,0]]
elements = [[1,'quad4',1,2,3,4]]
[[stress_case]]
name = 'pull'
stresses = 'pull.csv'
[[event]]
cycles = 1000
loadings = [{case = 'pull'}, {case = 'zero'}]
[[sn_curve]]
points = [[1e3, 400.0], [1e6, 100.0]]
)";

  // Replaces one piece of the text, which must be there.
  void Replace(std::string_view piece, std::string_view by) {
    const std::size_t place = text.find(piece);
    if (place == std::string::npos)
      throw std::logic_error("no '" + std::string(piece) + "' in the definition");
    text.replace(place, piece.size(), by);
  }
  void AddFile(std::string_view name, std::string_view content) { WriteText(folder_.Path(name), content); }

  // Writes the definition and returns its path.
  std::string Write() {
    WriteText(folder_.Path("study.toml"), text);
    return folder_.Path("study.toml");
  }
  companion::BuiltStudy Build(bool force = false) {
    return companion::BuildStudy(Write(), Base(), force, platform::NativeFileSystem());
  }
  // The error's text with the folder taken out, empty when the build succeeds.
  std::string BuildError() {
    try {
      Build();
    } catch (const companion::DefinitionError& error) {
      return std::regex_replace(error.what(), std::regex(folder_.Path("")), "");
    }
    return {};
  }
  std::string Base() const { return folder_.Path("study"); }
  std::string Path(std::string_view name) const { return folder_.Path(name); }

 private:
  TempFolder folder_;
};

}  // namespace zentor::test
