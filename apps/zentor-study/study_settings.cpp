#include "study_settings.h"

#include <fmt/format.h>

#include "authoring/master_table.h"

namespace zentor::companion {

namespace {

constexpr int kOptionEntity = 60;
constexpr int kLocationEntity = 103;

int MasterInt(StudyTables& tables, MasterField at) { return tables.Int(DbTable::kMas, at.entity, at.field); }
float MasterReal(StudyTables& tables, MasterField at) {
  return tables.Real(DbTable::kMas, at.entity, at.field);
}

void ReadFromDefinition(StudyTables& tables, FatigueProperties& p) {
  const auto number = [&](int field) { return tables.Int(DbTable::kFtc, kOptionEntity, field); };
  const auto real = [&](int field) { return tables.Real(DbTable::kFtc, kOptionEntity, field); };
  p.StudyType = 6;
  p.AlternatingStressType = number(2);
  p.EventInteraction = number(3);
  p.FatigueStrengthReductionFactor = real(4);
  p.SnCurveOption = number(6);
  p.SharedHistory = number(7);
  p.MeanStressCorrection = number(8);
  p.RangeBinCount = number(9);
  p.MeanBinCount = number(10);
  p.LoadAmplitudeType = number(11);
  p.InfiniteLifeValue = real(12);
  p.FilterPercent = static_cast<float>(number(13));
  p.SurfaceOnly = number(14);
}

void ReadFromMaster(StudyTables& tables, FatigueProperties& p) {
  p.StudyType = MasterInt(tables, master::kStudyType);
  p.AlternatingStressType = MasterInt(tables, master::kAlternatingStressType);
  p.EventInteraction = MasterInt(tables, master::kEventInteraction);
  p.FatigueStrengthReductionFactor = MasterReal(tables, master::kStrengthReductionFactor);
  p.SnCurveOption = MasterInt(tables, master::kSnCurveOption);
  p.SharedHistory = MasterInt(tables, master::kSharedHistory);
  p.MeanStressCorrection = MasterInt(tables, master::kMeanStressCorrection);
  p.RangeBinCount = MasterInt(tables, master::kRangeBinCount);
  p.MeanBinCount = MasterInt(tables, master::kMeanBinCount);
  p.LoadAmplitudeType = MasterInt(tables, master::kLoadAmplitudeType);
  p.InfiniteLifeValue = MasterReal(tables, master::kInfiniteLifeValue);
  p.FilterPercent = static_cast<float>(MasterInt(tables, master::kFilterPercent));
  p.SnInterpolationDefault = MasterInt(tables, master::kSnInterpolationDefault);
}

void Normalise(FatigueProperties& p) {
  if (p.RangeBinCount == 0) p.RangeBinCount = 25;
  if (p.MeanBinCount == 0) p.MeanBinCount = p.RangeBinCount;
  if (p.FatigueStrengthReductionFactor < 1e-16F) p.FatigueStrengthReductionFactor = 1.0F;
}

std::string ReadTitle(StudyTables& tables) {
  std::vector<std::int32_t> characters(master::kTitleLength);
  tables.Ints(DbTable::kMas, master::kTitleEntity, 1, characters);
  std::string title;
  for (const std::int32_t c : characters) {
    const char low = static_cast<char>(c & 0xFF);
    title += low == '\0' ? ' ' : low;
  }
  title.erase(title.find_last_not_of(' ') + 1);
  return title;
}

// The text of a code: "a|b|c" names the codes 0, 1, 2.
std::string CodeText(int code, std::string_view names) {
  for (int i = 0; !names.empty(); ++i) {
    const std::size_t bar = names.find('|');
    if (i == code) return std::string(names.substr(0, bar));
    names = bar == std::string_view::npos ? std::string_view{} : names.substr(bar + 1);
  }
  return {};
}

class OptionList {
 public:
  void Add(std::string_view name, int value, std::string meaning = "") {
    lines_.push_back({std::string(name), std::to_string(value), std::move(meaning)});
  }
  void Code(std::string_view name, int value, std::string_view names) {
    Add(name, value, CodeText(value, names));
  }
  void AddReal(std::string_view name, float value, std::string meaning = "") {
    lines_.push_back({std::string(name), fmt::format("{:g}", value), std::move(meaning)});
  }
  std::vector<OptionLine> Take() { return std::move(lines_); }

