#include "table_dictionary.h"

#include <fmt/format.h>

#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <span>
#include <string_view>

namespace zentor::companion {

namespace {

constexpr int kEnd = std::numeric_limits<int>::max();
using enum FieldType;

// Fields first, first + step, ... up to last; {} in the name is the place in that row, counted from 1.
struct FieldRule {
  int first, last;
  std::string_view name;
  FieldType type;
  int step = 1;
};

enum class Where { kAlways, kOrdinary, kMultiStudy, kConstant, kVariable, kConstantOrdinary };

// Entities first .. last; {} in the name is the place in that row, counted from 1.
struct EntityRule {
  DbTable table;
  int first, last;
  Where where;
  std::string_view name;
  std::span<const FieldRule> fields;
};

constexpr FieldRule kTitle[] = {{1, 80, "title character {}", kCharacter}};
constexpr FieldRule kControl[] = {{14, 14, "language index", kInteger},
                                  {33, 33, "run mode", kInteger},
                                  {43, 43, "listing mode (1 continues a listing)", kInteger},
                                  {48, 48, "StudyType", kInteger},
                                  {70, 70, "ShellSurface (1 top, 2 bottom)", kInteger},
                                  {71, 71, "ShellLayer", kInteger},
                                  {72, 72, "SnCurveOption (-1, -2 built-in curves)", kInteger}};
constexpr FieldRule kSummary[] = {{25, 25, "number shown in the run summary", kInteger}};
constexpr FieldRule kStatus[] = {{11, 11, "total solution time, seconds", kInteger},
                                 {17, 17, "seconds spent before this run", kInteger},
                                 {18, 18, "run summary: bytes before the end of .LOG", kInteger}};
constexpr FieldRule kStressOptions[] = {
    {72, 72, "AlternatingStressType (0 intensity, 1 von Mises, 2 maximum principal)", kInteger},
    {73, 73, "MeanStressCorrection (0 none, 1 Soderberg, 2 Goodman, 3 Gerber)", kInteger},
    {80, 80, "SnInterpolationDefault (0 log-log, 1 semi-log, 2 linear)", kInteger}};
constexpr FieldRule kFatigueOptions[] = {{2, 2, "EventInteraction (0 random, 1 none)", kInteger},
                                         {3, 3, "FatigueStrengthReductionFactor", kReal},
                                         {6, 6, "SharedHistory", kInteger},
                                         {7, 7, "LoadAmplitudeType (0 constant, 1 variable)", kInteger},
                                         {8, 8, "RangeBinCount", kInteger},
                                         {9, 9, "MeanBinCount", kInteger},
                                         {11, 11, "InfiniteLifeValue", kReal},
                                         {12, 12, "FilterPercent", kInteger},
                                         {15, 15, "edition flag", kInteger},
                                         {21, 21, "pointer width flag (1: two words)", kInteger},
                                         {46, 85, "time step of event {}", kInteger}};

constexpr FieldRule kNode[] = {{1, 1, "node", kInteger},
                               {2, 2, "X", kReal},
                               {3, 3, "Y", kReal},
                               {4, 4, "Z", kReal},
                               {5, 5, "CS", kInteger},
                               {6, 6, "X on section paths", kReal},
                               {7, 7, "Y on section paths", kReal}};
constexpr FieldRule kElement[] = {{1, 1, "element", kInteger},
                                  {2, 2, "group", kInteger},
                                  {3, 3, "material (low 16 bits)", kInteger},
                                  {5, 5, "number of nodes", kInteger},
                                  {6, kEnd, "node {}", kInteger}};
constexpr FieldRule kGroup[] = {{1, 1, "group", kInteger}, {2, 2, "element type code", kInteger}};
constexpr FieldRule kSystem[] = {{1, 1, "coordinate system", kInteger},
                                 {2, 2, "kind (0 Cartesian, 1 cylindrical, 2 spherical)", kInteger},
                                 {3, 5, "origin {}", kReal},
                                 {6, 8, "point on the x axis {}", kReal},
                                 {9, 11, "point in the xy plane {}", kReal}};
constexpr FieldRule kMaterial[] = {{1, 1, "material", kInteger},
                                   {2, 2, "modulus of elasticity", kReal},
                                   {3, 3, "temperature curve of the modulus", kInteger},
                                   {80, 80, "yield strength", kReal},
                                   {81, 81, "temperature curve of the yield strength", kInteger},
                                   {86, 86, "ultimate tensile strength", kReal},
                                   {87, 87, "temperature curve of the tensile strength", kInteger}};
constexpr FieldRule kNodalResult[] = {{1, 1, "node", kInteger}, {2, 2, "SX", kReal},  {3, 3, "SY", kReal},
                                      {4, 4, "SZ", kReal},      {5, 5, "TXY", kReal}, {6, 6, "TXZ", kReal},
                                      {7, 7, "TYZ", kReal}};
constexpr FieldRule kCurve[] = {{1, 1, "curve", kInteger},
                                {2, 2, "material set", kInteger},
                                {3, 3, "stress ratio", kReal},
                                {4, 4, "interpolation (0 log-log, 1 semi-log, 2 linear)", kInteger},
                                {10, 10, "number of points", kInteger},
                                {11, kEnd, "cycles of point {}", kReal, 2},
                                {12, kEnd, "alternating stress of point {}", kReal, 2}};

constexpr FieldRule kEvent[] = {{1, 1, "id", kInteger},
                                {2, 2, "event number", kInteger},
                                {4, 4, "cycles", kInteger},
                                {5, 5, "ratio (multi-study)", kReal},
                                {6, 6, "pairing flag (multi-study)", kInteger}};
constexpr FieldRule kHistoryEvent[] = {
    {1, 1, "id", kInteger},          {2, 2, "load case", kInteger}, {3, 3, "history curve", kInteger},
    {4, 4, "repetitions", kInteger}, {5, 5, "scale factor", kReal}, {6, 6, "start point", kInteger},
    {7, 7, "end point", kInteger},   {8, 8, "start time", kReal},   {9, 9, "history setting", kInteger}};
constexpr FieldRule kLoadCases[] = {{1, 1, "id", kInteger}, {2, 41, "load case of loading {}", kInteger}};
constexpr FieldRule kMembers[] = {{1, 1, "id", kInteger},
                                  {2, 41, "loading {} belongs to the event", kInteger}};
constexpr FieldRule kEventScales[] = {{1, 1, "id", kInteger}, {2, 41, "scale factor of entry {}", kReal}};
constexpr FieldRule kMatrixNodes[] = {{1, 1, "id", kInteger}, {2, 41, "matrix node {}", kInteger}};
constexpr FieldRule kScales[] = {
    {1, 1, "id", kInteger},
    {15, 15, "scale factor of loading 14, or 1 when the run was completed", kUnknown},
    {2, 41, "scale factor of loading {}", kReal}};
constexpr FieldRule kOptions[] = {{1, 1, "id", kInteger},
                                  {2, 2, "AlternatingStressType", kInteger},
                                  {3, 3, "EventInteraction", kInteger},
                                  {4, 4, "FatigueStrengthReductionFactor", kReal},
                                  {6, 6, "SnCurveOption", kInteger},
                                  {7, 7, "SharedHistory, ShellSurface", kInteger},
                                  {8, 8, "MeanStressCorrection", kInteger},
                                  {9, 9, "RangeBinCount", kInteger},
                                  {10, 10, "MeanBinCount", kInteger},
                                  {11, 11, "LoadAmplitudeType", kInteger},
                                  {12, 12, "InfiniteLifeValue", kReal},
                                  {13, 13, "FilterPercent", kInteger},
                                  {14, 14, "SurfaceOnly", kInteger},
                                  {15, 15, "1 when the run was completed", kInteger}};
constexpr FieldRule kCurveDirectory[] = {{1, 1, "id", kInteger},
                                         {4, 4, "points of the Sm-T curve", kInteger},
                                         {5, 5, "elastic-plastic parameter m", kReal},
                                         {6, 6, "elastic-plastic parameter n", kReal},
                                         {7, 7, "elastic-plastic parameters given", kInteger},
                                         {8, 17, "points of S-N curve {}", kInteger},
                                         {18, 27, "stress ratio of S-N curve {}", kReal},
                                         {28, 37, "material set of S-N curve {}", kInteger}};
constexpr FieldRule kTemperatures[] = {{1, 1, "id", kInteger}, {2, 11, "temperature {}", kReal}};
constexpr FieldRule kSm[] = {{1, 1, "id", kInteger}, {2, 11, "Sm {}", kReal}};
constexpr FieldRule kSelection[] = {{1, 1, "id", kInteger},
                                    {3, 3, "ActivatedLocation (-1 all nodes)", kInteger},
                                    {6, 6, "entity before the usage factors", kInteger},
                                    {7, 7, "usage factors (1 present, -1 no S-N curve)", kInteger}};
constexpr FieldRule kLocation[] = {{1, 1, "id", kInteger},
                                   {2, 2, "location number", kInteger},
                                   {3, 3, "node", kInteger},
                                   {4, 4, "setting", kInteger},
                                   {5, 5, "section", kInteger},
                                   {6, 6, "path points", kInteger},
                                   {7, 7, "radius of curvature", kReal},
                                   {8, 8, "stress concentration factor X", kReal},
                                   {9, 9, "stress concentration factor Y", kReal},
                                   {10, 10, "stress concentration factor Z", kReal},
                                   {11, 11, "bending stress flag", kInteger}};
constexpr FieldRule kCycles[] = {{1, 1, "id", kInteger}, {2, kEnd, "cycles of point {}", kReal}};
constexpr FieldRule kStresses[] = {{1, 1, "id", kInteger},
                                   {2, kEnd, "alternating stress of point {}", kReal}};
constexpr FieldRule kCondition[] = {{1, 1, "id", kInteger},
                                    {2, 2, "stress condition stored", kInteger},
                                    {3, 3, "linearised condition stored", kInteger},
                                    {4, 4, "temperature stored", kInteger},
                                    {8, 8, "SX", kReal},
                                    {9, 9, "SY", kReal},
                                    {10, 10, "SZ", kReal},
                                    {11, 11, "TXY", kReal},
                                    {12, 12, "TXZ", kReal},
                                    {13, 13, "TYZ", kReal},
                                    {14, 14, "temperature", kReal},
                                    {15, 15, "linearised SX", kReal},
                                    {16, 16, "linearised SY", kReal},
                                    {17, 17, "linearised SZ", kReal},
                                    {18, 18, "linearised TXY", kReal}};

// Entities of ".FTC" whose names are computed.
constexpr int kFirstCurve = 204, kLastCurve = 223;
constexpr int kFirstCondition = 605, kLastCondition = 2604;
constexpr int kFirstUsage = 2605;
constexpr int kLoadingsPerLocation = 40;
constexpr int kNodesPerUsageEntity = 40;

// The first rule that fits an entity gives its name; the first that fits a field gives the field's.
constexpr EntityRule kRules[] = {
    {DbTable::kMas, 1, 1, Where::kAlways, "title", kTitle},
    {DbTable::kMas, 3, 3, Where::kAlways, "control", kControl},
    {DbTable::kMas, 4, 4, Where::kAlways, "model summary", kSummary},
    {DbTable::kMas, 25, 25, Where::kAlways, "run status", kStatus},
    {DbTable::kMas, 32, 32, Where::kAlways, "stress options", kStressOptions},
    {DbTable::kMas, 33, 33, Where::kAlways, "fatigue options", kFatigueOptions},
    {DbTable::kNod, 1, kEnd, Where::kAlways, "node {}", kNode},
    {DbTable::kCsy, 1, kEnd, Where::kAlways, "coordinate system {}", kSystem},
    {DbTable::kEle, 1, kEnd, Where::kAlways, "element {}", kElement},
    {DbTable::kEgr, 1, kEnd, Where::kAlways, "element group {}", kGroup},
    {DbTable::kMat, 1, kEnd, Where::kAlways, "material {}", kMaterial},
    {DbTable::kPl1, 1, kEnd, Where::kAlways, "stresses of node {}", kNodalResult},
    {DbTable::kSnc, 1, kEnd, Where::kAlways, "S-N curve {}", kCurve},
    {DbTable::kFtc, 1, 20, Where::kConstant, "event {}", kEvent},
    {DbTable::kFtc, 21, 40, Where::kConstant, "load cases of event {}", kLoadCases},
    {DbTable::kFtc, 1, 40, Where::kVariable, "event {}", kHistoryEvent},
    {DbTable::kFtc, 59, 59, Where::kAlways, "MatrixNodeList", kMatrixNodes},
    {DbTable::kFtc, 60, 60, Where::kMultiStudy, "study options", kOptions},
    {DbTable::kFtc, 60, 60, Where::kOrdinary, "scale factors of the loadings", kScales},
    {DbTable::kFtc, 61, 80, Where::kMultiStudy, "scale factors of event {}", kEventScales},
    {DbTable::kFtc, 61, 80, Where::kConstantOrdinary, "loadings of event {}", kMembers},
    {DbTable::kFtc, 97, 97, Where::kAlways, "S-N curve directory, elastic-plastic data", kCurveDirectory},
    {DbTable::kFtc, 98, 98, Where::kAlways, "Sm-T curve: temperatures", kTemperatures},
    {DbTable::kFtc, 99, 99, Where::kAlways, "Sm-T curve: Sm", kSm},
    {DbTable::kFtc, 103, 103, Where::kAlways, "location selection", kSelection},
    {DbTable::kFtc, 104, 153, Where::kAlways, "location {}", kLocation},
    {DbTable::kFtc, kFirstCondition, kLastCondition, Where::kAlways, "stored conditions", kCondition},
};

bool Applies(Where where, TableLayout layout) {
  switch (where) {
    case Where::kAlways:
      return true;
    case Where::kOrdinary:
      return !layout.multi_study;
    case Where::kMultiStudy:
      return layout.multi_study;
    case Where::kConstant:
      return !layout.variable_amplitude;
    case Where::kVariable:
      return layout.variable_amplitude;
    case Where::kConstantOrdinary:
      return !layout.multi_study && !layout.variable_amplitude;
  }
  return false;
}

const EntityRule* RuleOf(DbTable table, int id, TableLayout layout) {
  for (const EntityRule& rule : kRules) {
    if (rule.table == table && id >= rule.first && id <= rule.last && Applies(rule.where, layout))
      return &rule;
  }
  return nullptr;
}

std::string Numbered(std::string_view name, int number) {
  const std::size_t at = name.find("{}");
  if (at == std::string_view::npos) return std::string(name);
  return fmt::format("{}{}{}", name.substr(0, at), number, name.substr(at + 2));
}

FieldMeaning FromRules(std::span<const FieldRule> rules, int field) {
  for (const FieldRule& rule : rules) {
    if (field < rule.first || field > rule.last || (field - rule.first) % rule.step != 0) continue;
    return {Numbered(rule.name, (field - rule.first) / rule.step + 1), rule.type};
  }
  return {};
}

}  // namespace

std::string EntityName(DbTable table, int id, TableLayout layout) {
  if (table == DbTable::kFtc && id >= kFirstUsage) {
    const std::int64_t first = std::int64_t{id - kFirstUsage} * kNodesPerUsageEntity + 1;
    return fmt::format("usage factors of nodes {} to {}", first, first + kNodesPerUsageEntity - 1);
  }
  if (table == DbTable::kFtc && id >= kFirstCurve && id <= kLastCurve && !layout.multi_study) {
    return fmt::format("S-N curve {}: {}", (id - kFirstCurve) / 2 + 1, id % 2 == 0 ? "cycles" : "stresses");
  }
  if (table == DbTable::kFtc && id >= kFirstCondition && id <= kLastCondition) {
    const int place = id - kFirstCondition;
    return fmt::format("stored conditions of location {}, loading {}", place / kLoadingsPerLocation + 1,
                       place % kLoadingsPerLocation + 1);
  }
  const EntityRule* rule = RuleOf(table, id, layout);
  return rule == nullptr ? std::string{} : Numbered(rule->name, id - rule->first + 1);
}

FieldMeaning MeaningOf(DbTable table, int id, int field, TableLayout layout) {
  if (table == DbTable::kFtc && id >= kFirstUsage && field >= 2 && field <= kNodesPerUsageEntity + 1) {
    const std::int64_t node = std::int64_t{id - kFirstUsage} * kNodesPerUsageEntity + field - 1;
    return {fmt::format("usage factor of node {}", node), kReal};
  }
  if (table == DbTable::kFtc && id >= kFirstCurve && id <= kLastCurve && !layout.multi_study) {
    return id % 2 == 0 ? FromRules(kCycles, field) : FromRules(kStresses, field);
  }
  const EntityRule* rule = RuleOf(table, id, layout);
  return rule == nullptr ? FieldMeaning{} : FromRules(rule->fields, field);
}

std::string ValueText(FieldType type, std::int32_t word) {
  switch (type) {
    case kInteger:
      return std::to_string(word);
    case kReal:
      return fmt::format("{}", std::bit_cast<float>(word));
    case kCharacter: {
      const auto c = static_cast<unsigned char>(word & 0xFF);
      return c >= 32 && c < 127 ? fmt::format("'{}'", static_cast<char>(c)) : std::to_string(word);
    }
    case kUnknown:
      break;
  }
  if (word == 0) return {};
  // Small integers are denormal numbers when read as reals; anything else is more likely a real.
  const bool integer = word > -10000000 && word < 10000000;
  return integer ? std::to_string(word) : fmt::format("{}", std::bit_cast<float>(word));
}

}  // namespace zentor::companion
