// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/asio_driver.h"

namespace plumetta {

enum class RegistryRoot { machine, classes };

// What ASIO drivers need of the system: the registry that lists them, and the making of COM objects. A system
// without COM has an empty registry. Texts are UTF-8.
class AsioSystem {
 public:
  virtual ~AsioSystem() = default;

  // Empty when there is no such key. Names and paths of keys are the same in capitals and small letters.
  virtual std::vector<std::string> subKeys(RegistryRoot root, const std::string& path) = 0;
  // A text value, or with an empty name the key's own.
  virtual std::optional<std::string> value(RegistryRoot root, const std::string& path,
                                           const std::string& name) = 0;
  // A file of this path, or of this bare name where the system looks for libraries.
  virtual bool fileExists(const std::string& path) = 0;

  // The thread that creates and calls a driver begins with the first and ends with the second.
  virtual void enterThread() noexcept = 0;
  virtual void leaveThread() noexcept = 0;
  // Lets the driver's windows on this thread work. Never waits.
  virtual void dispatchMessages() = 0;
  // An in-process server; the class is its own interface. 0 or the system's error, with no driver then.
  virtual int32_t create(const AsioClassId& classId, AsioDriver*& driver) = 0;
  // What drivers are given to put their windows upon.
  virtual void* windowHandle() noexcept = 0;
  // Runs `work`, which calls a driver, on such a thread, and tells `ended` whether it came to its end or
  // threw. On Windows a driver that crashes counts as one that has thrown, but its thread stays where it is
  // for ever.
  virtual void run(const std::function<void()>& work,
                   const std::function<void(bool completed)>& ended) noexcept = 0;
};

AsioSystem& nativeAsio();

}  // namespace plumetta
