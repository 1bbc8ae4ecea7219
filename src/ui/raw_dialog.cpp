// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/raw_dialog.h"

#include <algorithm>
#include <array>

#include "formats/raw_file.h"
#include "ui/form_dialog.h"
#include "ui/format_choices.h"
#include "ui/text.h"
#include "ui/wave_preview.h"

namespace plumetta {
namespace {

constexpr const char* kSection = "Raw file";
constexpr const char* kRateKey = "Rate";
constexpr const char* kChannelsKey = "Channels";
constexpr const char* kBitsKey = "Bits";
constexpr const char* kByteOrderKey = "Byte order";
constexpr const char* kSignKey = "Sign type";
constexpr const char* kOffsetKey = "File offset";

constexpr const char* kNoSuchSamples = "No samples have these bits and this sign.";
constexpr std::array kBits{8, 16, 24, 32, 64};
// Read again with every change of a value, so no more of the file than is read in a moment.
constexpr int64_t kPreviewSamples = 1 << 20;

wxArrayString listOf(std::initializer_list<const char*> texts) {
  wxArrayString list;
  for (const char* text : texts) list.Add(text);
  return list;
}

class RawDialog : public FormDialog {
 public:
  RawDialog(wxWindow* parent, File& file, const std::string& name, WindowProfile& profile)
      : FormDialog(parent, "Open as raw: " + toWx(name)), file_(file), profile_(profile) {
    addFields();
    preview_ = new WavePreview(this, wave_);
    setPicture(preview_);
    checkAll = [this] { return std::string(sampleFormat() ? "" : kNoSuchSamples); };
    onValues = [this](bool allGood) {
      if (allGood) return showPreview();
      preview_->clear(sampleFormat() ? wxString() : wxString(kNoSuchSamples));
    };
  }

  RawLayout layout() const {
    RawLayout layout;
    layout.sampleRate = static_cast<uint32_t>(checkedNumber(*rate_));
    layout.channels = channels_->GetSelection() + 1;
    layout.sample = sampleFormat().value_or(SampleFormat{});
    layout.fileOffset = static_cast<uint64_t>(checkedNumber(*offset_));
    return layout;
  }

  void store() {
    profile_.setTexts(kSection, {{kRateKey, fromWx(rate_->GetValue())},
                                 {kChannelsKey, std::to_string(channels_->GetSelection() + 1)},
                                 {kBitsKey, std::to_string(bits())},
                                 {kByteOrderKey, std::to_string(byteOrder_->GetSelection())},
                                 {kSignKey, std::to_string(sign_->GetSelection())},
                                 {kOffsetKey, fromWx(offset_->GetValue())}});
  }

 private:
  void addFields() {
    const int channels = std::clamp(profile_.integer(kSection, kChannelsKey, 1), 1, kMaxChannels);
    const auto* const stored =
        std::find(kBits.begin(), kBits.end(), profile_.integer(kSection, kBitsKey, 16));
    const auto bits = stored == kBits.end() ? 1 : static_cast<int>(stored - kBits.begin());
    rate_ = addCombo("Sample rate", "Hz", toWx(profile_.text(kSection, kRateKey, "44100")), commonRates(),
                     wholeNumberBetween(1, kMaxRate));
    channels_ = addChoice("Channels", channelCounts(), channels - 1);
    bits_ = addChoice("Resolution", listOf({"8 bits", "16 bits", "24 bits", "32 bits", "64 bits"}), bits);
    byteOrder_ = addChoice("Byte order", listOf({"Little-endian (Intel)", "Big-endian (Motorola)"}),
                           std::clamp(profile_.integer(kSection, kByteOrderKey, 0), 0, 1));
    sign_ = addChoice("Sign type", listOf({"Signed", "Unsigned", "Floating point"}),
                      std::clamp(profile_.integer(kSection, kSignKey, 0), 0, 2));
    offset_ = addText("File offset", "bytes", toWx(profile_.text(kSection, kOffsetKey, "0")),
                      wholeNumberBetween(0, static_cast<double>(file_.size())));
  }

  int bits() const { return kBits[static_cast<size_t>(bits_->GetSelection())]; }
  std::optional<SampleFormat> sampleFormat() const {
    return rawSampleFormat(bits(), byteOrder_->GetSelection() == 0 ? ByteOrder::little : ByteOrder::big,
                           static_cast<RawSign>(sign_->GetSelection()));
  }

  void showPreview() {
    const RawLayout given = layout();
    const LoadResult result = readRaw(file_, given, kPreviewSamples / given.channels, wave_);
    if (result.status != LoadStatus::loaded) {
      preview_->clear();
      return;
    }
    const auto bytes = static_cast<double>(file_.size() - given.fileOffset);
    const int frameBytes = bytesPerSample(given.sample.encoding) * given.channels;
    const double seconds = bytes / frameBytes / given.sampleRate;
    const double shown = static_cast<double>(wave_.frames()) / given.sampleRate;
    wxString text = wxString::Format("%.3f s", seconds);
    if (shown < seconds - 0.001) text += wxString::Format(", of which the first %.3f s are shown", shown);
    preview_->show(text);
  }

  File& file_;
  WindowProfile& profile_;
  CWave wave_;
  wxComboBox* rate_ = nullptr;
  wxChoice* channels_ = nullptr;
  wxChoice* bits_ = nullptr;
  wxChoice* byteOrder_ = nullptr;
  wxChoice* sign_ = nullptr;
  wxTextCtrl* offset_ = nullptr;
  WavePreview* preview_ = nullptr;
};

}  // namespace

std::optional<RawLayout> askRawLayout(wxWindow* parent, Application& app, const std::string& path,
                                      const std::string& name, WindowProfile& profile) {
  std::error_code error;
  const auto file = app.files().openForReading(path, error);
  if (!file) {
    app.prompter().message("Unable to open " + path + "\n" + error.message());
    return std::nullopt;
  }
  RawDialog dialog(parent, *file, name, profile);
  if (!dialog.ask("Open")) return std::nullopt;
  dialog.store();
  return dialog.layout();
}

}  // namespace plumetta