 private:
  std::vector<OptionLine> lines_;
};

std::string ActivatedText(int location) {
  if (location == kAllNodes) return "all nodes";
  return location == 0 ? "none: the run will stop" : "single location";
}

std::string CurveText(int option) {
  if (option == -1) return "built-in curve of carbon steel, from the modulus of elasticity";
  if (option == -2) return "built-in curve of austenitic steel, from the modulus of elasticity";
  return "curves of the study";
}

}  // namespace

StudySettings ReadStudySettings(StudyTables& tables) {
  StudySettings options;
  options.has_study_list = tables.HasFile(".FTS");
  options.has_options = tables.Find(options.has_study_list ? DbTable::kFtc : DbTable::kMas) != nullptr;
  FatigueProperties& p = options.properties;
  if (options.has_study_list) {
    ReadFromDefinition(tables, p);
  } else {
    ReadFromMaster(tables, p);
  }
  p.PointerWidth = MasterInt(tables, master::kPointerWidthFlag) == 1 ? 2 : 1;
  p.ShellSurface = IsMultiStudy(p) ? tables.Int(DbTable::kFtc, kOptionEntity, 7)
                                   : MasterInt(tables, master::kShellSurface);
  p.ShellLayer = MasterInt(tables, master::kShellLayer);
  p.ActivatedLocation = IsMultiStudy(p) ? kAllNodes : tables.Int(DbTable::kFtc, kLocationEntity, 3);
  Normalise(p);
  options.title = ReadTitle(tables);
  options.listing_mode = MasterInt(tables, master::kListingMode);
  options.run_mode = MasterInt(tables, master::kRunMode);
  return options;
}

std::optional<BinCounts> StudySettings::Bins() const {
  if (!has_options) return std::nullopt;
  return BinCounts{properties.RangeBinCount, properties.MeanBinCount};
}

std::vector<OptionLine> DescribeSettings(const StudySettings& options) {
  const FatigueProperties& p = options.properties;
  OptionList list;
  list.Add("StudyType", p.StudyType, IsMultiStudy(p) ? "multi-study" : "ordinary");
  list.Code("LoadAmplitudeType", p.LoadAmplitudeType, "constant amplitude|variable amplitude");
  list.Add("ActivatedLocation", p.ActivatedLocation, ActivatedText(p.ActivatedLocation));
  if (IsMultiStudy(p)) list.Code("SurfaceOnly", p.SurfaceOnly, "whole model|surface nodes");
  list.Code("AlternatingStressType", p.AlternatingStressType, "stress intensity|von Mises|maximum principal");
  list.Code("MeanStressCorrection", p.MeanStressCorrection, "none|Soderberg|Goodman|Gerber");
  if (IsVariableAmplitude(p)) {
    list.Code("SharedHistory", p.SharedHistory, "histories of their own|one common history");
    list.Add("RangeBinCount", p.RangeBinCount);
    list.Add("MeanBinCount", p.MeanBinCount);
    list.AddReal("FilterPercent", p.FilterPercent, "% of the largest value");
  } else {
    list.Code("EventInteraction", p.EventInteraction, "random|no interaction");
  }
  list.AddReal("FatigueStrengthReductionFactor", p.FatigueStrengthReductionFactor);
  list.AddReal("InfiniteLifeValue", p.InfiniteLifeValue, HasInfiniteLife(p) ? "cycles" : "not defined");
  list.Add("SnCurveOption", p.SnCurveOption, CurveText(p.SnCurveOption));
  if (!options.has_study_list && !UsesBuiltInCurve(p)) {
    list.Code("SnInterpolationDefault", p.SnInterpolationDefault, "log-log|semi-log|linear");
  }
  list.Code("ShellSurface", p.ShellSurface, "|top|bottom");
  list.Add("ShellLayer", p.ShellLayer);
  list.Add("PointerWidth", p.PointerWidth, "words per pointer of a stress file");
  list.Add("listing mode", options.listing_mode, options.listing_mode == 1 ? "continued" : "replaced");
  list.Add("run mode", options.run_mode);
  return list.Take();
}

}  // namespace zentor::companion
