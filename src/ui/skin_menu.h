// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/application.h"
#include "ui/action_menus.h"
#include "ui/window_profile.h"

namespace plumetta {

// The choice of a skin: the entries of its submenu and what they do.
class SkinMenu {
 public:
  SkinMenu(wxWindow& parent, Application& app, WindowProfile& profile)
      : parent_(parent), app_(app), profile_(profile) {}

  std::vector<Action> entries();
  // What the entries say has changed.
  std::function<void()> onChanged;

 private:
  Action fileEntry(const std::string& text, const std::string& path);
  void wearDefault();
  // True when there are none any more.
  bool giveUpOwn();
  // False, after a message, when the file can't be worn.
  bool wearFile(const std::string& path);
  void open();
  void edit();
  // The settings name this skin file from now on; an empty path for none.
  void remember(const std::string& path);
  bool isOwnThere() const;

  wxWindow& parent_;
  Application& app_;
  WindowProfile& profile_;
};

}  // namespace plumetta
