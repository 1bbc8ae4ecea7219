// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/posix/pulse_connection.h"

#include <algorithm>

namespace plumetta {
namespace {

struct Alarm {
  pa_threaded_mainloop* loop;
  bool rung = false;
};

void onAlarm(pa_mainloop_api*, pa_time_event*, const timeval*, void* alarm) {
  auto* own = static_cast<Alarm*>(alarm);
  own->rung = true;
  pa_threaded_mainloop_signal(own->loop, 0);
}

void onContextState(pa_context*, void* connection) { static_cast<PulseConnection*>(connection)->wake(); }

struct DeviceList {
  std::vector<PulseConnection::Device> devices;
  std::vector<PulseConnection::Device> monitors;  // sources that hear what a sink plays
  std::string defaultSink, defaultSource;
  PulseConnection* connection;

  void bringToFront(const std::string& name) {
    std::stable_partition(devices.begin(), devices.end(),
                          [&](const auto& each) { return each.name == name; });
  }
};

void takeText(const char* text, std::string& target) {
  if (text != nullptr) target = text;
}

template <class Info>
PulseConnection::Device deviceOf(const Info* info) {
  return {info->name, info->description != nullptr ? info->description : info->name};
}

void onServer(pa_context*, const pa_server_info* server, void* list) {
  auto* own = static_cast<DeviceList*>(list);
  if (server != nullptr) {
    takeText(server->default_sink_name, own->defaultSink);
    takeText(server->default_source_name, own->defaultSource);
  }
  own->connection->wake();
}

void onSink(pa_context*, const pa_sink_info* sink, int end, void* list) {
  auto* own = static_cast<DeviceList*>(list);
  if (end == 0) own->devices.push_back(deviceOf(sink));
  own->connection->wake();
}

void onSource(pa_context*, const pa_source_info* source, int end, void* list) {
  auto* own = static_cast<DeviceList*>(list);
  if (end == 0) {
    const bool monitor = source->monitor_of_sink != PA_INVALID_INDEX;
    (monitor ? own->monitors : own->devices).push_back(deviceOf(source));
  }
  own->connection->wake();
}

}  // namespace

PulseConnection::~PulseConnection() {
  if (loop_ == nullptr) return;
  if (context_ != nullptr) {
    const Held held(*this);
    pa_context_set_state_callback(context_, nullptr, nullptr);
    pa_context_disconnect(context_);
    pa_context_unref(context_);
  }
  pa_threaded_mainloop_stop(loop_);
  pa_threaded_mainloop_free(loop_);
}

int PulseConnection::connect() {
  loop_ = pa_threaded_mainloop_new();
  if (loop_ == nullptr) return PA_ERR_INTERNAL;
  context_ = pa_context_new(pa_threaded_mainloop_get_api(loop_), "Plumetta");
  if (context_ == nullptr || pa_threaded_mainloop_start(loop_) < 0) return PA_ERR_INTERNAL;
  const Held held(*this);
  pa_context_set_state_callback(context_, onContextState, this);
  // Starting a server of our own would mean waiting for it without an end.
  if (pa_context_connect(context_, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0)
    return pa_context_errno(context_);
  return waitFor([this] { return pa_context_get_state(context_) == PA_CONTEXT_READY; });
}

bool PulseConnection::failed() const { return !PA_CONTEXT_IS_GOOD(pa_context_get_state(context_)); }

int PulseConnection::waitFor(const std::function<bool()>& ready) {
  Alarm alarm{loop_};
  pa_time_event* event = pa_context_rttime_new(context_, deadline_, onAlarm, &alarm);
  if (event == nullptr) return PA_ERR_INTERNAL;
  while (!ready() && !failed() && !alarm.rung) pa_threaded_mainloop_wait(loop_);
  pa_threaded_mainloop_get_api(loop_)->time_free(event);
  if (ready()) return 0;
  return failed() ? pa_context_errno(context_) : static_cast<int>(PA_ERR_TIMEOUT);
}

// The callback of an operation given up may still be about to come: cancelled, it never does.
int PulseConnection::finish(pa_operation* operation) {
  if (operation == nullptr) return pa_context_errno(context_);
  int error = waitFor([&] { return pa_operation_get_state(operation) != PA_OPERATION_RUNNING; });
  if (error == 0 && pa_operation_get_state(operation) != PA_OPERATION_DONE)
    error = pa_context_errno(context_);
  if (error != 0) pa_operation_cancel(operation);
  pa_operation_unref(operation);
  return error;
}

int PulseConnection::list(Kind kind, std::vector<Device>& devices) {
  DeviceList list{{}, {}, {}, {}, this};
  if (const int error = finish(pa_context_get_server_info(context_, onServer, &list))) return error;
  const int error = finish(kind == Kind::sinks ? pa_context_get_sink_info_list(context_, onSink, &list)
                                               : pa_context_get_source_info_list(context_, onSource, &list));
  if (error != 0) return error;
  list.devices.insert(list.devices.end(), list.monitors.begin(), list.monitors.end());
  list.bringToFront(kind == Kind::sinks ? list.defaultSink : list.defaultSource);
  devices = std::move(list.devices);
  return 0;
}

int PulseConnection::find(Kind kind, int index, Device& device) {
  std::vector<Device> devices;
  if (const int error = list(kind, devices)) return error;
  if (index < 0 || static_cast<size_t>(index) >= devices.size()) return PA_ERR_NOENTITY;
  device = std::move(devices[static_cast<size_t>(index)]);
  return 0;
}

int PulseConnection::newStream(int channels, int sampleRate, int bitsPerSample, pa_stream*& stream) {
  const pa_sample_format_t sample = bitsPerSample == 8    ? PA_SAMPLE_U8
                                    : bitsPerSample == 16 ? PA_SAMPLE_S16LE
                                                          : PA_SAMPLE_S24LE;
  const pa_sample_spec spec{sample, static_cast<uint32_t>(sampleRate), static_cast<uint8_t>(channels)};
  if (!pa_sample_spec_valid(&spec)) return PA_ERR_INVALID;
  stream = pa_stream_new(context_, "Plumetta", &spec, nullptr);
  return stream == nullptr ? pa_context_errno(context_) : 0;
}

int listPulseDevices(PulseConnection::Kind kind, std::vector<PulseConnection::Device>& devices) {
  PulseConnection pulse;
  if (const int error = pulse.connect()) return error;
  const PulseConnection::Held held(pulse);
  return pulse.list(kind, devices);
}

int findPulseDevice(PulseConnection::Kind kind, int index, PulseConnection::Device& device) {
  PulseConnection pulse;
  if (const int error = pulse.connect()) return error;
  const PulseConnection::Held held(pulse);
  return pulse.find(kind, index, device);
}

std::string pulseErrorText(int error) {
  switch (error) {
    case PA_ERR_CONNECTIONREFUSED:
      return "There is no sound server.";
    case PA_ERR_TIMEOUT:
      return "The sound server does not answer.";
    case PA_ERR_CONNECTIONTERMINATED:
      return "The sound server has gone.";
    case PA_ERR_KILLED:
      return "The sound device has gone.";
    case PA_ERR_NOENTITY:
      return "There is no such sound device.";
    default:
      return std::string("The sound server reports: ") + pa_strerror(error);
  }
}

}  // namespace plumetta
