// SPDX-License-Identifier: GPL-3.0-or-later
#include "net/update_check.h"

#include <gtest/gtest.h>

#include "support/loopback_server.h"

namespace plumetta {
namespace {

TEST(UpdateCheck, JudgesTheAnswer) {
  const struct {
    std::string text;
    UpdateState state;
  } cases[] = {
      {"1.10", UpdateState::newer},
      {"1.9.0.1\n", UpdateState::newer},
      {"2\r\n", UpdateState::newer},
      {"1.99999999999999999999999", UpdateState::newer},
      {"1.9", UpdateState::same},
      {"01.009.0\r\n", UpdateState::same},
      {"1.8.9", UpdateState::older},
      {"0", UpdateState::older},
      {"", UpdateState::unknown},
      {"\n", UpdateState::unknown},
      {"1.10\n\n", UpdateState::unknown},
      {" 1.10", UpdateState::unknown},
      {"1.10b", UpdateState::unknown},
      {"1..10", UpdateState::unknown},
      {".1", UpdateState::unknown},
      {"1.", UpdateState::unknown},
      {"-1", UpdateState::unknown},
      {"<html>", UpdateState::unknown},
      {std::string("2\0", 2), UpdateState::unknown},
      {std::string(4096, '2'), UpdateState::unknown},
  };
  for (const auto& [text, state] : cases) EXPECT_EQ(judgeVersion(text, "1.9").state, state) << text;
}

TEST(UpdateCheck, AsksForOneFileAndGivesUpAfterFiveSeconds) {
  std::string asked;
  const LoopbackServer server([&](LoopbackServer::Connection& connection) {
    asked = connection.readRequest();
    connection.send("HTTP/1.0 200 OK\r\n\r\n1.10\n");
  });
  const UpdateCheck good(server.address("http", "/here/"), "Test/1", "1.9");
  EXPECT_EQ(good.answer().state, UpdateState::newer);
  EXPECT_EQ(good.answer().version, "1.10");
  EXPECT_EQ(asked, "/here/version.txt");

  const LoopbackServer slow([](LoopbackServer::Connection& connection) {
    connection.readRequest();
    connection.send("HTTP/1.0 200 OK\r\n\r\n");
    while (connection.send("1")) std::this_thread::sleep_for(std::chrono::milliseconds(50));
  });
  const auto begun = std::chrono::steady_clock::now();
  const UpdateCheck dripping(slow.address("http", ""), "Test/1", "1.9");
  EXPECT_EQ(dripping.answer().state, UpdateState::unknown);
  EXPECT_GE(std::chrono::steady_clock::now() - begun, std::chrono::seconds(5));
}

}  // namespace
}  // namespace plumetta
