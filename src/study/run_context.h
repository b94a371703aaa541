// The open files and services of one run, passed to whoever reads or writes.
#pragma once

#include "database/direct_access_file.h"
#include "database/file_units.h"
#include "database/model_database.h"
#include "database/text_record_file.h"
#include "platform/files.h"
#include "services/solver_services.h"

namespace zentor {

struct RunContext {
  RunContext(platform::FileSystem& file_system, SolverServices& shell)
      : services(shell), files(file_system), units(file_system, shell), database(units) {}

  SolverServices& services;
  platform::FileSystem& files;
  FileUnits units;
  ModelDatabase database;
  TextRecordFile listing;           // ".FTG", or ".OUT" in multi-study mode
  DirectAccessFile result_records;  // ".FTI"
};

}  // namespace zentor
