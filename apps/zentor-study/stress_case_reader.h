// Element-nodal stresses of one case from their rows.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "authoring/study_definition.h"
#include "input_context.h"
#include "row_source.h"

namespace zentor::companion {

// What the first case covers. A stress file gives every case the same records.
struct CaseCoverage {
  std::string name;  // empty until the first case was read
  int layers = 0;
  std::vector<bool> elements;  // by place in the model
  bool known = true;           // false after a case with mistakes: nothing is compared then
};

inline constexpr std::array<Column, 10> kStressColumns = {{{"element"},
                                                           {"node"},
                                                           {"sx"},
                                                           {"sy"},
                                                           {"sz"},
                                                           {"txy"},
                                                           {"txz"},
                                                           {"tyz"},
                                                           {"layer", false},
                                                           {"surface", false}}};

// Reports an element or node that the model lacks, values given twice or for some nodes of an element only,
// elements or layers that the first case does not have. Then what is returned is incomplete.
std::vector<StressField> ReadStressCase(const StudyModel& model, const ModelIndex& index, RowSource& rows,
                                        const std::string& name, CaseCoverage& coverage,
                                        DefinitionErrors& errors);

// Reports fields of the rows that are no number or out of range: all there is to say beside a faulty model.
void CheckStressRows(RowSource& rows, DefinitionErrors& errors);

}  // namespace zentor::companion
