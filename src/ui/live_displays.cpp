// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/live_displays.h"

#include <algorithm>
#include <array>
#include <utility>

#include "audio/input_capture.h"
#include "ui/dock_layout.h"
#include "ui/flat_dock_art.h"
#include "ui/text.h"

namespace plumetta {
namespace {

constexpr const char* kSection = "Window";
constexpr const char* kLayoutKey = "Displays";
constexpr const char* kMiddle = "middle";
constexpr int kPeriodMilliseconds = 40;
// After a longer pause of the program things go on from where they are.
constexpr double kLongestStep = 0.5;
constexpr int kSoundSeat = 0;
// Twice the longest time of the oscilloscope up to 96 kHz, and more than the others look back.
constexpr size_t kTrailFrames = 19200;
const wxSize kUsualSize(1000, 700);
const wxSize kLeastMiddle(200, 180);
const wxSize kSmallest(40, 24);

}  // namespace

LiveDisplays::LiveDisplays(wxWindow* parent, Application& app, WindowProfile& profile)
    : wxPanel(parent),
      app_(app),
      profile_(profile),
      trail_(kTrailFrames),
      meters_(new MeterView(this)),
      time_(new ClockView(this)),
      pan_(new PanView(this)),
      scope_(new ScopeView(this, trail_, profile)),
      spectrum_(new LiveSpectrumView(this)),
      goniometer_(new GoniometerView(this, trail_)),
      displays_(makeDisplays()),
      timer_(this),
      panes_(this) {
  panes_.SetArtProvider(new FlatDockArt(*this));
  // Panes have the size that they ask for, whatever this window's is when they first appear.
  SetSize(FromDIP(kUsualSize));
  panes_.SetDockSizeConstraint(1.0, 1.0);
  SetExtraStyle(GetExtraStyle() | wxWS_EX_PROCESS_IDLE);
  Bind(wxEVT_IDLE, &LiveDisplays::onIdle, this);
  Bind(wxEVT_TIMER, &LiveDisplays::onTimer, this);
  Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
    const bool allShown = std::all_of(displays_.begin(), displays_.end(), [this](const Display& display) {
      return !display.wanted || isShown(display.view);
    });
    if (middle_ != nullptr && !(allShown && middleHasRoom())) fit();
    event.Skip();
  });
  panes_.onDragged = [this] { adoptDrag(); };
  Bind(wxEVT_AUI_PANE_CLOSE, [this](wxAuiManagerEvent& event) {
    for (Display& display : displays_) {
      if (display.view != event.GetPane()->window) continue;
      event.Veto();
      CallAfter([this, &display] { want(display, false); });
    }
  });
}

LiveDisplays::~LiveDisplays() {
  app_.playbackEngine().setWidget(kSoundSeat, nullptr);
  app_.playbackEngine().setWidget(PlaybackEngine::kPositionWidget, nullptr);
  panes_.UnInit();
}

// ---- Panes ----------------------------------------------------------------------------------------------

std::vector<LiveDisplays::Display> LiveDisplays::makeDisplays() {
  return {{"time", "Time", "&Time", time_, 0, 0, {230, 64}, 23, true},
          {"meters", "Levels", "&Level meters", meters_, 0, 1, {480, 64}, 60, true},
          {"pan", "MIDI pan", "MIDI &pan", pan_, 0, 2, {130, 64}, 13, false},
          {"scope", "Oscilloscope", "&Oscilloscope", scope_, 1, 0, {340, 190}, 35, false},
          {"spectrum", "Live spectrum", "&Spectrum", spectrum_, 1, 1, {420, 190}, 42, false},
          {"goniometer", "Goniometer", "&Goniometer", goniometer_, 1, 2, {200, 190}, 20, false}};
}

