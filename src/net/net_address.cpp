// SPDX-License-Identifier: GPL-3.0-or-later
#include "net/net_address.h"

#include <curl/curl.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>

#include "net/curl_library.h"

namespace plumetta {
namespace {

constexpr size_t kLongestAddress = 8192;
constexpr size_t kLongestName = 200;  // bytes; disks take 255

using ParsedAddress = std::unique_ptr<CURLU, decltype(&curl_url_cleanup)>;

// Null for what is no address.
ParsedAddress parsed(const std::string& address) {
  ParsedAddress url(curl_url(), curl_url_cleanup);
  const bool understood =
      url != nullptr && address.size() <= kLongestAddress &&
      curl_url_set(url.get(), CURLUPART_URL, address.c_str(), CURLU_NON_SUPPORT_SCHEME) == CURLUE_OK;
  if (!understood) url.reset();
  return url;
}

std::string partOf(const ParsedAddress& url, CURLUPart part) {
  char* text = nullptr;
  if (curl_url_get(url.get(), part, &text, 0) != CURLUE_OK) return {};
  const std::string result(text);
  curl_free(text);
  return result;
}

std::string decoded(const std::string& text) {
  int length = 0;
  char* bytes = curl_easy_unescape(nullptr, text.c_str(), static_cast<int>(text.size()), &length);
  if (bytes == nullptr) return {};
  std::string result(bytes, static_cast<size_t>(length));
  curl_free(bytes);
  return result;
}

// No name of a server has any of these, though an address can hide them behind percent signs.
bool isUnsafeInHosts(char c) {
  return static_cast<unsigned char>(c) <= ' ' || c == '\x7F' ||
         std::string_view("/\\?#@%<>\"").find(c) != std::string_view::npos;
}

bool isUnsafeInNames(char c) {
  return static_cast<unsigned char>(c) < ' ' || c == '\x7F' ||
         std::string_view("/\\:*?\"<>|").find(c) != std::string_view::npos;
}

// How many bytes a text begins with of a character that was cut in two.
size_t restOfCharacter(const std::string& text) {
  const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
  return static_cast<size_t>(std::ranges::find_if_not(text, continues) - text.begin());
}

}  // namespace

std::string addressProblem(const std::string& address, NetSchemes schemes) {
  const bool control =
      std::ranges::any_of(address, [](char c) { return static_cast<unsigned char>(c) <= ' '; });
  const std::string begins = "An address begins with one of " + listedSchemes(schemes, "://, ", "://.");
  if (address.find("://") == std::string::npos) return begins;
  const ParsedAddress url = control ? ParsedAddress(nullptr, curl_url_cleanup) : parsed(address);
  if (url == nullptr) return "This is no address.";
  const std::string scheme = partOf(url, CURLUPART_SCHEME);
  if (!isAmong(schemes, scheme)) return begins;
  const std::string host = partOf(url, CURLUPART_HOST);
  if (host.empty()) return "The name of the server is missing.";
  if (std::ranges::any_of(host, isUnsafeInHosts)) return "This is no address.";
  // Would be answered by a list of names.
  if (scheme == "ftp" && partOf(url, CURLUPART_PATH).ends_with('/'))
    return "This is the address of a folder.";
  return {};
}

std::string shownAddress(const std::string& address) {
  const ParsedAddress url = parsed(address);
  if (url == nullptr) return address;
  curl_url_set(url.get(), CURLUPART_USER, nullptr, 0);
  curl_url_set(url.get(), CURLUPART_PASSWORD, nullptr, 0);
  return partOf(url, CURLUPART_URL);
}

std::string fileNameOfAddress(const std::string& address) {
  const ParsedAddress url = parsed(address);
  if (url == nullptr) return {};
  const std::string path = partOf(url, CURLUPART_PATH);
  std::string name = decoded(path.substr(path.find_last_of('/') + 1));
  std::ranges::replace_if(name, isUnsafeInNames, '_');
  if (name.size() > kLongestName) {
    name.erase(0, name.size() - kLongestName);  // the extension stays
    name.erase(0, restOfCharacter(name));
  }
  // Names of dots alone are folders; no system takes a blank or dot at the end for one.
  name.erase(name.find_last_not_of(" .") + 1);
  return name;
}

std::string addressOnServer(const std::string& server, const std::string& path) {
  const size_t end = server.find_last_not_of('/');
  return server.substr(0, end + 1) + path;
}

}  // namespace plumetta
