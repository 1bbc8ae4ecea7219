// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

#include "app/application.h"
#include "app/take_folder.h"
#include "audio/input_capture.h"

namespace plumetta {

// What the recorder asks of whoever shows the documents.
class RecorderHost {
 public:
  virtual ~RecorderHost() = default;
  // The document in front; null when there is none.
  virtual CPlumettaDoc* activeDocument() = 0;
  // A recording goes into a document: nothing may play from it.
  virtual void stopPlayer() = 0;
  // A recording has come into this document, which is a new one or the active one.
  virtual void recorded(CPlumettaDoc& document) = 0;
};

// Recording and monitoring as a window's buttons know them: what they do, and every message that comes with
// it. The window calls `everySecond` and `watch` from its timers as long as `busy`. UI thread.
class Recorder {
 public:
  Recorder(Application& app, RecorderHost& host, WaveInSystem& system = nativeWaveIn(),
           PollTimer& timer = steadyPollTimer());
  ~Recorder();
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  // The commands. False when nothing was started; a message has said why.
  bool toggleRecord();
  bool toggleMonitor();
  // Record with duration: asks first whether it may open its dialog, preset with `storedDuration`, then
  // records for that many seconds, which are stored.
  bool mayRecordWithDuration();
  int storedDuration() const;
  bool recordWithDuration(int seconds);

  bool recording() const { return recording_; }
  bool monitoring() const { return monitoring_; }
  bool busy() const { return recording_ || monitoring_; }
  // Frames of the present take, or of the last one, and the rate that they count at.
  int64_t framesRecorded() const { return capture_.framesTaken(); }
  int inputRate() const { return capture_.parameters().sampleRate; }
  // The largest |x| since it was last asked.
  float takeInputPeak(int channel) { return capture_.takePeak(channel); }

  // Once a second: the blinking, and the end of a recording with duration.
  void everySecond();
  // Several times a second: ends a recording whose device or disk has failed, with a message, and brings what
  // there is of it into a document.
  void watch();
  // What the window's title is while it blinks; empty for the normal one.
  std::string blinkTitle() const;
  // Whether the record button is marked at this moment.
  bool buttonMarked() const { return blinkOn_; }

  // Before the audio configuration opens: false when a recording goes on. Stops recording and monitoring.
  bool confirmConfiguration();
  // After it: an input rate that the chosen device doesn't take is put back.
  void checkInputRate();
  // Before the window closes: false when it is to stay. A recording ends, its file stays for the next start.
  bool confirmClose();

  // At start: offers the takes of a run that ended without bringing them into a document. One that is not
  // wanted stays where it is, and nobody is asked again. Returns how many were recovered.
  int offerRecovery();

  // Where the file of the last take is when it could not be brought into a document, or is kept on purpose.
  const std::string& keptFile() const { return keptFile_; }
  // Once its audio is safe elsewhere.
  void removeKeptFile();

 private:
  bool startInput();
  void stopInput();
  bool startRecording();
  bool beginTake();
  void stopRecording();
  void endTake();
  bool import(HeldTake& take, bool mayUseActive);
  CPlumettaDoc* importAsNew(const HeldTake& take);
  CPlumettaDoc* importIntoActive(const HeldTake& take, CPlumettaDoc& document);
  void settle(HeldTake& take);

  Application& app_;
  RecorderHost& host_;
  TakeFolder folder_;
  std::optional<HeldTake> take_;
  bool recording_ = false;
  bool monitoring_ = false;
  bool blinkOn_ = false;
  std::optional<int> duration_;  // of a recording with one, in seconds
  int secondsElapsed_ = 0;
  std::string keptFile_;
  InputCapture capture_;
};

}  // namespace plumetta