void LiveDisplays::surround(wxWindow& middle) {
  middle_ = &middle;
  panes_.AddPane(middle_, wxAuiPaneInfo().Name(kMiddle).CenterPane().MinSize(1, 1));
  addPanes();
  std::vector<std::string> names{kMiddle};
  for (const Display& display : displays_) names.emplace_back(display.id);
  const std::string layout = profile_.text(kSection, kLayoutKey, "");
  if (isDockLayout(layout, names)) panes_.LoadPerspective(toWx(layout), false);
  // The layout says where panes are, not what they are.
  panes_.GetPane(middle_).CenterPane().MinSize(1, 1).Show();
  for (Display& display : displays_) {
    wxAuiPaneInfo& pane = panes_.GetPane(display.view);
    pane.Caption(display.title).MinSize(FromDIP(kSmallest)).Dock().Floatable(false);
    display.wanted = pane.IsShown();
  }
  fit();
}

void LiveDisplays::addPanes() {
  for (const Display& display : displays_) {
    wxAuiPaneInfo pane;
    pane.Name(display.id).Caption(display.title).Bottom().Row(display.row).Position(display.position);
    pane.BestSize(FromDIP(display.size)).MinSize(FromDIP(kSmallest)).Floatable(false).Show(display.wanted);
    pane.dock_proportion = display.share * 1000;
    panes_.AddPane(display.view, pane);
  }
}

bool LiveDisplays::isShown(const wxWindow* view) {
  return panes_.GetPane(const_cast<wxWindow*>(view)).IsShown();
}

void LiveDisplays::want(Display& display, bool wanted) {
  display.wanted = wanted;
  fit();
  storeLayout();
}

bool LiveDisplays::middleHasRoom() const {
  const wxSize least = FromDIP(kLeastMiddle), size = middle_->GetSize();
  return size.x >= least.x && size.y >= least.y;
}

void LiveDisplays::fit() {
  // Docks without a pane forget their sizes.
  if (!wholeLayout_.empty()) panes_.LoadPerspective(std::exchange(wholeLayout_, {}), false);
  for (const Display& display : displays_) panes_.GetPane(display.view).Show(display.wanted);
  panes_.Update();
  if (!middleHasRoom()) wholeLayout_ = panes_.SavePerspective();
  for (auto display = displays_.rbegin(); display != displays_.rend() && !middleHasRoom(); ++display) {
    if (!display->wanted) continue;
    panes_.GetPane(display->view).Hide();
    panes_.Update();
  }
  connect();
}

void LiveDisplays::adoptDrag() {
  wholeLayout_.clear();  // from before
  fit();
  storeLayout();
}

void LiveDisplays::storeLayout() {
  const wxString layout = wholeLayout_.empty() ? panes_.SavePerspective() : wholeLayout_;
  profile_.setText(kSection, kLayoutKey, fromWx(layout));
}

std::vector<Action> LiveDisplays::actions() {
  std::vector<Action> actions;
  for (Display& display : displays_) {
    Action action{std::string("display-") + display.id, display.entry, "", "",
                  [this, &display] { want(display, !display.wanted); }};
    action.checked = [&display] { return display.wanted; };
    actions.push_back(action);
  }
  return actions;
}

void LiveDisplays::connect() {
  PlaybackEngine& engine = app_.playbackEngine();
  engine.setWidget(kSoundSeat, soundWanted() ? &tap_ : nullptr);
  engine.setWidget(PlaybackEngine::kPositionWidget, isShown(time_) ? &clock_ : nullptr);
}

// ---- What goes on ---------------------------------------------------------------------------------------

bool LiveDisplays::soundWanted() { return isShown(scope_) || isShown(spectrum_) || isShown(goniometer_); }

bool LiveDisplays::anythingMoves() {
  if (playing() || inputRuns() || queuedSeconds_ > 0 || !comingPeaks_.empty()) return true;
  if (isShown(meters_) && meters_->falling()) return true;
  return soundWanted() && (!trail_.silent() || (isShown(spectrum_) && spectrum_->falling()));
}

void LiveDisplays::onIdle(wxIdleEvent& event) {
  const bool anyShown = std::any_of(displays_.begin(), displays_.end(),
                                    [this](const Display& display) { return isShown(display.view); });
  if (!timer_.IsRunning() && anyShown && (playing() || inputRuns())) {
    sinceTick_.Start();
    timer_.Start(kPeriodMilliseconds);
  }
  if (!timer_.IsRunning()) followTime();
  pan_->show(app_.midi().firstPanGain(), app_.midi().secondPanGain());
  event.Skip();
}

