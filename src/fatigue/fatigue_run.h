// What one run keeps: the open files, the study, the stress store.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "fatigue/lost_stress_nodes.h"
#include "fatigue/matrix_file.h"
#include "fatigue/variable_amplitude.h"
#include "stress/nodal_stress_store.h"
#include "study/run_context.h"
#include "study/study_state.h"

namespace zentor {

struct FatigueRun {
  FatigueRun(platform::FileSystem& files, SolverServices& services) : context(files, services) {}

  RunContext context;
  std::vector<std::byte> reserve;  // memory that is given back when there is none left
  StudyState study;
  NodalStressStore store;
  VariableAmplitude variable;            // variable amplitude only, as are the matrices
  std::unique_ptr<MatrixFile> matrices;  // ".FTD"
  LostStressNodes lost;                  // by the formulas as stated
  bool above_curve_answered = false;     // the user accepted stresses above the S-N curve in this run
  bool sm_t_printed = false;             // the Sm-T curve stands in the listing
  bool usage_table_warned = false;       // one warning when the usage entities find no room
};

}  // namespace zentor
