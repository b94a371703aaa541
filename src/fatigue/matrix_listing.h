// The range-mean matrix of the shared history in the listing.
#pragma once

#include "database/text_record_file.h"
#include "fatigue/rainflow.h"

namespace zentor {

// Sets the matrix's first and last occupied mean bin, writes it as a table (32 mean bins per line) and as a
// list of its bins, and returns the number of bins that give a cycle class: count above 0 and range centre
// not 0.
int PrintRangeMeanMatrix(TextRecordFile& listing, RangeMeanMatrix& matrix);

}  // namespace zentor