void LiveDisplays::onTimer(wxTimerEvent&) {
  const double seconds =
      std::min(1e-6 * static_cast<double>(sinceTick_.TimeInMicro().GetValue()), kLongestStep);
  sinceTick_.Start();
  followQueue(seconds);
  followMeters(seconds);
  if (soundWanted()) followSound(seconds);
  followTime();
  if (!anythingMoves()) timer_.Stop();
}

size_t LiveDisplays::outputChannels() {
  if (app_.output().running())
    outputChannels_ = static_cast<size_t>(app_.output().channelCount(app_.settings().output));
  return std::clamp<size_t>(outputChannels_, 1, kMaxOutputChannels);
}

// What is shown is what is heard: the engine is ahead of that by the device's queue, which empties once it
// has given out the last sound.
void LiveDisplays::followQueue(double seconds) {
  queuedSeconds_ = playing() ? app_.output().queuedSeconds() : std::max(queuedSeconds_ - seconds, 0.0);
}

// The largest peaks among those that are heard by now.
std::array<float, kMaxOutputChannels> LiveDisplays::takeHeardPeaks() {
  const double now = 1e-6 * static_cast<double>(sinceStart_.TimeInMicro().GetValue());
  // The queue is filled at once when playing begins; the first of it is heard then.
  comingPeaks_.push_back({played_ ? now + queuedSeconds_ : now, {}});
  played_ = playing();
  auto& peaks = app_.transport().controls().outputPeaks;
  for (size_t c = 0; c < peaks.size(); ++c) comingPeaks_.back().outputs[c] = peaks[c].exchange(0.0f);
  std::array<float, kMaxOutputChannels> heard{};
  for (; !comingPeaks_.empty() && comingPeaks_.front().heardAt <= now; comingPeaks_.pop_front()) {
    const auto& outputs = comingPeaks_.front().outputs;
    for (size_t c = 0; c < heard.size(); ++c) heard[c] = std::max(heard[c], outputs[c]);
  }
  return heard;
}

void LiveDisplays::followMeters(double seconds) {
  const std::array<float, kMaxOutputChannels> outputs = takeHeardPeaks();
  std::array<float, kInputChannels> inputs{};
  const size_t inputChannels = inputRuns() ? inputs.size() : 0;
  for (size_t c = 0; c < inputChannels; ++c) inputs[c] = takeInputPeak(static_cast<int>(c));
  if (!isShown(meters_)) return;
  meters_->advance(std::span(outputs).first(outputChannels()), std::span(inputs).first(inputChannels),
                   seconds);
}

// Without an output there is silence.
void LiveDisplays::followSound(double seconds) {
  const int rate = app_.transport().controls().outputRate;
  const auto queued = static_cast<size_t>(rate * queuedSeconds_);
  if (tap_.readInto(trail_, queued) == 0 && !playing())
    trail_.appendSilence(static_cast<size_t>(rate * seconds));
  if (isShown(scope_)) scope_->follow(rate);
  if (isShown(goniometer_)) goniometer_->follow();
  if (isShown(spectrum_)) spectrum_->advance(trail_, rate, seconds);
}

void LiveDisplays::followTime() {
  if (!isShown(time_)) return;
  const auto format = static_cast<TimeFormat>(app_.settings().display.timeFormat);
  // Always taken: a place that playing has left behind is no news later.
  const std::optional<PlayTime> given = clock_.take();
  if (!playing()) {
    playedRate_ = 0;
    const std::optional<PlayTime> time = restingTime();
    time ? time_->show(*time, format) : time_->showNothing();
    return;
  }
  const double now = 1e-6 * static_cast<double>(sinceStart_.TimeInMicro().GetValue());
  if (given && given->sampleRate != playedRate_) {
    playedRate_ = given->sampleRate;
    // The device's queue has been filled at once, with what comes after the place where playing began.
    const double latency = app_.output().latency();
    heard_.begin(now, std::max(given->frame - latency * playedRate_, 0.0), latency);
  }
  heard_.setLatency(app_.output().latency());
  if (given) heard_.note(now, given->frame);
  if (playedRate_ > 0) time_->show({heard_.at(now), playedRate_}, format);
}

}  // namespace plumetta
