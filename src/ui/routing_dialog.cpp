// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/routing_dialog.h"

#include <algorithm>

#include "ui/form_dialog.h"

namespace plumetta {
namespace {

constexpr int kOutputs = 16;
constexpr int kOutputsOnPage = 8;

wxArrayString sources() {
  wxArrayString names;
  names.Add("Silence");
  for (int channel = 1; channel <= kOutputs; ++channel) names.Add(wxString::Format("Channel %d", channel));
  return names;
}

}  // namespace

bool askRouting(wxWindow* parent, PlaybackSettings& settings, int deviceOutputs) {
  FormDialog form(parent, "Output routing");
  std::array<wxChoice*, kOutputs> fields{};
  for (int k = 0; k < kOutputs; ++k) {
    if (k % kOutputsOnPage == 0) {
      form.addPage(wxString::Format("Outputs %d to %d", k + 1, k + kOutputsOnPage));
    }
    const int stored = settings.routing[static_cast<size_t>(k)];
    // One past -1, which is silence.
    const int selected = std::clamp(stored, -1, kOutputs - 1) + 1;
    const wxString behind = k < deviceOutputs ? wxString() : wxString("(not of this device)");
    fields[static_cast<size_t>(k)] =
        form.addChoice(wxString::Format("Output %d", k + 1), sources(), selected, behind);
  }
  if (!form.ask()) return false;
  for (size_t k = 0; k < fields.size(); ++k) settings.routing[k] = fields[k]->GetSelection() - 1;
  return true;
}

}  // namespace plumetta
