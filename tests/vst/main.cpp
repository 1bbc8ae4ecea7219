// SPDX-License-Identifier: GPL-3.0-or-later
// The test program is also the process in which its scans look at plug-ins.
#include <gtest/gtest.h>

#include "vst/plugin_probe.h"

int main(int argc, char** argv) {
  if (argc > 1 && std::string(argv[1]) == plumetta::kProbeSwitch) {
    return plumetta::runPluginProbe({argv + 2, argv + argc});
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
