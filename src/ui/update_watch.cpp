// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/update_watch.h"

namespace plumetta {
namespace {

constexpr int kLookMilliseconds = 100;

}  // namespace

UpdateWatch::UpdateWatch(Application& app, WindowPrompter& prompter) : app_(app), prompter_(prompter) {
  timer_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { look(); });
}

void UpdateWatch::ask() {
  if (check_ == nullptr) begin(askForUpdates(app_), true);
  if (check_ != nullptr) prompter_.status("Looking for a newer version…");
}

void UpdateWatch::askAtStart() { begin(askForUpdatesAtStart(app_.settings()), false); }

void UpdateWatch::stop() {
  timer_.Stop();
  check_.reset();
}

void UpdateWatch::begin(std::unique_ptr<UpdateCheck> check, bool onDemand) {
  check_ = std::move(check);
  onDemand_ = onDemand;
  if (check_ != nullptr) timer_.Start(kLookMilliseconds);
}

void UpdateWatch::look() {
  if (check_ == nullptr || !check_->finished(std::chrono::milliseconds(0))) return;
  if (prompter_.working() || prompter_.asking()) return;
  const UpdateAnswer answer = check_->answer();
  stop();
  if (onDemand_) prompter_.status("");
  if (onDemand_ || answer.state == UpdateState::newer) prompter_.message(updateNews(answer));
}

}  // namespace plumetta
