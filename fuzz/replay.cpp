// SPDX-License-Identifier: GPL-3.0-or-later
// Runs a fuzz target over every file of a folder, whole and cut short, where no fuzzer is linked in.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

constexpr size_t kParts = 16;

int main(int argc, char** argv) {
  int inputs = 0;
  for (int i = 1; i < argc; ++i) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(argv[i])) {
      if (!entry.is_regular_file()) continue;
      std::ifstream in(entry.path(), std::ios::binary);
      const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
      const auto* data = reinterpret_cast<const uint8_t*>(bytes.data());
      for (size_t part = 0; part < kParts; ++part) LLVMFuzzerTestOneInput(data, bytes.size() * part / kParts);
      for (size_t cut = std::min<size_t>(bytes.size(), 8) + 1; cut-- > 0;)
        LLVMFuzzerTestOneInput(data, bytes.size() - cut);
      ++inputs;
    }
  }
  std::printf("%d inputs replayed\n", inputs);
  return inputs > 0 ? 0 : 1;
}
