#include <gtest/gtest.h>

#include <future>

#include "startup/blocking.hpp"
#include "support/web_world.hpp"
#include "web/answer_cache.hpp"
#include "web/body_text.hpp"
#include "web/http_date.hpp"

namespace {

using support::Answer;
using support::FaultyServer;
using support::WebWorld;

class TransferTest : public testing::Test {
 protected:
  std::string Scratch(const char* name) {
    const std::string path = world.folders.Scratch(name);
    return platform::IsFile(path) ? platform::ReadWhole(path, 1 << 30) : "(none)";
  }
  std::string Target() { return world.folder / "game/target.zip"; }
  std::size_t FileCount() { return platform::ListTree(world.folder.Path()).size(); }
  void Download(const std::string& path) {
    world.state.Finished = true;
    world.transfers.DownloadUrlToFile(server.Url(path), Target());
  }

  static bool IsConditional(const support::SeenRequest& request) {
    return !request.Header("if-none-match").empty() || !request.Header("if-modified-since").empty();
  }
  std::ptrdiff_t ConditionalRequests() const {
    const auto seen = server.Seen();
    return std::count_if(seen.begin(), seen.end(), &IsConditional);
  }

  FaultyServer server{"127.0.0.5"};
  WebWorld world;
};

TEST_F(TransferTest, TextsAreTakenWhateverTheirStatusButOnlyWhole) {
  const struct {
    const char* name;
    Answer answer;
    std::string text, copy;
  } cases[] = {
      {"honest", support::Text("noticias"), "noticias", "noticias"},
      {"page", support::Page(404, "<p>no"), "<p>no", "(none)"},
      {"cut", support::CutShort("1 whole answer", 1), "", "(none)"},
      {"garbage", support::Garbage(), "", "(none)"},
      {"huge", support::Text(std::string(16 * 1024 * 1024 + 1, 'x')), "", "(none)"},
      {"largest", support::Text(std::string(16 * 1024 * 1024, 'x')), std::string(16 * 1024 * 1024, 'x'),
       std::string(16 * 1024 * 1024, 'x')},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.name);
    platform::TryRemoveFile(world.folders.Scratch("Tmp.tmp"));
    server.On("/text", test.answer);
    EXPECT_TRUE(world.transfers.GetHttpText(server.Url("/text")).text == test.text);
    EXPECT_TRUE(Scratch("Tmp.tmp") == test.copy);
  }
  EXPECT_EQ(server.Seen()[0].Header("content-type"), "application/x-www-form-urlencoded");
}

TEST_F(TransferTest, AnUnreachableHostIsNamed) {
  const support::ClosedPort closed("127.0.0.6");
  for (const char* path : {"/update/kvn2011/", "/files/update/kvn2011/"}) {
    world.frmMain.lblName.Caption = "";
    world.Use(closed.Url(path));
    EXPECT_EQ(world.transfers.GetHttpText(closed.Url("/x")).text, "");
    EXPECT_EQ(world.frmMain.lblName.Caption.Get(), "No se pudo acceder a " + closed.Url(""));
  }
  world.frmMain.lblName.Caption = "";
  server.On("/cut", support::CutShort("hello", 1));
  world.transfers.GetHttpText(server.Url("/cut"));
  EXPECT_EQ(world.frmMain.lblName.Caption.Get(), "") << "a host that answers is no unreachable one";
}

TEST_F(TransferTest, BodiesAreDecoded) {
  const struct {
    const char *contentType, *bytes, *text;
  } cases[] = {
      {"text/plain", "a\xC3\xB1o", "año"},
      {"text/plain", "a\xF1o", "año"},
      {"text/html; charset=ISO-8859-1", "\xC3\xB1", "Ã±"},
      {"text/html; charset=utf-8",
       "\xEF\xBB\xBF"
       "1",
       "1"},
      {"text/html; charset=iso-8859-1", "\xEF\xBB\xBF\xC3\xB1", "ñ"},
      {"", "\xF0\x9F\x90\x89 \xE2\x82\xAC", "\xF0\x9F\x90\x89 €"},
      {"", "\xED\xA0\x80", "\xC3\xAD\xC2\xA0\xE2\x82\xAC"},  // half of a surrogate pair is no UTF-8
      {"", "\xC0\xAF", "\xC3\x80\xC2\xAF"},                  // nor is a longer form than needed
      {"", "x\xE2\x82", "x\xC3\xA2\xE2\x80\x9A"},            // nor a cut one
  };
  for (const auto& test : cases)
    EXPECT_EQ(web::BodyText(test.contentType, test.bytes), test.text) << test.text;
}

