// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cctype>
#include <memory>

#include "platform/asio_system.h"
#include "support/fake_asio_driver.h"

namespace plumetta {

// A registry and the drivers that it names, all of one plan. Whoever hung has to be released before the end.
class FakeAsio : public AsioSystem {
 public:
  FakeAsioPlan plan;
  int32_t createError = 0;
  // Of each key, by its path in small letters, the values by name.
  std::map<std::string, std::map<std::string, std::string>> machine, classes;
  std::set<std::string> files;
  std::vector<std::unique_ptr<FakeAsioDriver>> drivers;  // in the order in which they were created
  std::atomic<int> threads{0};                           // that drivers are called on

  FakeAsio() { addDriver("First", "{00000000-0000-0000-0000-000000000001}", "one.dll"); }
  ~FakeAsio() override {
    plan.released = true;
    while (threads > 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }

  void addDriver(const std::string& key, const std::string& classId, const std::string& file) {
    machine["software\\asio"];
    machine["software\\asio\\" + key]["clsid"] = classId;
    classes[lower("clsid\\" + classId + "\\InprocServer32")][""] = file;
    files.insert(file);
  }
  FakeAsioDriver& driver() { return *drivers.back(); }

  std::vector<std::string> subKeys(RegistryRoot root, const std::string& path) override {
    std::vector<std::string> names;
    for (const auto& [key, values] : keys(root)) {
      if (lower(key).starts_with(lower(path) + "\\")) names.push_back(key.substr(path.size() + 1));
    }
    return names;
  }
  std::optional<std::string> value(RegistryRoot root, const std::string& path,
                                   const std::string& name) override {
    for (const auto& [key, values] : keys(root)) {
      const auto found = lower(key) == lower(path) ? values.find(name) : values.end();
      if (found != values.end()) return found->second;
    }
    return std::nullopt;
  }
  bool fileExists(const std::string& path) override { return files.contains(path); }
  void enterThread() noexcept override { ++threads; }
  void leaveThread() noexcept override { --threads; }
  void dispatchMessages() override {}
  int32_t create(const AsioClassId&, AsioDriver*& driver) override {
    if (createError == 0) driver = drivers.emplace_back(std::make_unique<FakeAsioDriver>(plan)).get();
    return createError;
  }
  void* windowHandle() noexcept override { return nullptr; }
  void run(const std::function<void()>& work, const std::function<void(bool)>& ended) noexcept override {
    bool completed = false;
    try {
      work();
      completed = true;
    } catch (...) {
    }
    ended(completed);
  }

 private:
  using Keys = std::map<std::string, std::map<std::string, std::string>>;

  const Keys& keys(RegistryRoot root) const { return root == RegistryRoot::machine ? machine : classes; }
  static std::string lower(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
  }
};

}  // namespace plumetta
