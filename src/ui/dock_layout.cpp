// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/dock_layout.h"

#include <regex>

namespace plumetta {
namespace {

// Of a few panes; matching a much longer one would need a deep stack.
constexpr size_t kLongest = 4000;

}  // namespace

bool isDockLayout(const std::string& text, const std::vector<std::string>& names) {
  if (text.size() > kLongest) return false;
  std::string anyName;
  for (const std::string& name : names) anyName += (anyName.empty() ? "" : "|") + name;
  std::string pane = "name=(?:" + anyName + ");caption=[A-Za-z ]*;state=[0-9]{1,9};dir=[1-5]";
  for (const char* key : {"layer", "row", "pos"}) pane += std::string(";") + key + "=[0-9]{1,4}";
  pane += ";prop=[0-9]{1,8}";
  for (const char* key :
       {"bestw", "besth", "minw", "minh", "maxw", "maxh", "floatx", "floaty", "floatw", "floath"}) {
    pane += std::string(";") + key + "=-?[0-9]{1,4}";
  }
  const std::string dock = "dock_size\\([1-5],[0-9]{1,4},[0-9]{1,4}\\)=[0-9]{1,4}";
  return std::regex_match(text, std::regex("layout2\\|(?:" + pane + "\\|)+(?:" + dock + "\\|)*"));
}

}  // namespace plumetta
