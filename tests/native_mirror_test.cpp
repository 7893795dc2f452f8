#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <iostream>
#include <sstream>

#include "platform/machine.hpp"
#include "publisher/commands.hpp"
#include "publisher/failure.hpp"
#include "publisher/mirror_server.hpp"
#include "support/body_sink.hpp"
#include "support/posix/publication.hpp"

namespace {

using support::Noise;
using support::TestPublication;

using Answer = support::BodySink;

struct MirrorTest : testing::Test {
  explicit MirrorTest(publisher::ServeOptions with = {}) : options(std::move(with)) {
    options.port = 0;
    options.log = true;
    server = std::make_unique<publisher::MirrorServer>(publisher::Layout(pub.Root()), options, console);
  }
  ~MirrorTest() override { client.reset(); }  // lets go of the connections before the server waits for them

  Answer Get(const std::string& path, std::vector<std::pair<std::string, std::string>> headers = {}) {
    Answer answer;
    EXPECT_TRUE(
        client->Get({.url = server->Url() + path, .headers = std::move(headers)}, answer, {}).Complete())
        << path;
    return answer;
  }

  TestPublication pub;
  publisher::ServeOptions options;
  std::ostringstream said;
  publisher::Console console{said, said};
  std::unique_ptr<publisher::MirrorServer> server;
  std::unique_ptr<platform::HttpClient> client = platform::MakeHttpClient();
};

TEST(Layout, APathAskedForNeverLeavesThePublication) {
  const struct {
    const char* asked;
    const char* name;  // none: refused
  } cases[] = {
      {"/update/kvn2011/Online.txt", "Online.txt"},
      {"/update/kvn2011/../../web/include/info.php", "web/include/info.php"},
      {"/files/update/kvn2011/../../web/include/info.php", "web/include/info.php"},
      {"/update/kvn2011/NewAct2/../Online.txt", "Online.txt"},
      {"/update/kvn2011/../../../etc/passwd", nullptr},
      {"/web/../../etc/passwd", nullptr},
      {"/update/kvn2011/..\\..\\etc\\passwd", nullptr},
      {"/update/kvn2011/.git/config", nullptr},
      {"/update/kvn2011/.publisher/record.txt", nullptr},
      {"/update/kvn2011/", nullptr},
      {"/Online.txt", nullptr},
  };
  for (const auto& [asked, name] : cases) {
    const auto found = publisher::Layout::NameFor(asked);
    EXPECT_EQ(found.value_or("none"), name == nullptr ? "none" : name) << asked;
  }
}

TEST_F(MirrorTest, AnswersUnderBothPathsAndTellsEachRequest) {
  pub.game.Put("Bin/KVN-DX8.exe", "the client");
  pub.game.Put("Bin/Sub/ñandú #1.dat", Noise(500'000, 3));
  ASSERT_EQ(pub.Index(), 0);
  EXPECT_EQ(Get("update/kvn2011/Online.txt").body, "1");
  EXPECT_EQ(Get("files/update/kvn2011/OldAct/Update.ini").body, pub.Get("OldAct/Update.ini"));
  const Answer packed = Get("update/kvn2011/NewAct2/Bin/Sub/%C3%B1and%C3%BA%20%231.dat.kvn");
  EXPECT_TRUE(packed.body == pub.Get("NewAct2/Bin/Sub/ñandú #1.dat.kvn"));
  EXPECT_EQ(packed.head.contentLength, packed.body.size());
  EXPECT_EQ(Get("update/kvn2011/../../web/include/info.php?op=complete").body,
            pub.Get("web/include/info.php"));
  for (const char* missing : {"update/kvn2011/OldAct/none.zip", "update/kvn2011/OldAct", "Online.txt",
                              "update/kvn2011/%2e%2e%2f%2e%2e%2f%2e%2e%2fetc/passwd"}) {
    EXPECT_EQ(Get(missing).head.status, 404) << missing;
  }
  EXPECT_TRUE(said.str().starts_with("GET /update/kvn2011/Online.txt 200\n")) << said.str();
}

TEST_F(MirrorTest, APartOfAFileCanBeAskedFor) {
  const std::string path = "update/kvn2011/OldAct/part.zip";
  pub.Put("OldAct/part.zip", "0123456789");
  const std::string tag = Get(path).head.Header("etag"), date = Get(path).head.Header("last-modified");
  const struct {
    std::string range, ifRange;
    int status;
    std::string body, where;
  } cases[] = {
      {"bytes=3-5", "", 206, "345", "bytes 3-5/10"},      {"bytes=3-", "", 206, "3456789", "bytes 3-9/10"},
      {"bytes=-2", "", 206, "89", "bytes 8-9/10"},        {"bytes=10-", "", 416, "", "bytes */10"},
      {"bytes=0-1,4-5", "", 200, "0123456789", ""},       {"bytes=3-", tag, 206, "3456789", "bytes 3-9/10"},
      {"bytes=3-", date, 206, "3456789", "bytes 3-9/10"}, {"bytes=3-", "\"another\"", 200, "0123456789", ""},
  };
  for (const auto& [range, ifRange, status, body, where] : cases) {
    std::vector<std::pair<std::string, std::string>> headers = {{"Range", range}};
    if (!ifRange.empty()) headers.emplace_back("If-Range", ifRange);
    const Answer answer = Get(path, headers);
    EXPECT_EQ(answer.head.status, status) << range << " " << ifRange;
    EXPECT_EQ(answer.body, body) << range << " " << ifRange;
    EXPECT_EQ(answer.head.Header("content-range"), where) << range << " " << ifRange;
  }
}

TEST_F(MirrorTest, ListensOnlyWhereItMay) {
  const std::string url = server->Url();
  publisher::ServeOptions same;
  same.port = std::stoi(url.substr(url.rfind(':') + 1));
  EXPECT_THROW(publisher::MirrorServer(publisher::Layout(pub.Root()), same, console), publisher::Failure);
  for (const char* host : {"0.0.0.0", "192.168.0.1", "example.com"}) {
    publisher::ServeOptions open;
    open.host = host;
    open.port = 0;
    EXPECT_THROW(publisher::MirrorServer(publisher::Layout(pub.Root()), open, console), publisher::Failure);
  }
}

TEST(Serve, TellsWhereAndEndsCleanlyWhenAsked) {
  TestPublication pub;
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  std::fflush(stdout);  // or the child would say it once more
  const pid_t child = fork();
  if (child == 0) {
    dup2(ends[1], STDOUT_FILENO);
    publisher::Console console{std::cout, std::cerr};
    const std::vector<std::string> words = {"serve", pub.Root(), "--port=0"};
    _exit(publisher::Run(words, console));
  }
  close(ends[1]);
  std::string line;  // complete when it comes, since it is flushed as a whole
  line.resize(1000);
  line.resize(static_cast<std::size_t>(std::max<ssize_t>(0, read(ends[0], line.data(), line.size()))));
  EXPECT_TRUE(line.starts_with("Serving " + pub.Root() + " on http://127.0.0.1:")) << line;
  EXPECT_TRUE(line.ends_with("/\n")) << line;
  kill(child, SIGTERM);
  int status = 0;
  waitpid(child, &status, 0);
  close(ends[0]);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

}  // namespace
