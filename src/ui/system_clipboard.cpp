// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/system_clipboard.h"

#include <wx/clipbrd.h>
#include <wx/dataobj.h>

#include <algorithm>
#include <vector>

#include "formats/clipboard_image.h"
#include "platform/wave_clipboard.h"

namespace plumetta {
namespace {

// Beyond this the program doesn't keep the person waiting at its end.
constexpr size_t kMostBytesLeftBehind = size_t{256} << 20;

std::vector<wxDataFormat> waveFormats() {
#ifdef __WXMSW__
  return {wxDataFormat(wxDF_WAVE)};
#else
  // The toolkit has no name of its own for what other systems call wave audio.
  return {wxDataFormat("audio/x-wav"), wxDataFormat("audio/wav")};
#endif
}

// The image of some audio, made when somebody asks for it.
class WaveDataObject : public wxDataObject {
 public:
  WaveDataObject(std::shared_ptr<const CWave> audio, int32_t frames)
      : audio_(std::move(audio)), frames_(frames), formats_(waveFormats()) {}

  wxDataFormat GetPreferredFormat(Direction) const override { return formats_.front(); }
  size_t GetFormatCount(Direction direction) const override { return direction == Get ? formats_.size() : 0; }
  void GetAllFormats(wxDataFormat* formats, Direction direction) const override {
    if (direction == Get) std::copy(formats_.begin(), formats_.end(), formats);
  }
  size_t GetDataSize(const wxDataFormat&) const override { return clipboardImageBytes(*audio_, frames_); }
  bool GetDataHere(const wxDataFormat&, void* buffer) const override {
    writeClipboardImage(*audio_, frames_, static_cast<uint8_t*>(buffer));
    return true;
  }

 private:
  std::shared_ptr<const CWave> audio_;
  int32_t frames_;
  std::vector<wxDataFormat> formats_;
};

}  // namespace

void DesktopClipboard::offer(std::shared_ptr<const CWave> audio, int32_t frames) {
  const wxClipboardLocker clipboard;
  if (!clipboard) return;  // another program holds it; the editor's own buffer is there all the same
  offeredBytes_ = clipboardImageBytes(*audio, frames);
  if (offeredBytes_ == 0) {
    wxTheClipboard->Clear();
    return;
  }
  wxTheClipboard->SetData(new WaveDataObject(std::move(audio), frames));
}

std::optional<std::string> DesktopClipboard::waveImage() {
  // The toolkit can't tell the size of every block that another program has left on Windows' clipboard.
  if (auto image = systemWaveImage()) return image;
  const wxClipboardLocker clipboard;
  if (!clipboard) return std::nullopt;
  for (const wxDataFormat& format : waveFormats()) {
    if (!wxTheClipboard->IsSupported(format)) continue;
    wxCustomDataObject data(format);
    if (!wxTheClipboard->GetData(data)) continue;
    return std::string(static_cast<const char*>(data.GetData()), data.GetSize());
  }
  return std::nullopt;
}

void DesktopClipboard::leaveContent() {
  if (offeredBytes_ > 0 && offeredBytes_ <= kMostBytesLeftBehind) wxTheClipboard->Flush();
}

}  // namespace plumetta
