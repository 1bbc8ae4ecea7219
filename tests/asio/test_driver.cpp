// SPDX-License-Identifier: GPL-3.0-or-later
// An ASIO driver in an in-process server of its own, for hosts to be tried with. What it is like stands in
// the environment variable PLUMETTA_TEST_DRIVER, as in
// "outputs=40;frames=512;types=16,18;fail=start;record=C:\folder": refuse, fail, throw, hang and crash list
// rates and operations, stall the number of buffers after which it asks for no more. Into the folder it
// writes its calls as they come, and once it is released what each output has played.
#include <windows.h>

#include <unknwn.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

#include "support/fake_asio_driver.h"

namespace plumetta {
namespace {

std::vector<std::string> split(const std::string& text, char separator) {
  std::vector<std::string> pieces;
  std::istringstream stream(text);
  for (std::string piece; std::getline(stream, piece, separator);) pieces.push_back(piece);
  return pieces;
}

struct Plan : FakeAsioPlan {
  std::set<std::string> crashes;
  int stall = -1;
  std::string record;

  Plan() {
    const char* text = std::getenv("PLUMETTA_TEST_DRIVER");
    for (const std::string& item : split(text != nullptr ? text : "", ';')) {
      const size_t equals = item.find('=');
      if (equals != std::string::npos) take(item.substr(0, equals), item.substr(equals + 1));
    }
  }

 private:
  void take(const std::string& key, const std::string& value) {
    const std::vector<std::string> list = split(value, ',');
    const std::set<std::string> names(list.begin(), list.end());
    if (key == "inputs") inputs = std::stoi(value);
    if (key == "outputs") outputs = std::stoi(value);
    if (key == "frames") frames = std::stoi(value);
    if (key == "stall") stall = std::stoi(value);
    if (key == "record") record = value;
    if (key == "fail") fails = names;
    if (key == "throw") throws = names;
    if (key == "hang") hangs = names;
    if (key == "crash") crashes = names;
    if (key == "types") types.clear();
    for (const std::string& number : list) {
      if (key == "types") types.push_back(std::stoi(number));
      if (key == "refuse") refusedRates.insert(std::stoi(number));
    }
  }
};

// The driver with a thread that asks for buffers, several times as fast as they would be heard.
class PullingDriver : public FakeAsioDriver {
 public:
  explicit PullingDriver(const Plan& plan) : FakeAsioDriver(plan), plan_(plan) {}

  AsioError start() override {
    const AsioError error = FakeAsioDriver::start();
    if (error == kAsioOk) thread_ = std::thread([this] { pull(); });
    return error;
  }
  AsioError stop() override {
    over_ = true;
    if (thread_.joinable()) thread_.join();
    return FakeAsioDriver::stop();
  }
  uint32_t Release() override {
    const uint32_t left = FakeAsioDriver::Release();
    for (const auto& [output, bytes] : played()) {
      std::ofstream file(plan_.record + "\\output" + std::to_string(output), std::ios::binary);
      file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    return left;
  }

 private:
  void pull() {
    for (int i = 0; !over_ && i != plan_.stall; ++i) {
      switchBuffers(i % 2 == 0);
      Sleep(2);
    }
  }
  AsioError note(const std::string& call) override {
    std::ofstream(plan_.record + "\\calls", std::ios::app) << call << "\n";
    if (plan_.crashes.contains(call)) *static_cast<volatile int*>(nullptr) = 0;
    return FakeAsioDriver::note(call);
  }

  const Plan& plan_;
  std::thread thread_;
  std::atomic<bool> over_{false};
};

// What a host holds: a pointer to a table of functions, laid out by hand rather than by the compiler that
// lays out the host's own class.
struct Object {
  const void* const* table;
  PullingDriver driver;
};

template <auto method>
struct Entry;
template <class Result, class Class, class... Arguments, Result (Class::*method)(Arguments...)>
struct Entry<method> {
  static Result call(Object* object, Arguments... arguments) {
    return (object->driver.*method)(arguments...);
  }
};
template <auto method>
const void* entry() {
  return reinterpret_cast<const void*>(&Entry<method>::call);
}

using D = AsioDriver;
const void* const kTable[] = {entry<&D::QueryInterface>(),
                              entry<&D::AddRef>(),
                              entry<&D::Release>(),
                              entry<&D::init>(),
                              entry<&D::getDriverName>(),
                              entry<&D::getDriverVersion>(),
                              entry<&D::getErrorMessage>(),
                              entry<&D::start>(),
                              entry<&D::stop>(),
                              entry<&D::getChannels>(),
                              entry<&D::getLatencies>(),
                              entry<&D::getBufferSize>(),
                              entry<&D::canSampleRate>(),
                              entry<&D::getSampleRate>(),
                              entry<&D::setSampleRate>(),
                              entry<&D::getClockSources>(),
                              entry<&D::setClockSource>(),
                              entry<&D::getSamplePosition>(),
                              entry<&D::getChannelInfo>(),
                              entry<&D::createBuffers>(),
                              entry<&D::disposeBuffers>(),
                              entry<&D::controlPanel>(),
                              entry<&D::future>(),
                              entry<&D::outputReady>()};
static_assert(std::size(kTable) == 24);

// The class factory, laid out in the same way. Never deleted: a test looks at one driver and ends.
HRESULT WINAPI queryFactory(void* factory, REFIID, void** object) {
  *object = factory;
  return S_OK;
}
ULONG WINAPI countFactory(void*) { return 1; }
HRESULT WINAPI createDriver(void*, IUnknown*, REFIID, void** object) {
  static const Plan plan;
  if (plan.fails.contains("create")) return E_OUTOFMEMORY;
  *object = new Object{kTable, PullingDriver(plan)};
  return S_OK;
}
HRESULT WINAPI lockServer(void*, BOOL) { return S_OK; }

const void* const kFactoryTable[] = {
    reinterpret_cast<const void*>(queryFactory), reinterpret_cast<const void*>(countFactory),
    reinterpret_cast<const void*>(countFactory), reinterpret_cast<const void*>(createDriver),
    reinterpret_cast<const void*>(lockServer)};

}  // namespace
}  // namespace plumetta

extern "C" __declspec(dllexport) HRESULT WINAPI DllGetClassObject(REFCLSID, REFIID, void** object) {
  static const void* const* factory = plumetta::kFactoryTable;
  *object = &factory;
  return S_OK;
}

extern "C" __declspec(dllexport) HRESULT WINAPI DllCanUnloadNow() { return S_FALSE; }
