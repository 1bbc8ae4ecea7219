// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace plumetta {

// Which addresses may be asked for, and led to by a server's answer.
enum class NetSchemes {
  web,         // http, https
  webAndFiles  // and ftp
};

// What is wrong with an address, in a sentence; empty when it can be fetched.
std::string addressProblem(const std::string& address, NetSchemes schemes);

// The address as it may be shown and kept: without name and password. What is no address stays as it is.
std::string shownAddress(const std::string& address);

// The name of the file that an address leads to, decoded, with no character that means something in a path of
// any system; empty when it names none.
std::string fileNameOfAddress(const std::string& address);

// An address of a server, whatever it ends in, with the path of a file of it.
std::string addressOnServer(const std::string& server, const std::string& path);

}  // namespace plumetta
