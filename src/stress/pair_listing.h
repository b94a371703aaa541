// The result tables of the listing and, for a single location, the records of ".FTI" that go with them
// (docs/formats/fti.md). Everything is written in the order of the calls.
#pragma once

#include <cstdint>
#include <string>

#include "stress/pair_evaluation.h"
#include "study/run_context.h"
#include "study/study_state.h"

namespace zentor {

// A row of the pair table: a loading pair, or a cycle class of a variable-amplitude study (loadings and
// events 0). Stresses in the study's stress unit, `alternating` is half the range.
struct PairRow {
  int first_loading = 0;
  int first_event = 0;
  int second_loading = 0;
  int second_event = 0;
  std::int32_t used = 0;
  double allowed = 0.0;
  double alternating = 0.0;
  double partial_usage = 0.0;
};

// The spaced results heading with the empty lines around it; every table below begins with it.
void PrintResultsHeading(TextRecordFile& listing);

// The pair table row by row, in the listing only.
void PrintPairTableHeading(RunContext& run);
void PrintPairRow(RunContext& run, const PairRow& row);

// Constant amplitude: the table of the pairs that used cycles. With `elastic_plastic` the section table (with
// temperature, Ke and the section stress) and records of type 5, otherwise the pair table and records of
// type 2.
void PrintPairTable(RunContext& run, const PairArrays& pairs, bool elastic_plastic);

// "Cumulative Fatigue" and its record: type 3, with the elastic-plastic factor type 6.
void PrintCumulativeUsage(RunContext& run, double usage, bool elastic_plastic);

// A single location of a study without usable S-N data (store.point_count 0 or 1), in this order: the heading
// and message 9053, or the improper curves; the pairs with their alternating stresses and records of type 4;
// the lines on the missing usage factor, with messages 9063 and 9064 for an improper curve.
void PrintMissingCurve(RunContext& run, const SnCurveStore& store);
void PrintAlternatingStressTable(RunContext& run, const PairArrays& pairs);
void PrintNoUsageFactor(RunContext& run, const SnCurveStore& store);

// Names the built-in curve (option -1 or -2) once for each set of the store that has curves.
void PrintBuiltInCurveHeading(RunContext& run, int option, const SnCurveStore& store);

// All-nodes option: the heading before the first node, and a node's line with its line feed, which grows
// where the node number outgrows its columns.
void WriteAllNodesHeading(TextRecordFile& listing);
void AppendAllNodesLine(std::string& lines, int node, double usage);

}  // namespace zentor
