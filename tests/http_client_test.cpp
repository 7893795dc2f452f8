#include "platform/http_client.hpp"
#include "base/url.hpp"

#include <gtest/gtest.h>

#include <set>
#include <thread>

#include "platform/machine.hpp"
#include "support/body_sink.hpp"
#include "support/faulty_server.hpp"
#include "support/system_faults.hpp"
#include "support/tls_servers.hpp"

namespace {

using platform::HttpError;
using support::Answer;
using support::FaultyServer;

struct RecordingSink : support::BodySink {
  void Begin(const platform::HttpHead& answer) override {
    ++begun;
    BodySink::Begin(answer);
  }
  bool Write(std::span<const std::byte> bytes) override {
    BodySink::Write(bytes);
    if (onWrite) onWrite();
    return body.size() <= limit;
  }
  int begun = 0;
  std::size_t limit = SIZE_MAX;
  std::function<void()> onWrite;
};

std::string Pattern(std::size_t size) {
  std::string text(size, ' ');
  for (std::size_t i = 0; i < size; ++i) text[i] = static_cast<char>(i * 7 + i / 251);
  return text;
}

class HttpClientTest : public testing::Test {
 protected:
  platform::HttpOutcome Get(const std::string& url) {
    request.url = url;
    return client->Get(request, sink, stop.get_token());
  }

