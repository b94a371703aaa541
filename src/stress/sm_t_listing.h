// The Sm-T curve and the elastic-plastic parameters in the listing.
#pragma once

#include "database/text_record_file.h"
#include "study/definition.h"

namespace zentor {

void PrintSmTCurve(TextRecordFile& listing, const SmTCurve& curve);

}  // namespace zentor
