// SPDX-License-Identifier: GPL-3.0-or-later
#include "net/transfer.h"

#include <gtest/gtest.h>

#include "net/background_transfer.h"
#include "support/loopback_server.h"

namespace plumetta {
namespace {

using std::chrono::milliseconds;
using Connection = LoopbackServer::Connection;

std::string page(const std::string& text) {
  return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(text.size()) + "\r\n\r\n" + text;
}
std::string redirect(const std::string& target) {
  return "HTTP/1.1 302 Found\r\nLocation: " + target + "\r\nContent-Length: 3\r\n\r\nno!";
}

// Answers by the path that is asked for.
void serve(Connection& connection) {
  const std::string path = connection.readRequest();
  const std::string steps = "/steps/";
  if (path == "/good") connection.send(page("all of it"));
  if (path == "/endless") connection.send("HTTP/1.0 200 OK\r\n\r\nall of it");
  if (path == "/cut") connection.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nall of it");
  if (path == "/missing") connection.send("HTTP/1.1 404 No\r\nContent-Length: 9\r\n\r\nnot there");
  if (path == "/broken") connection.send("HTTP/1.1 500 No\r\nContent-Length: 0\r\n\r\n");
  if (path == "/long") connection.send(page(std::string(5120, '1')));
  if (path == "/file") connection.send(redirect("file:///etc/hostname"));
  if (path == "/gopher") connection.send(redirect("gopher://127.0.0.1/good"));
  if (path == "/ftp") connection.send(redirect("ftp://127.0.0.1/good"));
  if (path == "/circle") connection.send(redirect("/circle"));
  if (path == "/silent") connection.beSilent();
  if (path == "/drip") {
    connection.send("HTTP/1.0 200 OK\r\n\r\n");
    while (connection.send("1")) std::this_thread::sleep_for(milliseconds(20));
  }
  if (path.starts_with(steps)) {
    const int left = std::stoi(path.substr(steps.size()));
    connection.send(redirect(left > 1 ? steps + std::to_string(left - 1) : "/good"));
  }
}

struct Fetched {
  TransferResult result;
  std::string text;
};

Fetched fetch(TransferRequest request) {
  Fetched fetched;
  TransferState state;
  const TransferSink sink = [&](const char* bytes, size_t count) {
    fetched.text.append(bytes, count);
    return true;
  };
  fetched.result = transfer(request, sink, state);
  return fetched;
}

TEST(Transfer, TakesWhatIsWholeAndTellsWhatIsNot) {
  const LoopbackServer server(serve);
  const struct {
    const char* path;
    const char* reason;  // part of it; null where all is well
    milliseconds patience = milliseconds::max();
  } cases[] = {{"/good", nullptr},
               {"/endless", nullptr},
               {"/steps/5", nullptr},
               {"/steps/6", "leads on"},
               {"/circle", "leads on"},
               {"/cut", "broken off"},
               {"/missing", "no such file"},
               {"/broken", "error 500"},
               {"/long", "longer"},
               {"/file", "something other than http, https."},
               {"/gopher", "something other"},
               {"/ftp", "something other"},
               {"/silent", "in time", milliseconds(300)},
               {"/drip", "in time", milliseconds(300)}};
  for (const auto& [path, reason, patience] : cases) {
    TransferRequest request;
    request.address = server.address("http", path);
    request.schemes = NetSchemes::web;
    request.mostBytes = 4096;
    request.patience = patience;
    const Fetched fetched = fetch(request);
    EXPECT_EQ(fetched.result.status == TransferStatus::done, reason == nullptr)
        << path << fetched.result.reason;
    if (reason == nullptr) {
      EXPECT_EQ(fetched.text, "all of it") << path;
    } else {
      EXPECT_NE(fetched.result.reason.find(reason), std::string::npos) << path << fetched.result.reason;
    }
  }
  TransferRequest silent;
  silent.address = server.address("http", "/silent");
  silent.silence = milliseconds(200);
  EXPECT_EQ(fetch(silent).result.status, TransferStatus::failed);
}

TEST(Transfer, NobodyThere) {
  const LoopbackServer deaf(nullptr);
  TransferRequest request;
  request.address = deaf.address("http", "/good");
  EXPECT_EQ(fetch(request).result.reason, "The server can't be reached.");
}

// Speaks enough FTP for one file; `dumbAt` names what it never answers.
class FtpServer {
 public:
  explicit FtpServer(std::string dumbAt)
      : dumbAt_(std::move(dumbAt)),
        data_([this](Connection& connection) { connection.send("all of it"), dataSent_ = true; }),
        control_([this](Connection& connection) { talk(connection); }) {}

  std::string address() const { return control_.address("ftp", "/folder/sound.wav"); }

 private:
  void talk(Connection& connection) {
    connection.send("220 here\r\n");
    for (std::string line; connection.readLine(line);) {
      const std::string verb = line.substr(0, line.find(' '));
      if (verb == dumbAt_) return connection.beSilent();
      answer(connection, verb);
    }
  }
  void answer(Connection& connection, const std::string& verb) {
    if (verb == "EPSV")
      connection.send("229 (|||" + std::to_string(data_.port()) + "|)\r\n");
    else if (verb == "SIZE")
      connection.send("213 9\r\n");
    else if (verb == "USER")
      connection.send("230 in\r\n");
    else if (verb == "PWD")
      connection.send("257 \"/\"\r\n");
    else if (verb == "RETR") {
      connection.send("150 coming\r\n");
      while (!dataSent_) std::this_thread::yield();
      if (dumbAt_ == "226") return connection.beSilent();
      connection.send("226 done\r\n");
    } else
      connection.send("200 yes\r\n");
  }

  std::string dumbAt_;
  std::atomic<bool> dataSent_{false};
  LoopbackServer data_;
  LoopbackServer control_;
};

TEST(Transfer, FtpFile) {
  const FtpServer server("nothing");
  TransferRequest request;
  request.address = server.address();
  const Fetched fetched = fetch(request);
  EXPECT_EQ(fetched.result.status, TransferStatus::done) << fetched.result.reason;
  EXPECT_EQ(fetched.text, "all of it");
}

// A transfer that would go on for ever ends once it is asked to.
void cancel(const std::string& address) {
  TransferRequest request;
  request.address = address;
  request.silence = milliseconds::max();
  BackgroundTransfer transfer(request, [](const char*, size_t) { return true; });
  EXPECT_FALSE(transfer.finished(milliseconds(300))) << address;
  transfer.cancel();
  EXPECT_NE(transfer.result().status, TransferStatus::failed) << address << transfer.result().reason;
}

TEST(Transfer, CancelIsAnswered) {
  const LoopbackServer server(serve);
  cancel(server.address("http", "/silent"));
  cancel(server.address("http", "/drip"));
  for (const char* dumbAt : {"EPSV", "226", "QUIT"}) cancel(FtpServer(dumbAt).address());
}

}  // namespace
}  // namespace plumetta
