// SPDX-License-Identifier: GPL-3.0-or-later
#include "net/curl_library.h"

#include <curl/curl.h>

#include <algorithm>
#include <vector>

namespace plumetta {
namespace {

std::vector<std::string> usableSchemes(NetSchemes schemes) {
  prepareCurl();
  std::vector<std::string> wanted{"http", "https"};
  if (schemes == NetSchemes::webAndFiles) wanted.push_back("ftp");
  std::vector<std::string> usable;
  // Not every build of the library has https.
  for (const char* const* own = curl_version_info(CURLVERSION_NOW)->protocols; *own != nullptr; ++own) {
    if (std::ranges::count(wanted, *own) > 0) usable.push_back(*own);
  }
  std::ranges::sort(usable, {}, [&](const std::string& scheme) { return std::ranges::find(wanted, scheme); });
  return usable;
}

}  // namespace

void prepareCurl() {
  static const CURLcode prepared = curl_global_init(CURL_GLOBAL_DEFAULT);
  static_cast<void>(prepared);  // without it, every transfer fails and says so
}

std::string listedSchemes(NetSchemes schemes, const std::string& separator, const std::string& end) {
  std::string text;
  const auto usable = usableSchemes(schemes);
  for (const std::string& scheme : usable) text += scheme + (&scheme == &usable.back() ? end : separator);
  return text;
}

bool isAmong(NetSchemes schemes, const std::string& scheme) {
  return std::ranges::count(usableSchemes(schemes), scheme) > 0;
}

}  // namespace plumetta