TEST_F(TransferTest, DownloadsAreWholeOrNotAtAll) {
  std::string big(3'000'000, 'b');
  for (std::size_t i = 0; i < big.size(); i += 997) big[i] = static_cast<char>(i);
  const struct {
    const char* name;
    Answer answer;
    bool finished;
    std::string copy;
  } cases[] = {
      {"archive", support::Text(big), true, big},
      {"empty", support::Text(""), true, ""},
      {"error page", support::Page(404, "<p>no"), true, "(none)"},
      {"cut", support::CutShort(big, 1'000'000), false, "(none)"},
      {"garbage", support::Garbage(), false, "(none)"},
      {"other scheme", support::Redirect("file:///etc/passwd"), false, "(none)"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.name);
    platform::TryRemoveFile(Target());
    platform::TryRemoveFile(world.folders.Scratch("tmp.tmp"));
    server.On("/archive", test.answer);
    Download("/archive");
    EXPECT_EQ(world.state.Finished, test.finished);
    EXPECT_EQ(platform::IsFile(Target()), test.finished);
    EXPECT_TRUE(!test.finished || world.folder.Get("game/target.zip") == test.answer.body);
    EXPECT_TRUE(Scratch("tmp.tmp") == test.copy);
    EXPECT_EQ(FileCount(), (test.finished ? 1u : 0u) + (test.copy == "(none)" ? 0u : 1u)) << "a leftover";
  }
  EXPECT_TRUE(world.host.dialogs.shown.empty());
}

TEST_F(TransferTest, AnExistingTargetIsNeitherTouchedNorAskedFor) {
  world.folder.Put("game/target.zip", "old");
  server.On("/archive", support::Text("new"));
  Download("/archive");
  EXPECT_FALSE(world.state.Finished);
  EXPECT_EQ(world.folder.Get("game/target.zip"), "old");
  EXPECT_TRUE(server.Seen().empty());
}

TEST_F(TransferTest, TheDownloadServiceTakesOnlySuccess) {
  server.On("/file", support::Text("new"));
  server.On("/cut", support::CutShort("newer", 2));
  EXPECT_FALSE(world.transfers.DownloadFile(server.Url("/missing"), Target()));
  EXPECT_FALSE(platform::IsFile(Target()));
  world.folder.Put("game/target.zip", "old");
  EXPECT_FALSE(world.transfers.DownloadFile(server.Url("/cut"), Target()));
  EXPECT_EQ(world.folder.Get("game/target.zip"), "old");
  EXPECT_TRUE(world.transfers.DownloadFile(server.Url("/file"), Target()));
  EXPECT_EQ(world.folder.Get("game/target.zip"), "new");
  EXPECT_FALSE(world.transfers.DownloadFile(server.Url("/file"), world.folder / "no such folder/x"));
}

