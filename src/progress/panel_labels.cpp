#include "progress/panel_labels.h"

#include <string_view>

#include "progress/panel_text.h"

namespace zentor::progress {
namespace {

struct LabelSource {
  int number;  // of the message catalog
  std::string_view english;
};

constexpr int kAskAbortMessage = 901;

// By Label.
constexpr std::array<LabelSource, kLabels> kSources = {{
    {940, "Study"},
    {941, "Nodes"},
    {942, "Nodes/s"},
    {943, "Time left"},
    {944, "Elapsed"},
    {945, "Warnings"},
    {946, "Step"},
    {947, "Iteration"},
    {948, "Contact points"},
    {949, "Contact iteration"},
    {950, "Step size"},
    {951, "Suspended"},
    {952, "Ending the run"},
    {953, "suspend"},
    {954, "resume"},
    {955, "abort"},
    {956, "Yes, abort"},
    {957, "No, go on"},
    {kAskAbortMessage, "Abort the analysis? What has been written so far is kept."},
    {961, "[Y]es"},
    {962, "[N]o"},
}};

}  // namespace

PanelLabels::PanelLabels() {
  for (std::size_t i = 0; i < kLabels; ++i) texts_[i] = PrintableUtf8(kSources[i].english);
  SettleKeys();
}

void PanelLabels::Load(const CatalogTables& tables) {
  for (std::size_t i = 0; i < kLabels; ++i) {
    const int at = kSources[i].number - 1;
    const std::int32_t start = tables.start[at];
    const std::int32_t end = tables.end[at];
    if (tables.present[at] == 0 || start < 0 || end <= start) continue;
    std::u32string text = Printable({tables.pool + start, static_cast<std::size_t>(end - start)});
    if (!text.empty()) texts_[i] = std::move(text);
  }
  SettleKeys();
}

void PanelLabels::SettleKeys() {
  const auto key_of = [&](Label button, char32_t latin) { return platform::LabelOf((*this)[button], latin); };
  yes_no_ = {key_of(Label::kYesKey, U'y'), key_of(Label::kNoKey, U'n')};
  suspend_abort_ = {platform::LabelOf(U"p", U'p'), platform::LabelOf(U"q", U'q')};
}

}  // namespace zentor::progress
