// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <pulse/pulseaudio.h>

#include <functional>
#include <string>
#include <vector>

// Private to the POSIX side: one connection to the sound server, with waits that always end.

namespace plumetta {

// How long anybody waits for the sound server, over all steps of one operation. Listing the devices and
// opening one stay below two seconds together.
constexpr pa_usec_t kPulsePatience = 900'000;

class PulseConnection {
 public:
  PulseConnection() : deadline_(pa_rtclock_now() + kPulsePatience) {}
  ~PulseConnection();
  PulseConnection(const PulseConnection&) = delete;
  PulseConnection& operator=(const PulseConnection&) = delete;

  // 0 or the server's error code, as do the other operations.
  int connect();

  // Holds off the connection's own thread, which runs all callbacks. Everything below wants it held.
  class Held {
   public:
    explicit Held(const PulseConnection& connection) : loop_(connection.loop_) {
      pa_threaded_mainloop_lock(loop_);
    }
    ~Held() { pa_threaded_mainloop_unlock(loop_); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

   private:
    pa_threaded_mainloop* loop_;
  };

  pa_context* context() const { return context_; }
  // Waits until a callback brings about what is asked for. An error when the connection fails meanwhile or
  // its patience, which began with it, is at an end.
  int waitFor(const std::function<bool()>& ready);
  // What callbacks call when there may be something new for waitFor.
  void wake() { pa_threaded_mainloop_signal(loop_, 0); }

  struct Device {
    std::string name;         // the server's own, by which streams ask for it
    std::string description;  // for people
  };
  // The device that the server takes by default comes first, the others in the server's order; the monitors
  // of sinks follow the real sources.
  enum class Kind { sinks, sources };
  int list(Kind kind, std::vector<Device>& devices);
  // The device of that place in the list.
  int find(Kind kind, int index, Device& device);
  // A stream of interleaved PCM that is not connected yet; 8 bits are unsigned, 16 and 24 signed.
  int newStream(int channels, int sampleRate, int bitsPerSample, pa_stream*& stream);

 private:
  bool failed() const;
  int finish(pa_operation* operation);

  pa_usec_t deadline_;
  pa_threaded_mainloop* loop_ = nullptr;
  pa_context* context_ = nullptr;
};

// The same over a connection of their own.
int listPulseDevices(PulseConnection::Kind kind, std::vector<PulseConnection::Device>& devices);
int findPulseDevice(PulseConnection::Kind kind, int index, PulseConnection::Device& device);

// For a person to read.
std::string pulseErrorText(int error);

}  // namespace plumetta
