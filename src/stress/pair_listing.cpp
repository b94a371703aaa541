#include "stress/pair_listing.h"

#include <cstddef>

#include "database/edit.h"
#include "study/result_record_file.h"

namespace zentor {
namespace {

constexpr int kNoCurveMessage = 9053;
constexpr int kImproperCurveMessage = 9063;
constexpr int kImproperCurvePointsMessage = 9064;

// Record types of ".FTI".
constexpr std::int32_t kPairRecord = 2;
constexpr std::int32_t kUsageRecord = 3;
constexpr std::int32_t kAlternatingRecord = 4;
constexpr std::int32_t kSectionPairRecord = 5;
constexpr std::int32_t kSectionUsageRecord = 6;

constexpr const char* kResultsHeading = "F A T I G U E   C A L C U L A T I O N   R E S U L T S:";

PairRow RowOf(const PairArrays& pairs, std::size_t p) {
  PairRow row;
  row.first_loading = pairs.first_loading[p];
  row.first_event = pairs.first_event[p];
  row.second_loading = pairs.second_loading[p];
  row.second_event = pairs.second_event[p];
  row.used = pairs.used[p];
  row.allowed = pairs.allowed[p];
  row.alternating = pairs.alternating[p];
  row.partial_usage = pairs.partial_usage[p];
  return row;
}

void PrintPair(RunContext& run, const PairArrays& pairs, std::size_t p) {
  const PairRow row = RowOf(pairs, p);
  PrintPairRow(run, row);
  ResultRecord record(kPairRecord);
  record.Int(row.first_loading).Int(row.first_event).Int(row.second_loading).Int(row.second_event);
  record.Int(row.used).Real(row.allowed).Real(row.alternating).Real(row.partial_usage);
  AppendResultRecord(run, record);
}

void PrintSectionTableHeading(RunContext& run) {
  PrintResultsHeading(run.listing);
  run.listing.Line("                       CYCLES                      ALTER.     LINEAR");
  run.listing.Line(" LOADING  LOADING   USED/ALLOWED     TEMP.   Ke    STRESS     STRESS   FACTOR");
  run.listing.Line(" -------  -------   -------------   ------  -----  ------     ------   ------");
}

// The listing shows the section's alternating stress, the record its range.
void PrintSectionPair(RunContext& run, const PairArrays& pairs, std::size_t p) {
  Edit line;
  line.X(2).I(3, pairs.first_loading[p]).X(4).I(5, pairs.second_loading[p]).X(2).I(7, pairs.used[p]);
  line.X(1).E(10, 3, pairs.allowed[p]).X(1).F(7, 1, pairs.temperature[p]).X(1).F(5, 2, pairs.ke[p]);
  line.X(1).E(10, 3, pairs.alternating[p]).X(1).E(10, 3, pairs.section_alternating[p]);
  line.X(1).F(6, 3, pairs.partial_usage[p]);
  run.listing.Line(line.str());

  ResultRecord record(kSectionPairRecord);
  record.Int(pairs.first_loading[p]).Int(pairs.second_loading[p]).Int(pairs.used[p]);
  record.Real(pairs.allowed[p]).Real(pairs.temperature[p]).Real(pairs.ke[p]).Real(pairs.alternating[p]);
  record.Real(2.0 * pairs.section_alternating[p]).Real(pairs.partial_usage[p]);
  AppendResultRecord(run, record);
}

void PrintImproperCurve(TextRecordFile& listing, const SnCurve& curve, int set) {
  listing.Blank(4);
  listing.Line(Edit().Text("         S - N   C U R V E  #").I(6, curve.number).str());
  listing.Blank(2);
  listing.Line(
      Edit().Text("(Material set #").I(5, set).Text("; Stress ratio:").F(5, 2, curve.ratio).Text(")").str());
  listing.ListDirected(" POINT No.   No. of Cycles     Alt. Stress");
  listing.ListDirected(" ---------   -------------     -----------");
  if (curve.x.empty()) return;
  listing.Line(Edit().I(6, 1).X(7).E(10, 3, curve.first_cycles).X(8).E(10, 3, curve.first_stress).str());
}

}  // namespace

void PrintResultsHeading(TextRecordFile& listing) {
  listing.Blank(3);
  listing.Line(kResultsHeading);
  listing.Blank(2);
}

void PrintPairTableHeading(RunContext& run) {
  PrintResultsHeading(run.listing);
  run.listing.Line("                                    CYCLES         ALTER.     PARTIAL");
  run.listing.Line(" LOADING (EVN)   LOADING (EVN)    USED/ALLOWED     STRESS     FACTOR");
  run.listing.Line(" -------------   -------------    --------------   ------     -------");
}

void PrintPairRow(RunContext& run, const PairRow& row) {
  Edit line;
  line.X(2).I(3, row.first_loading).X(4).I(3, row.first_event);
  line.X(6).I(3, row.second_loading).X(4).I(3, row.second_event);
  line.X(2).I(8, row.used).X(1).E(10, 4, row.allowed).X(1).E(11, 5, row.alternating);
  line.X(1).E(10, 5, row.partial_usage);
  run.listing.Line(line.str());
}

void PrintPairTable(RunContext& run, const PairArrays& pairs, bool elastic_plastic) {
  if (elastic_plastic) {
    PrintSectionTableHeading(run);
  } else {
    PrintPairTableHeading(run);
  }
  for (std::size_t p = 0; p < static_cast<std::size_t>(pairs.count); ++p) {
    if (pairs.used[p] <= 0) continue;
    if (elastic_plastic) {
      PrintSectionPair(run, pairs, p);
    } else {
      PrintPair(run, pairs, p);
    }
  }
}

void PrintCumulativeUsage(RunContext& run, double usage, bool elastic_plastic) {
  run.listing.Blank();
  run.listing.Line(" Cumulative Fatigue");
  run.listing.Line(Edit().Text("    Usage  Factor    =").E(15, 6, usage).str());
  ResultRecord record(elastic_plastic ? kSectionUsageRecord : kUsageRecord);
  record.Real(usage);
  AppendResultRecord(run, record);
}

void PrintMissingCurve(RunContext& run, const SnCurveStore& store) {
  if (store.point_count < 1) {
    run.listing.Blank(3);
    run.listing.Line("S - N   C U R V E:");
    run.listing.Blank(2);
    run.listing.Line(" No S-N curve defined");
    run.services.ShowMessage(kNoCurveMessage, {}, Severity::kWarning);
    return;
  }
  for (int set = 1; set <= store.sets.size(); ++set) {
    for (const SnCurve& curve : store.sets[set]) PrintImproperCurve(run.listing, curve, set);
  }
}

void PrintAlternatingStressTable(RunContext& run, const PairArrays& pairs) {
  PrintResultsHeading(run.listing);
  run.listing.Line("                                        ALTERNAT. STRESS");
  run.listing.Line("  LOADING (EVN)    LOADING (EVN)        (DECREAS. ORDER)");
  run.listing.Line("  -------------    -------------        ---------------- ");
  for (std::size_t p = 0; p < static_cast<std::size_t>(pairs.count); ++p) {
    const PairRow row = RowOf(pairs, p);
    Edit line;
    line.X(3).I(3, row.first_loading).X(5).I(3, row.first_event);
    line.X(6).I(3, row.second_loading).X(5).I(3, row.second_event).X(14).E(11, 5, row.alternating);
    run.listing.Line(line.str());

    ResultRecord record(kAlternatingRecord);
    record.Int(static_cast<std::int32_t>(p) + 1).Int(row.first_loading).Int(row.first_event);
    record.Int(row.second_loading).Int(row.second_event).Real(row.alternating);
    AppendResultRecord(run, record);
  }
}

void PrintNoUsageFactor(RunContext& run, const SnCurveStore& store) {
  if (store.point_count < 1) {
    run.listing.Line(" No usage factor evaluated (no S-N curve defined)");
    return;
  }
  run.listing.Line(" No usage factor evaluated (Improper S-N curve, i.e., atleast");
  run.listing.Line("  2 pts. on the curve must be defined)");
  run.services.ShowMessage(kImproperCurveMessage, {}, Severity::kWarning);
  run.services.ShowMessage(kImproperCurvePointsMessage, {}, Severity::kWarning);
}

void PrintBuiltInCurveHeading(RunContext& run, int option, const SnCurveStore& store) {
  for (const std::vector<SnCurve>& set : store.sets) {
    if (set.empty()) continue;
    if (option == -2) {
      run.listing.Line("S - N  C U R V E  ( O P T I O N  2 :   A U S T E N I T I C   S T E E L ");
    } else {
      run.listing.Line("S - N  C U R V E  ( O P T I O N  1 :   C A R B O N   S T E E L)");
    }
    run.listing.Line(" ( Activated Curve For Analysis)");
  }
}

void WriteAllNodesHeading(TextRecordFile& listing) {
  PrintResultsHeading(listing);
  listing.Line("              (all-nodes option)   ");
  listing.Line("                        cumulative fatigue");
  listing.Line("        node                usage factor ");
  listing.Line("       ------           ------------------");
}

void AppendAllNodesLine(std::string& lines, int node, double usage) {
  int width = 6;
  for (std::int64_t limit = 1000000; node >= limit; limit *= 10) ++width;
  lines.append(6, ' ');
  AppendI(lines, width, node);
  lines.append(12, ' ');
  AppendF(lines, 15, 6, usage);
  lines.push_back('\n');
}

}  // namespace zentor
