// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#ifdef _WIN32
#include <winsock2.h>
#include <ws2tcpip.h>
#else
#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

#include <atomic>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace plumetta {

// A server on this machine that answers as a test likes. Each connection has a thread; all end with the
// server. One without a talk only keeps its port from everybody else: who connects is refused.
class LoopbackServer {
 public:
#ifdef _WIN32
  using Socket = SOCKET;
  static constexpr int kBothWays = SD_BOTH;
  static void closeSocket(Socket socket) { closesocket(socket); }
#else
  using Socket = int;
  static constexpr int kBothWays = SHUT_RDWR;
  static void closeSocket(Socket socket) { close(socket); }
#endif

  class Connection {
   public:
    explicit Connection(Socket socket) : socket_(socket) {}
    bool send(const std::string& text) {
      return ::send(socket_, text.data(), static_cast<int>(text.size()), kNoSignal) ==
             static_cast<decltype(::send(socket_, nullptr, 0, 0))>(text.size());
    }
    // Without its end; false once the other side has gone.
    bool readLine(std::string& line) {
      line.clear();
      for (char c = 0; ::recv(socket_, &c, 1, 0) == 1;) {
        if (c == '\n') return true;
        if (c != '\r') line += c;
      }
      return false;
    }
    // The path that an HTTP request asks for.
    std::string readRequest() {
      std::string first, line;
      readLine(first);
      while (readLine(line) && !line.empty()) continue;
      const size_t begin = first.find(' ') + 1;
      return first.substr(begin, first.find(' ', begin) - begin);
    }
    // Says nothing until the other side has gone.
    void beSilent() {
      for (std::string line; readLine(line);) continue;
    }

   private:
#ifdef _WIN32
    static constexpr int kNoSignal = 0;
#else
    static constexpr int kNoSignal = MSG_NOSIGNAL;
#endif
    Socket socket_;
  };

  using Talk = std::function<void(Connection&)>;

  explicit LoopbackServer(Talk talk) : talk_(std::move(talk)) {
#ifdef _WIN32
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
#endif
    // Whatever proxy the person who runs the tests goes through doesn't know this machine's own ports.
    static char direct[] = "no_proxy=127.0.0.1";
    putenv(direct);
    listener_ = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = loopback(0);
    socklen_t length = sizeof address;
    ::bind(listener_, reinterpret_cast<sockaddr*>(&address), length);
    ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length);
    port_ = ntohs(address.sin_port);
    if (talk_ == nullptr) return;
    ::listen(listener_, 16);
    accepting_ = std::thread([this] { accept(); });
  }
  ~LoopbackServer() {
    if (accepting_.joinable()) end();
    closeSocket(listener_);
  }
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  int port() const { return port_; }
  std::string address(const std::string& scheme, const std::string& path) const {
    return scheme + "://127.0.0.1:" + std::to_string(port_) + path;
  }

 private:
  static sockaddr_in loopback(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<uint16_t>(port));
    return address;
  }
  void end() {
    ending_ = true;
    const Socket knock = ::socket(AF_INET, SOCK_STREAM, 0);  // wakes the listener on every system
    const sockaddr_in address = loopback(port_);
    ::connect(knock, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    accepting_.join();
    closeSocket(knock);
    {
      const std::lock_guard held(mutex_);
      for (const Socket socket : open_) ::shutdown(socket, kBothWays);
    }
    for (std::thread& thread : talking_) thread.join();
  }
  void accept() {
    while (true) {
      const Socket socket = ::accept(listener_, nullptr, nullptr);
      if (ending_) return closeSocket(socket);
      const std::lock_guard held(mutex_);
      open_.push_back(socket);
      talking_.emplace_back([this, socket] {
        Connection connection(socket);
        talk_(connection);
        const std::lock_guard alsoHeld(mutex_);
        std::erase(open_, socket);
        closeSocket(socket);
      });
    }
  }

  Talk talk_;
  Socket listener_;
  int port_ = 0;
  std::atomic<bool> ending_{false};
  std::mutex mutex_;
  std::vector<Socket> open_;
  std::thread accepting_;
  std::vector<std::thread> talking_;
};

}  // namespace plumetta