TEST_F(TransferTest, ALongDownloadMovesAndTheWindowAnswers) {
  server.On("/slow", {.body = std::string(300'000, 'x'), .paceBytes = 5'000, .paceMs = 10});
  std::vector<double> bar;
  world.When(
      [&] {
        if (bar.empty() || bar.back() != world.frmMain.ProgressBar1.Value.Get()) {
          bar.push_back(world.frmMain.ProgressBar1.Value.Get());
        }
        return false;
      },
      [] {});
  Download("/slow");
  EXPECT_TRUE(world.state.Finished);
  EXPECT_GT(bar.size(), 5u);
  EXPECT_TRUE(std::is_sorted(bar.begin(), bar.end()));
  EXPECT_EQ(world.frmMain.ProgressBar1.Max.Get(), 293);
  EXPECT_EQ(world.frmMain.ProgressBar1.Value.Get(), 293);
  EXPECT_EQ(world.frmMain.lblsize.Caption.Get(), "293kb");
  EXPECT_TRUE(world.frmMain.lblVelocity.Caption.Get().starts_with("293kb de 293kb a "))
      << world.frmMain.lblVelocity.Caption.Get();
}

TEST_F(TransferTest, WhoeverLeavesDoesNotWait) {
  server.On("/hold", support::CutShort(std::string(5000, 'x'), 2000, Answer::Cut::Silence));
  const std::pair<const char*, std::function<void()>> leaving[] = {
      {"cancel", [this] { world.state.CancelRequested = true; }},
      {"end", [this] { world.lifetime.End(0); }},
  };
  for (const auto& [name, leave] : leaving) {
    SCOPED_TRACE(name);
    server.Forget();
    world.When([this] { return server.Count("/hold") == 1; }, leave);
    Download("/hold");
    EXPECT_FALSE(world.state.Finished);
    EXPECT_EQ(FileCount(), 0u);
    world.state.CancelRequested = false;
  }
  Download("/hold");
  EXPECT_EQ(world.inet.OpenURL(server.Url("/hold")).text, "");
  EXPECT_EQ(server.Count("/hold"), 1u) << "nothing is asked for once the program ends";
}

TEST_F(TransferTest, BlockingWorkHandsItsFailureOver) {
  EXPECT_THROW(
      startup::RunBlocking(world.services, [](std::stop_token) { throw std::runtime_error("lost"); }),
      std::runtime_error);
}

TEST_F(TransferTest, BlockingWorkNestsAndIsLookedAtOnceMoreWhenItHasEnded) {
  int innerRuns = 0, rounds = 0;
  world.When([] { return true; },
             [&] { startup::RunBlocking(world.services, [&](std::stop_token) { ++innerRuns; }); });
  std::promise<void> nested, ended;
  const auto work = [&](std::stop_token) {
    nested.get_future().wait();
    ended.set_value_at_thread_exit();
  };
  startup::RunBlocking(world.services, work, [&] {
    if (innerRuns == 0 || ++rounds > 1) return;
    nested.set_value();
    ended.get_future().wait();
  });
  EXPECT_EQ(innerRuns, 1);
  EXPECT_EQ(rounds, 2);
}

TEST_F(TransferTest, FreshAnswersAreUsedAgain) {
  web::AnswerCache cache;
  const auto ask = [&](bool viaInet) {
    const web::TextOptions options{.cache = &cache};
    const std::string url = server.Url("/news");
    const std::size_t before = server.Seen().size();
    const web::TextAnswer answer =
        viaInet ? world.inet.OpenURL(url, options) : world.transfers.GetHttpText(url, options);
    EXPECT_EQ(answer.asked, server.Seen().size() > before);
    EXPECT_TRUE(answer.report.Arrived());
    return answer.text;
  };
  const struct {
    const char* name;
    support::Headers headers;
    bool tagged;
    std::size_t asked;  // requests of three questions, 40 seconds apart
    int conditional;    // how many of them may be answered 304
  } cases[] = {
      {"nothing said", {}, false, 3, 0},
      {"for a minute", {{"Cache-Control", "public, max-age=60"}}, false, 2, 0},
      {"tag", {}, true, 3, 2},
      {"must ask", {{"Cache-Control", "no-cache, max-age=60"}}, true, 3, 2},
      {"must not keep", {{"Cache-Control", "no-store, max-age=60"}}, true, 3, 0},
      {"for ever", {{"Cache-Control", "max-age=99999999999999999999999"}}, false, 1, 0},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.name);
    cache.Forget(server.Url("/news"));
    server.Forget();
    if (test.tagged) {
      server.On("/news", support::Tagged("noticia", "\"v1\"", test.headers));
    } else {
      server.On("/news", support::Text("noticia", test.headers));
    }
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(ask(i % 2 == 1), "noticia");
      world.host.clock.Step(40'000);
    }
    EXPECT_EQ(server.Seen().size(), test.asked);
    EXPECT_EQ(ConditionalRequests(), test.conditional);
  }
  server.On("/news", support::Page(500, "oh"));
  world.host.clock.Step(100'000'000);
  EXPECT_EQ(ask(false), "oh");
}

