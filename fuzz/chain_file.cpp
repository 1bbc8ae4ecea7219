// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a chain file in either form: what parses has no more in it than the file has bytes, and every
// position is one.
#include "vst/chain_file.h"

#include <cstdlib>

using namespace plumetta;

namespace {

void look(std::span<const uint8_t> bytes, ChainForm form) {
  Chain chain;
  if (!parseChain(bytes, form, chain)) {
    if (!chain.empty()) std::abort();
    return;
  }
  size_t held = 0;
  for (const ChainPlugin& plugin : chain) {
    if (plugin.position < 0 || plugin.position >= Rack::kPositions) std::abort();
    if (plugin.slot < -1 || plugin.slot >= VstHost::kSlots) std::abort();
    held += plugin.path.size() + sizeof(float) * plugin.parameters.size() + plugin.state.size();
  }
  if (held > bytes.size()) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::span bytes(data, size);
  chainFormOf(bytes);
  look(bytes, ChainForm::current);
  look(bytes, ChainForm::old);
  return 0;
}