  std::unique_ptr<platform::HttpClient> client = platform::MakeHttpClient();
  FaultyServer server{"127.0.0.2"};
  platform::HttpRequest request;
  RecordingSink sink;
  std::stop_source stop;
};

struct AnswerCase {
  const char* name;
  Answer answer;
  HttpError error;
  int status;
  std::string body;  // what has reached the sink, unless the transfer failed
};

TEST_F(HttpClientTest, EveryAnswerIsToldForWhatItIs) {
  const std::string big = Pattern(300'000);
  const std::vector<AnswerCase> cases = {
      {"honest", support::Text("hello"), HttpError::None, 200, "hello"},
      {"big", support::Text(big), HttpError::None, 200, big},
      {"chunked", {.body = big, .framing = Answer::Framing::Chunked}, HttpError::None, 200, big},
      {"until close", {.body = big, .framing = Answer::Framing::UntilClose}, HttpError::None, 200, big},
      {"not found", support::Page(404, "<p>no"), HttpError::None, 404, "<p>no"},
      {"not modified", {.status = 304}, HttpError::None, 304, ""},
      {"cut", support::CutShort(big, 100'000), HttpError::CutShort, 200, ""},
      {"reset", support::CutShort(big, 100'000, Answer::Cut::Reset), HttpError::CutShort, 200, ""},
      {"announces more", {.body = "hello", .announced = "50"}, HttpError::CutShort, 200, ""},
      {"silent", support::Silent(), HttpError::Stalled, 0, ""},
      {"silent later", support::CutShort("hello", 2, Answer::Cut::Silence), HttpError::Stalled, 200, ""},
  };
  request.stallLimitMs = 400;
  for (const AnswerCase& test : cases) {
    SCOPED_TRACE(test.name);
    server.On("/file", test.answer);
    sink = {};
    const auto outcome = Get(server.Url("/file"));
    EXPECT_EQ(static_cast<int>(outcome.error), static_cast<int>(test.error));
    EXPECT_EQ(outcome.status, test.status);
    if (test.error != HttpError::CutShort) {
      EXPECT_EQ(outcome.systemError, 0u) << "no call of the system has failed: " << outcome.systemText;
    }
    EXPECT_EQ(sink.begun, test.status == 0 ? 0 : 1);
    EXPECT_TRUE(test.error != HttpError::None || sink.body == test.body);
  }
}

struct Ending {
  const char* name;
  std::vector<std::string> pieces;
  bool splitsLines = false;
};

// Every way in which a server may end what it sends in chunks (RFC 9112, 7.1), all of them followed by the
// end of the connection, so that the end of the body and of the connection can be mixed up.
TEST_F(HttpClientTest, ChunksThatEndedWellAreNeverTakenForCut) {
  const std::string head = "HTTP/1.1 200 OK\r\nConnection: close\r\nTransfer-Encoding: chunked\r\n\r\n";
  const std::string body = "5\r\nhello\r\n6\r\n world\r\n";
  const Ending endings[] = {
      {"all at once", {head + body + "0\r\n\r\n"}},
      {"last chunk with the data", {head, body + "0\r\n\r\n"}},
      {"last line apart", {head + body + "0\r\n", "\r\n"}},
      {"byte by byte", {head, body, "0", "\r", "\n", "\r", "\n"}, true},
      {"line ends split", {head + "5\r", "\nhello\r", "\n6\r", "\n world", "\r\n0\r", "\n\r", "\n"}, true},
      {"trailers apart", {head + body, "0\r\nX-Di", "gest: abc\r\n", "\r\n"}},
      {"extensions", {head + "5;a=b\r\nhello\r\n6;c=\"d\"\r\n world\r\n0;last\r\n\r\n"}},
  };
  request.stallLimitMs = 10'000;
  for (const Ending& ending : endings) {
    if (ending.splitsLines && support::LosesChunksWithSplitLines()) continue;
    for (const std::uint32_t pause : {0, 1, 15}) {
      for (const Answer::Cut then : {Answer::Cut::Close, Answer::Cut::Silence}) {
        SCOPED_TRACE(ending.name + std::string(", pause ") + std::to_string(pause));
        server.On("/chunks", {.cut = then, .paceMs = pause, .pieces = ending.pieces});
        sink = {};
        EXPECT_EQ(static_cast<int>(Get(server.Url("/chunks")).error), static_cast<int>(HttpError::None));
        EXPECT_EQ(sink.body, "hello world");
      }
    }
  }
}

TEST_F(HttpClientTest, ChunksThatStoppedInTheMiddleAreCut) {
  const std::string head = "HTTP/1.1 200 OK\r\nConnection: close\r\nTransfer-Encoding: chunked\r\n\r\n";
  const Ending endings[] = {
      {"after the head", {head}},
      {"in a chunk", {head + "5\r\nhel"}},
      {"in a size", {head + "5\r\nhello\r\n1"}},
      {"before the line end", {head + "5\r\nhello"}},
  };
  for (const Ending& ending : endings) {
    for (const Answer::Cut how : {Answer::Cut::Close, Answer::Cut::Reset}) {
      server.On("/chunks", {.cut = how, .paceMs = 5, .pieces = ending.pieces});
      EXPECT_NE(static_cast<int>(Get(server.Url("/chunks")).error), static_cast<int>(HttpError::None))
          << ending.name;
    }
  }
}

TEST_F(HttpClientTest, TellsWhyASecureChannelIsRefused) {
  const support::TlsServers servers;
  if (!servers.Running()) GTEST_SKIP() << "no openssl at hand";
  const support::TrustedAuthority trust(servers.Authority());
  request.stallLimitMs = 3'000;
  const auto good = Get(servers.Url("good"));
  // Its end is not looked at: this server closes the channel and waits for the other side to do so, too.
  EXPECT_EQ(good.status, 200) << static_cast<int>(good.error) << " " << good.systemText;
  EXPECT_NE(sink.body.find("<HTML>"), std::string::npos);
  std::set<std::pair<std::uint32_t, std::string>> told;
  for (const char* kind : {"expired", "stranger", "unknown"}) {
    sink = {};
    const auto outcome = Get(servers.Url(kind));
    EXPECT_EQ(static_cast<int>(outcome.error), static_cast<int>(HttpError::Insecure)) << kind;
    EXPECT_NE(outcome.systemError, 0u) << kind;
    EXPECT_EQ(sink.begun, 0) << kind;
    told.emplace(outcome.systemError, outcome.systemText);
  }
  const std::size_t causes = support::KeepsToItselfWhyACertificateIsRefused() ? 1 : 3;
  EXPECT_EQ(told.size(), causes) << "each is told apart from the others";
  sink = {};
  EXPECT_NE(Get(servers.Url("old")).error, HttpError::None);
  EXPECT_EQ(sink.begun, 0);
}

TEST_F(HttpClientTest, AHostIsReachedByItsNameWhicheverOfItsAddressesLives) {
  FaultyServer byName("127.0.0.1");  // the name may stand for an address of the newer kind, too
  byName.On("/file", support::Text("hello"));
  std::string url = byName.Url("/file");
  url.replace(url.find("127.0.0.1"), 9, "localhost");
  EXPECT_TRUE(Get(url).Complete());
  EXPECT_EQ(sink.body, "hello");
}

TEST_F(HttpClientTest, NoNonsenseCountsAsAnAnswer) {
  request.connectLimitMs = 400;
  server.On("/garbage", support::Garbage());
  EXPECT_NE(Get(server.Url("/garbage")).error, HttpError::None);
  EXPECT_NE(Get(server.Url("/", "https")).error, HttpError::None)
      << "a plain server asked for a secure channel";
  EXPECT_EQ(sink.begun, 0);
  for (const char* url :
       {"", "Online.txt", "ftp://127.0.0.1/x", "http://", "file:///etc/passwd", "http:///x"}) {
    EXPECT_EQ(Get(url).error, HttpError::BadUrl) << url;
  }
}

TEST_F(HttpClientTest, AWrongLengthNeverAddsBytes) {
  server.On("/less", {.body = "hello", .announced = "2"});
  const auto less = Get(server.Url("/less"));
  EXPECT_TRUE(less.error == HttpError::CutShort || sink.body == "he") << sink.body;
  for (const char* announced : {"abc", "-5", "99999999999999999999999"}) {
    server.On("/nonsense", {.body = "hello", .announced = announced});
    sink = {};
    const auto outcome = Get(server.Url("/nonsense"));
    EXPECT_TRUE(outcome.error != HttpError::None || sink.body == "hello") << announced;
    EXPECT_FALSE(sink.head.contentLength.has_value()) << announced;
  }
}

TEST_F(HttpClientTest, SendsWhatItIsToldAndResolvesDots) {
  request.headers = {{"If-None-Match", "\"7\""}};
  Get(server.Url("/update/kvn2011/../../web/./a b.php?op=complete#top"));
  const auto seen = server.Seen();
  ASSERT_EQ(seen.size(), 1u);
  EXPECT_EQ(seen[0].method, "GET");
  EXPECT_EQ(seen[0].target, "/web/a%20b.php?op=complete");
  EXPECT_EQ(seen[0].Header("if-none-match"), "\"7\"");
  EXPECT_EQ("http://" + seen[0].Header("host") + "/", server.Url("/"));
}

TEST_F(HttpClientTest, FollowsOnlyHonestRedirects) {
  FaultyServer other("127.0.0.3");
  other.On("/there", support::Text("arrived"));
  server.On("/file", support::Text("here"));
  server.On("/loop", support::Redirect("/loop"));
  const struct {
    std::string to;
    HttpError error;
    std::string body;
  } cases[] = {
      {other.Url("/there"), HttpError::None, "arrived"},
      {"/x/../file", HttpError::None, "here"},
      {"ftp://127.0.0.1/file", HttpError::RefusedRedirect, ""},
      {"file:///etc/passwd", HttpError::RefusedRedirect, ""},
      {"javascript:alert(1)", HttpError::RefusedRedirect, ""},
      {"/loop", HttpError::RefusedRedirect, ""},
  };
  for (const int status : {301, 302, 307}) {
    for (const auto& test : cases) {
      SCOPED_TRACE(test.to);
      server.On("/from", support::Redirect(test.to, status));
      sink = {};
      EXPECT_EQ(static_cast<int>(Get(server.Url("/from")).error), static_cast<int>(test.error));
      EXPECT_EQ(sink.body, test.body);
    }
  }
  EXPECT_LE(server.Count("/loop"), 3 * 11u);
  EXPECT_FALSE(base::RedirectAllowed("https://a/", "http://a/"));
}

TEST_F(HttpClientTest, GivesUpWhereNobodyListens) {
  const support::ClosedPort closed("127.0.0.4");
  const auto refused = Get(closed.Url());
  EXPECT_EQ(refused.error, HttpError::CannotConnect);
  EXPECT_NE(refused.systemError, 0u);
  const support::DeafPort deaf("127.0.0.4");
  request.connectLimitMs = 400;
  EXPECT_EQ(Get(deaf.Url()).error, HttpError::CannotConnect);
  EXPECT_EQ(sink.begun, 0);
}

TEST_F(HttpClientTest, TheWholeLimitEndsATrickle) {
  server.On("/trickle", {.body = Pattern(100'000), .paceBytes = 5, .paceMs = 20});
  request.wholeLimitMs = 300;
  EXPECT_EQ(Get(server.Url("/trickle")).error, HttpError::Stalled);
}

TEST_F(HttpClientTest, StopsWhenToldAndWhenTheSinkIsFull) {
  server.On("/silent", support::Silent());
  server.On("/hold", support::CutShort("hello", 2, Answer::Cut::Silence));
  {
    std::jthread later([this] {
      while (server.Count("/silent") == 0) std::this_thread::yield();
      stop.request_stop();
    });
    EXPECT_EQ(Get(server.Url("/silent")).error, HttpError::Cancelled);
  }
  EXPECT_EQ(Get(server.Url("/hold")).error, HttpError::Cancelled) << "stopped before it began";
  stop = std::stop_source();
  sink.onWrite = [this] { stop.request_stop(); };
  EXPECT_EQ(Get(server.Url("/hold")).error, HttpError::Cancelled) << "stopped while the body came";
  stop = std::stop_source();
  server.On("/big", support::Text(Pattern(1'000'000)));
  sink = {};
  sink.limit = 1000;
  EXPECT_EQ(Get(server.Url("/big")).error, HttpError::Refused);
}

TEST_F(HttpClientTest, UsesAConnectionAgainAndManyAtOnce) {
  server.On("/file", support::Text("x"));
  for (int i = 0; i < 20; ++i) ASSERT_TRUE(Get(server.Url("/file")).Complete());
  EXPECT_EQ(server.Connections(), 1u);
  server.On("/slow", {.body = Pattern(50'000), .waitMs = 20});
  std::vector<std::jthread> threads;
  std::atomic<int> complete = 0;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&] {
      RecordingSink own;
      const auto outcome = client->Get({.url = server.Url("/slow")}, own, {});
      if (outcome.Complete() && own.body == Pattern(50'000)) ++complete;
    });
  }
  threads.clear();
  EXPECT_EQ(complete, 8);
}

}  // namespace
