// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/status_line.h"

#include <algorithm>
#include <numeric>

#include "ui/text.h"

namespace plumetta {
namespace {

constexpr int kBetweenTexts = 20;
constexpr int kNarrowest = 60;

constexpr const char* kUsualTexts[StatusLine::kFields] = {"",
                                                          "Output 44100 Hz, 0 dropouts",
                                                          "44100 Hz, 16 bits, stereo",
                                                          "0:00:00.000 (00 000 000 frames)",
                                                          "0:00:00.000",
                                                          "0:00:00.000 – 0:00:00.000 (0:00:00.000)"};

int sum(const std::array<int, StatusLine::kFields>& widths) {
  return std::accumulate(widths.begin(), widths.end(), 0);
}

}  // namespace

StatusLine::StatusLine(wxWindow* parent) : wxStatusBar(parent, wxID_ANY, wxSTB_DEFAULT_STYLE) {
  SetFieldsCount(kFields);
  std::array<int, kFields> styles;
  styles.fill(wxSB_FLAT);
  SetStatusStyles(kFields, styles.data());
  for (size_t field = 0; field < kFields; ++field) usual_[field] = needed(toWx(kUsualTexts[field]));
  share();
  Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
    share();
    event.Skip();
  });
}

void StatusLine::DoUpdateStatusText(int field) {
  wxStatusBar::DoUpdateStatusText(field);
  share();
}

int StatusLine::needed(const wxString& text) const {
  return text.empty() ? 0 : GetTextExtent(text).x + FromDIP(kBetweenTexts);
}

// The message is cut last: it is the news.
StatusLine::Widths StatusLine::cutTo(int room, Widths texts) const {
  for (const Field field : {kFormat, kLength, kSound, kSelection}) {
    const int over = sum(texts) - room, spare = texts[field] - FromDIP(kNarrowest);
    texts[field] -= std::clamp(over, 0, std::max(spare, 0));
  }
  return texts;
}

void StatusLine::share() {
  Widths texts{}, widths{};
  for (int field = 0; field < kFields; ++field) {
    const auto i = static_cast<size_t>(field);
    texts[i] = needed(GetStatusText(field));
    widths[i] = std::max(texts[i], usual_[i]);
  }
  const int grip = GetClientSize().y;  // a square at the end
  texts[kSelection] += grip;
  widths[kSelection] += grip;
  widths[kMessage] = std::max(texts[kMessage], FromDIP(kNarrowest));
  const int room = GetClientSize().x;
  if (sum(widths) > room) widths = cutTo(room, texts);
  widths[kMessage] = -1;  // all the rest
  if (widths == shared_) return;
  shared_ = widths;
  SetStatusWidths(kFields, widths.data());
}

}  // namespace plumetta