// Four questions, 20 seconds apart, to a server that says nothing of how long its answer holds.
TEST_F(TransferTest, AFileThatNobodyCalledFreshIsSparedForHalfAMinuteAtMost) {
  const std::string sent = "Sat, 21 Nov 2026 10:00:00 GMT", old = "Fri, 20 Nov 2026 10:00:00 GMT",
                    recent = "Sat, 21 Nov 2026 09:58:20 GMT", soon = "Sat, 21 Nov 2026 10:00:50 GMT";
  const struct {
    const char* name;
    support::Headers headers;
    std::size_t asked;
    int conditional;
  } cases[] = {
      {"a script", {}, 4, 0},
      {"changed yesterday", {{"Date", sent}, {"Last-Modified", old}}, 2, 1},
      {"changed 100 seconds ago", {{"Date", sent}, {"Last-Modified", recent}}, 4, 3},
      {"expires in 50 seconds", {{"Date", sent}, {"Expires", soon}}, 2, 0},
      {"expired", {{"Date", sent}, {"Last-Modified", old}, {"Expires", "0"}}, 4, 3},
      {"told otherwise", {{"Cache-Control", "no-cache"}, {"Date", sent}, {"Last-Modified", old}}, 4, 3},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.name);
    web::AnswerCache cache;
    const int dated = !test.headers.empty() && test.headers[0].first == "Date";
    server.Forget();
    server.On("/file", [&](const support::SeenRequest& request) {
      return IsConditional(request)
                 ? Answer{.status = 304, .headers = {test.headers.begin(), test.headers.begin() + dated}}
                 : support::Text("noticia", test.headers);
    });
    for (int i = 0; i < 4; ++i) {
      EXPECT_EQ(world.transfers.GetHttpText(server.Url("/file"), {.cache = &cache}).text, "noticia");
      world.host.clock.Step(20'000);
    }
    EXPECT_EQ(server.Seen().size(), test.asked);
    EXPECT_EQ(ConditionalRequests(), test.conditional);
  }
}

TEST(HttpDate, OnlyTheFormOfTodayIsRead) {
  EXPECT_EQ(web::FromHttpDate("Sun, 06 Nov 1994 08:49:37 GMT"), 784111777);
  EXPECT_EQ(web::FromHttpDate("Thu, 29 Feb 2024 23:59:60 GMT"), 1709251200);
  for (const char* bad :
       {"", "Sunday, 06-Nov-94 08:49:37 GMT", "Sun Nov  6 08:49:37 1994", "Sun, 06 Nov 1994 08:49:37 EST",
        "Sun, 31 Feb 2024 08:49:37 GMT", "Sun, 06 Nov 1994 24:49:37 GMT", "Sun, -6 Nov 1994 08:49:37 GMT",
        "Sun, 06-Nov-1994 08:49:37 GMT", "Sun, 06 Nov 1994 08.49.37 GMT", "Sun, 06 Nov 1994 08:-0:37 GMT"}) {
    EXPECT_EQ(web::FromHttpDate(bad), std::nullopt) << bad;
  }
}

