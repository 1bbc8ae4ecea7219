// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "platform/lock_file.h"

namespace plumetta {

// A folder of a test's own, gone with it.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    static std::atomic<int> counter{0};
    // Numbers of processes come again, and one that was killed has left its folder behind.
    do {
      path_ = std::filesystem::temp_directory_path() /
              ("plumetta-test-" + std::to_string(processId()) + "-" + std::to_string(counter++));
    } while (!std::filesystem::create_directory(path_));
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  std::string path() const { return path_.string(); }
  std::string file(const std::string& name) const { return (path_ / std::filesystem::u8path(name)).string(); }
  size_t entries() const {
    return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(path_), {}));
  }

 private:
  std::filesystem::path path_;
};

inline std::string bytesOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

inline void writeBytes(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

}  // namespace plumetta
