// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as the answer of an update server and as an address: the answer is judged, and the name that the
// address brings is none of another folder.
#include <cstdlib>
#include <string>

#include "net/net_address.h"
#include "net/update_check.h"

using namespace plumetta;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const UpdateAnswer answer = judgeVersion(text, "1.9");
  if (answer.version.find_first_not_of("0123456789.") != std::string::npos) std::abort();
  const std::string name = fileNameOfAddress(text);
  if (name.find_first_of("/\\:\n") != std::string::npos || name == "." || name == "..") std::abort();
  // What may be asked for can be shown, and is an address still.
  const bool fetchable = addressProblem(text, NetSchemes::webAndFiles).empty();
  if (fetchable && !addressProblem(shownAddress(text), NetSchemes::webAndFiles).empty()) std::abort();
  return 0;
}
