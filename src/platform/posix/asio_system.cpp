// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/asio_system.h"

namespace plumetta {
namespace {

// As a machine on which no driver was ever installed.
class NoAsio : public AsioSystem {
 public:
  std::vector<std::string> subKeys(RegistryRoot, const std::string&) override { return {}; }
  std::optional<std::string> value(RegistryRoot, const std::string&, const std::string&) override {
    return std::nullopt;
  }
  bool fileExists(const std::string&) override { return false; }
  void enterThread() noexcept override {}
  void leaveThread() noexcept override {}
  void dispatchMessages() override {}
  int32_t create(const AsioClassId&, AsioDriver*& driver) override {
    driver = nullptr;
    return kAsioNotPresent;
  }
  void* windowHandle() noexcept override { return nullptr; }
  void run(const std::function<void()>& work, const std::function<void(bool)>& ended) noexcept override {
    work();
    ended(true);
  }
};

}  // namespace

AsioSystem& nativeAsio() {
  static NoAsio system;
  return system;
}

}  // namespace plumetta
