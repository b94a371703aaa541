#include "study/listing_head.h"

#include <array>
#include <string>

#include "database/edit.h"

namespace zentor {
namespace {

constexpr int kAppendMode = 1;
constexpr std::size_t kTitleFields = 80;
constexpr std::size_t kTitleShown = 70;
constexpr std::size_t kRuleLength = 74;

void WriteBanner(TextRecordFile& listing) {
  const std::string edge(kRuleLength, '*');
  listing.Line(edge);
  listing.Line("*                                                                        *");
  listing.Line("*                    Z E N T O R     F A T I G U E                       *");
  listing.Line("*                                                                        *");
  listing.Line("*       usage factors of finite-element models by linear damage          *");
  listing.Line("*                                                                        *");
  listing.Line(edge);
}

std::string DateAndTime(const std::array<int, 6>& t) {
  return Edit()
      .I(2, t[1])
      .Text("/")
      .I(2, t[2])
      .Text("/")
      .I(4, t[0])
      .X(3)
      .I(2, t[3])
      .Text(":")
      .I(2, t[4])
      .Text(":")
      .I(2, t[5])
      .str();
}

// The last byte of a control character from 0x80 on in UTF-8. Alone these bytes are characters of many a code
// page.
bool EndsControl(const std::string& title, int code) {
  return !title.empty() && title.back() == '\xC2' && code >= 0x80 && code < 0xA0;
}

// One character in the low byte of each field; what cannot stand in a line, or could steer a terminal that
// shows the listing, becomes a blank.
std::string ReadTitle(ModelDatabase& db) {
  std::array<std::int32_t, kTitleFields> fields{};
  DbGetInts(db, DbTable::kMas, 1, 1, fields);
  std::string title;
  for (const std::int32_t field : fields) {
    const int code = field & 0xFF;
    if (EndsControl(title, code)) {
      title.back() = ' ';
      title.push_back(' ');
      continue;
    }
    title.push_back(code < ' ' || code == 0x7F ? ' ' : static_cast<char>(code));
  }
  return title;
}

void WriteHead(RunContext& run, const StudyState& study) {
  TextRecordFile& listing = run.listing;
  const std::string rule(kRuleLength, '-');
  listing.Blank(3);
  listing.Line(rule);
  listing.Line(
      Edit().Text("ZENTOR                   FATIGUE MODULE    ").X(9).Text(DateAndTime(study.start)).str());
  listing.Line(rule);
  listing.Blank(2);
  listing.Line(" Title : " + ReadTitle(run.database).substr(0, kTitleShown));
  listing.Blank();
}

}  // namespace

void OpenListing(RunContext& run, const StudyState& study) {
  const Extension extension = IsMultiStudy(study.properties) ? ".OUT" : ".FTG";
  const std::string path = run.services.StudyFileName(extension);
  const int mode = DbGetInt(run.database, DbTable::kMas, 3, 43);
  if (mode == kAppendMode && run.services.StudyFileExists(extension)) {
    return run.listing.Open(run.files, path, TextRecordFile::Mode::kAppend);
  }
  run.listing.Open(run.files, path, TextRecordFile::Mode::kNew);
  WriteBanner(run.listing);
  WriteHead(run, study);
}

}  // namespace zentor
