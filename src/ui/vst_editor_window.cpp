// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/vst_editor_window.h"

#include <algorithm>

#include "ui/native_parent.h"
#include "ui/text.h"
#include "ui/toolbar_icons.h"

namespace plumetta {
namespace {

constexpr int kIdleMilliseconds = 30;
constexpr int kRestMilliseconds = 500;          // while no plug-in is there
constexpr int kSmallest = 60, kLargest = 8192;  // pixels that are believed of a side

}  // namespace

// ---- One editor -----------------------------------------------------------------------------------------

CVSTDlg::CVSTDlg(wxWindow* parent, VstHost& host, int slot)
    : wxDialog(parent, wxID_ANY, toWx(host.plugin(slot)->path()), wxDefaultPosition, wxDefaultSize,
               wxCAPTION | wxSYSTEM_MENU | wxCLOSE_BOX | wxMINIMIZE_BOX),
      host_(host),
      slot_(slot),
      area_(new wxPanel(this)) {
  SetIcons(programIcons());
  // What the plug-in draws there is nobody else's to erase.
  area_->SetBackgroundStyle(wxBG_STYLE_PAINT);
  Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent&) { Hide(); });
  Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
    event.GetKeyCode() == WXK_ESCAPE ? static_cast<void>(Close()) : event.Skip();
  });
}

bool CVSTDlg::openEditor() {
  takeSize();
  place();
  Show();
  void* const parent = nativeParent(*area_);
  if (parent == nullptr || host_.openEditor(slot_, parent) < 1) return false;
  const wxSize before = GetSize();
  takeSize();  // some know it only now
  if (GetSize() != before) place();
  return true;
}

// A step beside the last one, so that each can be reached.
void CVSTDlg::place() {
  constexpr int kStep = 28, kSteps = 8;
  CentreOnParent();
  const int offset = FromDIP(kStep) * (slot_ % kSteps);
  Move(GetPosition() + wxPoint(offset, offset));
}

// The plug-in counts the screen's pixels, the toolkit its own.
void CVSTDlg::takeSize() {
  ERect* rectangle = nullptr;
  host_.editorRectangle(slot_, rectangle);
  if (rectangle == nullptr) return;
  const double scale = GetContentScaleFactor();
  const auto side = [scale](int first, int beyond) {
    return static_cast<int>(std::clamp(beyond - first, kSmallest, kLargest) / scale);
  };
  const wxSize size(side(rectangle->left, rectangle->right), side(rectangle->top, rectangle->bottom));
  area_->SetSize(size);
  SetClientSize(size);
}

void CVSTDlg::bringToFront() {
  Hide();
  Show();
  Raise();
}

// ---- All of them ----------------------------------------------------------------------------------------

PluginEditors::PluginEditors(wxWindow& parent, Rack& rack) : parent_(parent), rack_(rack) {
  rack_.editorWanted = [this](int position) { open(position); };
  rack_.editorClosed = [this](int slot) {
    CVSTDlg*& window = windows_[static_cast<size_t>(slot)];
    if (window != nullptr) window->Destroy();
    window = nullptr;
  };
  timer_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { idle(); });
  setPace(kRestMilliseconds);
}

PluginEditors::~PluginEditors() {
  timer_.Stop();
  rack_.closeAllEditors();
  rack_.editorWanted = nullptr;
  rack_.editorClosed = nullptr;
}

bool PluginEditors::show(int position) {
  const VstPlugin* plugin = rack_.pluginAt(position);
  if (plugin == nullptr || !plugin->hasEditor()) return false;
  const auto slot = static_cast<size_t>(rack_.slotAt(position));
  if (windows_[slot] == nullptr) {
    open(position);
  } else {
    windows_[slot]->bringToFront();
  }
  return windows_[slot] != nullptr;
}

void PluginEditors::open(int position) {
  const int slot = rack_.slotAt(position);
  CVSTDlg*& window = windows_[static_cast<size_t>(slot)];
  if (window != nullptr || rack_.host().isGivenUp(slot)) return;
  window = new CVSTDlg(&parent_, rack_.host(), slot);
  if (window->openEditor()) return;
  window->Destroy();
  window = nullptr;
}

void PluginEditors::titleByName() {
  for (int slot = 0; slot < VstHost::kSlots; ++slot) {
    if (CVSTDlg* window = windows_[static_cast<size_t>(slot)]) {
      window->SetTitle(toWx(rack_.host().plugin(slot)->displayName()));
    }
  }
}

void PluginEditors::setPace(int milliseconds) {
  if (!timer_.IsRunning() || timer_.GetInterval() != milliseconds) timer_.Start(milliseconds);
}

// A plug-in may let waiting events through, and so this timer's next one.
void PluginEditors::idle() {
  if (idling_) return;
  idling_ = true;
  rack_.host().idle();
  bool any = false;
  for (int slot = 0; slot < VstHost::kSlots && !any; ++slot) any = rack_.host().plugin(slot) != nullptr;
  setPace(any ? kIdleMilliseconds : kRestMilliseconds);
  idling_ = false;
}

}  // namespace plumetta