TEST(AnswerCache, WhatAServerSaysIsNeverTwoLinesOfTheNextRequest) {
  for (const char* tag : {"\"v1\"\rX-Planted: yes", "\"v1\nX-Planted: yes\""}) {
    web::AnswerCache cache;
    const platform::HttpHead head{200, 1, {{"etag", tag}, {"cache-control", "max-age=9"}}};
    EXPECT_EQ(cache.Take("http://mirror/", head, "1", 0), "1");
    EXPECT_TRUE(cache.Conditions("http://mirror/").empty()) << tag;
    EXPECT_EQ(cache.Fresh("http://mirror/", 8'000), "1");
  }
}

TEST_F(TransferTest, TheControlDeliversInChunks) {
  std::string big(1'000'000, 'c');
  for (std::size_t i = 0; i < big.size(); i += 991) big[i] = static_cast<char>(i);
  server.On("/big", support::Text(big));
  server.On("/cut", support::CutShort(big, 5000));
  const support::ClosedPort closed("127.0.0.6");
  std::vector<int> states;
  std::string body;
  world.inet.StateChanged += [&](int state) {
    states.push_back(state);
    if (state != web::kStateResponseCompleted) return;
    for (auto chunk = world.inet.GetChunk(1024); !chunk.empty(); chunk = world.inet.GetChunk(1024)) {
      EXPECT_LE(chunk.size(), 1024u);
      body.append(reinterpret_cast<const char*>(chunk.data()), chunk.size());
    }
  };
  const struct {
    std::string url;
    int state;
    bool failed;
    std::string body;
  } cases[] = {
      {server.Url("/big"), web::kStateResponseCompleted, false, big},
      {server.Url("/cut"), web::kStateResponseCompleted, true, big.substr(0, 5000)},
      {closed.Url("/big"), web::kStateError, true, ""},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.url);
    states.clear();
    body.clear();
    world.inet.Execute(test.url);
    EXPECT_TRUE(world.inet.StillExecuting());
    EXPECT_EQ(world.inet.OpenURL(server.Url("/other")).text, "") << "one request at a time";
    world.inet.Execute(server.Url("/other"));
    ASSERT_TRUE(world.PumpUntil([&] { return !world.inet.StillExecuting(); }));
    EXPECT_EQ(states, std::vector<int>{test.state});
    EXPECT_TRUE(test.failed ? test.body.starts_with(body) : test.body == body);
    EXPECT_EQ(world.inet.BodyFailed(), test.failed);
    EXPECT_EQ(world.inet.GetHeader("Content-length"), test.state == web::kStateError ? "" : "1000000");
  }
  EXPECT_EQ(server.Count("/other"), 0u);
}

TEST_F(TransferTest, ACancelledControlIsFreeAtOnce) {
  server.On("/hold", support::CutShort(std::string(9'000'000, 'x'), 8'000'000, Answer::Cut::Silence));
  server.On("/text", support::Text("hello"));
  int states = 0;
  world.inet.StateChanged += [&](int) { ++states; };
  for (int i = 0; i < 3; ++i) {
    world.inet.Execute(server.Url("/hold"));
    ASSERT_TRUE(world.PumpUntil([&] { return states == i + 1; }));
    EXPECT_TRUE(world.inet.StillExecuting());
    world.inet.Cancel();
    EXPECT_EQ(world.inet.OpenURL(server.Url("/text")).text, "hello");
  }
  world.inet.SetRequestTimeout(1);
  EXPECT_EQ(world.inet.OpenURL(server.Url("/hold")).text, "") << "the request time-out";
  world.inet.Execute(server.Url("/hold"));  // and the end of the test does not wait for it either
}

TEST(AddressChecks, AcceptAndRefuse) {
  const std::string longList = "1:2:3:4:5:6:7:8:9:10:11:12:13:14:15:16:17:18:19:20:21:22:23:24:25:26";
  const auto expect = [](auto check, const std::vector<std::string>& good,
                         const std::vector<std::string>& bad) {
    for (const std::string& text : good) EXPECT_TRUE(check(text)) << text;
    for (const std::string& text : bad) EXPECT_FALSE(check(text)) << text;
  };
  const auto inRange = [](int kind) {
    return [kind](const std::string& text) { return web::IsInRange(text, kind); };
  };
  expect(web::IsTextToken, {"", "abc XYZ", "09az", "a:b", "\xC3\xBF"},
         {"a-b", "1.2", "x\n", "{", "\xC3\xB1"});
  expect(inRange(0), {"0", "255", "1.5"}, {"", "-1", "256", "x"});
  expect(inRange(2), {"-2147483648", "2147483647"}, {"2147483648", "1e99"});
  expect(web::IsDottedAddress, {"1.2.3.4", "255.255.255.255"},
         {"", "1.2.3", "1.2.3.4.5", "1.2.3.256", "a.b.c.d", "1..2.3"});
  expect(web::IsColonList, {"2001:db8::1", "Null", longList},
         {"", " ", "Null No AU", "a-b", longList + ":27"});
}

}  // namespace
