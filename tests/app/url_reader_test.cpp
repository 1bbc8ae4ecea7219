// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/url_reader.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "app/application.h"
#include "support/failing_file_system.h"
#include "support/loopback_server.h"
#include "support/recording_prompter.h"
#include "support/temporary_folder.h"

namespace plumetta {
namespace {

namespace disk = std::filesystem;

// Eight frames of silence under every name but "/silent".
void serve(LoopbackServer::Connection& connection) {
  if (connection.readRequest() == "/silent") return connection.beSilent();
  static constexpr char kWav[] =
      "RIFF\x34\0\0\0WAVEfmt \x10\0\0\0\1\0\1\0\x40\x1F\0\0\x80\x3E\0\0\2\0\x10\0data\x10\0\0\0"
      "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0";
  connection.send("HTTP/1.0 200 OK\r\n\r\n" + std::string(kWav, sizeof kWav));
}

size_t filesBelow(const std::string& folder) {
  size_t count = 0;
  for (const auto& entry : disk::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file() && entry.path().filename() != "lock") ++count;
  }
  return count;
}

TEST(UrlReader, OpensAsADocumentThatWasNeverSaved) {
  const LoopbackServer server(serve);
  const TemporaryFolder home;
  RecordingPrompter prompter;
  Application app(prompter, nativeFileSystem(), home.path());
  FileOutcome outcome{};
  {
    FetchedFile fetched;
    ASSERT_EQ(app.urlReader().fetch(server.address("http", "/a%20b.wav"), fetched), FetchOutcome::done);
    EXPECT_EQ(filesBelow(home.path()), 1u);
    const CPlumettaDoc* doc = app.openFetched(fetched, outcome);
    ASSERT_NE(doc, nullptr);
    EXPECT_EQ(doc->wave().frames(), 8);
    EXPECT_EQ(doc->title(), "a b.wav");
    EXPECT_EQ(doc->wave().fileName(), "a b.wav");  // no path: it has yet to get one
    EXPECT_TRUE(doc->modified());
  }
  EXPECT_EQ(filesBelow(home.path()), 0u);
  EXPECT_TRUE(prompter.messages.empty());
}

TEST(UrlReader, CancelLeavesNothing) {
  const LoopbackServer server(serve);
  const TemporaryFolder home;
  RecordingPrompter prompter;
  prompter.cancelAfter = 5;
  Application app(prompter, nativeFileSystem(), home.path());
  FetchedFile fetched;
  EXPECT_EQ(app.urlReader().fetch(server.address("http", "/silent"), fetched), FetchOutcome::cancelled);
  EXPECT_EQ(filesBelow(home.path()), 0u);
  EXPECT_TRUE(prompter.messages.empty());
}

TEST(UrlReader, AFullDiskIsToldAndLeavesNothing) {
  const LoopbackServer server(serve);
  bool gotThrough = false;
  for (int failAt = 0; !gotThrough; ++failAt) {
    ASSERT_LT(failAt, 20);
    const TemporaryFolder home;
    RecordingPrompter prompter;
    FailingFileSystem files(failAt);
    UndoFolder folder(files, home.path());
    UrlReader reader(files, folder, prompter, "Test/1");
    {
      FetchedFile fetched;
      gotThrough = reader.fetch(server.address("http", "/a.wav"), fetched) == FetchOutcome::done;
    }
    EXPECT_EQ(filesBelow(home.path()), 0u) << failAt;
    ASSERT_EQ(prompter.messages.size(), gotThrough ? 0u : 1u) << failAt;
    if (gotThrough) continue;
    EXPECT_TRUE(prompter.messages[0].starts_with("Unable to fetch http://127.0.0.1:")) << failAt;
  }
}

}  // namespace
}  // namespace plumetta
