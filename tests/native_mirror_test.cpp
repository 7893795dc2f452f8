#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <iostream>
#include <sstream>
#include <thread>

#include "platform/files.hpp"
#include "platform/machine.hpp"
#include "publisher/commands.hpp"
#include "publisher/failure.hpp"
#include "publisher/mirror_server.hpp"
#include "support/posix/publication.hpp"

namespace {

using support::Noise;
using support::TestPublication;

struct Answer : platform::HttpSink {
  void Begin(const platform::HttpHead& begun) override {
    head = begun;
    body.clear();
  }
  bool Write(std::span<const std::byte> bytes) override {
    body.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return true;
  }
  platform::HttpHead head;
  std::string body;
};

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
  const publisher::Layout layout("/pub");
  const struct {
    const char* asked;
    const char* file;  // none: refused
  } cases[] = {
      {"/update/kvn2011/Online.txt", "/pub/Online.txt"},
      {"/files/update/kvn2011/OldAct/Mapas/Mapas1.zip", "/pub/OldAct/Mapas/Mapas1.zip"},
      {"/update/kvn2011/../../web/include/info.php", "/pub/web/include/info.php"},
      {"/files/update/kvn2011/../../web/include/info.php", "/pub/web/include/info.php"},
      {"/files/update/kvn2011//web/include/noticiasbase.php", "/pub/web/include/noticiasbase.php"},
      {"/web/include/ipdate.php", "/pub/web/include/ipdate.php"},
      {"/update/kvn2011/NewAct2/../Online.txt", "/pub/Online.txt"},
      {"/update/kvn2011/../../../etc/passwd", nullptr},
      {"/update/kvn2011/../../etc/passwd", nullptr},
      {"/web/../../etc/passwd", nullptr},
      {"/update/kvn2011/..\\..\\etc\\passwd", nullptr},
      {"/update/kvn2011/.git/config", nullptr},
      {"/update/kvn2011/", nullptr},
      {"/Online.txt", nullptr},
      {"", nullptr},
  };
  for (const auto& [asked, file] : cases) {
    const auto found = layout.FileFor(asked);
    EXPECT_EQ(found.value_or("none"), file == nullptr ? "none" : file) << asked;
  }
}

TEST_F(MirrorTest, AnswersUnderBothPathsAndTellsEachRequest) {
  pub.game.Put("Bin/Sub/ñandú #1.dat", Noise(500'000, 3));
  ASSERT_EQ(pub.Index(), 0);
  EXPECT_EQ(Get("update/kvn2011/Online.txt").body, "1");
  EXPECT_EQ(Get("files/update/kvn2011/OldAct/Update.ini").body, pub.Get("OldAct/Update.ini"));
  const Answer packed = Get("update/kvn2011/NewAct2/Bin/Sub/%C3%B1and%C3%BA%20%231.dat.kvn");
  EXPECT_TRUE(packed.body == pub.Get("NewAct2/Bin/Sub/ñandú #1.dat.kvn"));
  EXPECT_EQ(packed.head.contentLength, packed.body.size());
  EXPECT_EQ(Get("update/kvn2011/../../web/include/info.php?op=complete").body,
            pub.Get("web/include/info.php"));
  EXPECT_EQ(Get("files/web/include/ipdate.php").body, pub.Get("web/include/ipdate.php"));
  pub.Put("Online.txt", "");
  EXPECT_EQ(Get("update/kvn2011/Online.txt").head.contentLength, 0u);
  for (const char* missing : {"update/kvn2011/OldAct/none.zip", "update/kvn2011/OldAct", "Online.txt",
                              "update/kvn2011/%2e%2e%2f%2e%2e%2f%2e%2e%2fetc/passwd"}) {
    EXPECT_EQ(Get(missing).head.status, 404) << missing;
  }
  EXPECT_TRUE(said.str().starts_with("GET /update/kvn2011/Online.txt 200\n")) << said.str();
}

TEST_F(MirrorTest, AnAnswerThatDidNotChangeIsNotSentAgain) {
  const std::string news = "web/include/noticiasbase.php";
  const Answer first = Get(news);
  EXPECT_EQ(first.head.Header("cache-control"), "max-age=60");
  EXPECT_TRUE(first.head.Header("last-modified").ends_with(" GMT"));
  const std::pair<std::string, std::string> known("If-None-Match", first.head.Header("etag"));
  const Answer second = Get(news, {known});
  EXPECT_EQ(second.head.status, 304);
  EXPECT_EQ(second.body, "");
  pub.Put(news, "2|0|New|More.@");
  const Answer third = Get(news, {known});
  EXPECT_EQ(third.head.status, 200);
  EXPECT_EQ(third.body, "2|0|New|More.@");
  EXPECT_EQ(Get("update/kvn2011/Online.txt").head.Header("cache-control"), "no-cache");
}

struct SlowMirrorTest : MirrorTest {
  SlowMirrorTest() : MirrorTest({.rate = 200'000}) { pub.Put("OldAct/big.zip", Noise(100'000, 4)); }
};

TEST_F(SlowMirrorTest, AConnectionGetsNoMoreThanItsRateAndEndsWithTheServer) {
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(Get("update/kvn2011/OldAct/big.zip").body.size(), 100'000u);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(490));

  pub.Put("OldAct/big.zip", Noise(20'000'000, 5));  // more than a minute and a half
  platform::HttpOutcome outcome;
  std::atomic<bool> begun = false;
  struct Noted : Answer {
    explicit Noted(std::atomic<bool>& flag) : begun(flag) {}
    void Begin(const platform::HttpHead&) override { begun = true; }
    std::atomic<bool>& begun;
  } sink(begun);
  std::jthread download(
      [&] { outcome = client->Get({.url = server->Url() + "update/kvn2011/OldAct/big.zip"}, sink, {}); });
  while (!begun) std::this_thread::yield();
  server.reset();
  download.join();
  EXPECT_EQ(outcome.error, platform::HttpError::CutShort);
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
  for (const int signal : {SIGTERM, SIGINT}) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
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
    kill(child, signal);
    int status = 0;
    waitpid(child, &status, 0);
    close(ends[0]);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
}

}  // namespace
