// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/address_dialog.h"

#include "net/net_address.h"
#include "ui/form_dialog.h"
#include "ui/text.h"

namespace plumetta {
namespace {

constexpr const char* kSection = "Open from URL";
constexpr int kKept = 8;
constexpr int kFieldWidth = 460;

std::string keyOf(int index) { return "Address" + std::to_string(index + 1); }

std::vector<std::string> keptAddresses(const WindowProfile& profile) {
  std::vector<std::string> addresses;
  for (int i = 0; i < kKept; ++i) {
    const std::string address = profile.text(kSection, keyOf(i), "");
    if (!address.empty()) addresses.push_back(address);
  }
  return addresses;
}

// The newest first; none with a password.
void keepAddress(WindowProfile& profile, const std::string& address) {
  std::vector<std::string> addresses{shownAddress(address)};
  if (!isStorablePath(addresses.front())) return;
  for (const std::string& other : keptAddresses(profile)) {
    if (other != addresses.front()) addresses.push_back(other);
  }
  std::vector<std::pair<std::string, std::string>> values;
  for (int i = 0; i < kKept && i < static_cast<int>(addresses.size()); ++i) {
    values.emplace_back(keyOf(i), addresses[static_cast<size_t>(i)]);
  }
  profile.setTexts(kSection, values);
}

std::string trimmed(const std::string& text) {
  const size_t first = text.find_first_not_of(" \t\r\n");
  return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

}  // namespace

std::optional<std::string> askAddress(wxWindow* parent, WindowProfile& profile) {
  wxArrayString proposals;
  for (const std::string& address : keptAddresses(profile)) proposals.Add(toWx(address));
  FormDialog form(parent, "Open from URL");
  wxComboBox* field = form.addCombo(
      "Address", wxString(), proposals.empty() ? wxString() : proposals[0], proposals,
      [](const std::string& text) { return addressProblem(trimmed(text), NetSchemes::webAndFiles); });
  field->SetMinSize(field->FromDIP(wxSize(kFieldWidth, -1)));
  if (!form.ask("Open")) return std::nullopt;
  const std::string address = trimmed(fromWx(field->GetValue()));
  keepAddress(profile, address);
  return address;
}

}  // namespace plumetta
