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
      // Each in memory of its own, so that a byte behind the cut isn't there.
      const auto run = [&](size_t size) {
        const std::vector<uint8_t> part(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
        LLVMFuzzerTestOneInput(part.data(), size);
      };
      for (size_t part = 0; part < kParts; ++part) run(bytes.size() * part / kParts);
      for (size_t cut = std::min<size_t>(bytes.size(), 8) + 1; cut-- > 0;) run(bytes.size() - cut);
      ++inputs;
    }
  }
  std::printf("%d inputs replayed\n", inputs);
  return inputs > 0 ? 0 : 1;
}
