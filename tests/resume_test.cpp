// Interrupted downloads go on where they stopped, and what is wanted next is fetched ahead.
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <utility>

#include "platform/files.hpp"
#include "support/launcher_run.hpp"
#include "support/web_world.hpp"
#include "web/fetch_ahead.hpp"

namespace {

using support::Answer;
using support::FaultyServer;
using support::SeenRequest;

std::string Body(std::size_t size) {
  std::string body(size, ' ');
  for (std::size_t i = 0; i < size; ++i) body[i] = static_cast<char>(i * 31 + i / 256);
  return body;
}

const std::string kWhole = Body(2'000'000);
constexpr std::size_t kCut = 1'300'000;
const support::Headers kRanges = {{"ETag", "\"v1\""}, {"Accept-Ranges", "bytes"}};

struct ResumeTest : testing::Test, support::WebWorld {
  web::TransferReport Fetch(const std::string& path = "/a.zip", const web::Expected& expected = {}) {
    platform::TryRemoveFile(target);
    return transfers.DownloadUrlToFile(server.Url(path), target, expected, part);
  }
  // The first transfer is cut.
  void Interrupt(const support::Headers& headers) {
    Answer cut = support::CutShort(kWhole, kCut);
    cut.headers = headers;
    server.On("/a.zip", cut);
    EXPECT_FALSE(Fetch().Good());
    EXPECT_FALSE(platform::IsFile(target));
    server.Forget();
  }
  static Answer Rest(std::size_t from, const std::string& tag = "\"v1\"") {
    return {.status = 206,
            .headers = {{"ETag", tag},
                        {"Content-Range", "bytes " + std::to_string(from) + "-" +
                                              std::to_string(kWhole.size() - 1) + "/" +
                                              std::to_string(kWhole.size())}},
            .body = kWhole.substr(from)};
  }
  std::size_t Came() const {
    const auto stamp = platform::StampOf(part);
    return stamp ? static_cast<std::size_t>(stamp->size) : 0;
  }

  FaultyServer server;
  const std::string target = folder / "game/a.zip",
                    part = folders.Scratch("parts") + platform::kSeparator + "a";
};

TEST_F(ResumeTest, GoesOnOnlyWithTheSameFileOfTheSameServer) {
  using Then = std::function<Answer(const SeenRequest&, std::size_t came)>;
  const Then whole = [](auto&, std::size_t) { return support::Text(kWhole); };
  // The whole when no part is asked for.
  const auto forAPart = [](std::function<Answer(std::size_t came)> part) -> Then {
    return [part](const SeenRequest& request, std::size_t came) {
      return request.Header("range").empty() ? support::Text(kWhole) : part(came);
    };
  };
  const support::Headers noRanges = {{"ETag", "\"v1\""}},
                         weakTag = {{"ETag", "W/\"v1\""}, {"Accept-Ranges", "bytes"}};
  const struct {
    const char* name;
    support::Headers first;
    Then then;
    bool asksForRest;
    std::size_t requests;
    bool lastForRest;
    std::function<void()> tamper{};  // with what lies there
  } cases[] = {
      {"the rest", kRanges, [](auto&, std::size_t came) { return Rest(came); }, true, 1, true},
      {"another file by now", kRanges, whole, true, 1, true},
      {"another part", kRanges, forAPart([](std::size_t came) { return Rest(came - 1); }), true, 2, false},
      {"a part of another file", kRanges, forAPart([](std::size_t came) { return Rest(came, "\"v2\""); }),
       true, 2, false},
      {"no such part", kRanges, forAPart([](std::size_t) { return support::Page(416, "no"); }), true, 2,
       false},
      {"no ranges", noRanges, whole, false, 1, false},
      {"a weak tag", weakTag, whole, false, 1, false},
      {"an unreadable note", kRanges, whole, false, 1, false,
       [&] { platform::WriteWhole(part + ".txt", "nonsense\n\n\n\n\n"); }},
      {"a grown part", kRanges, whole, false, 1, false, [&] { platform::AppendTo(part, kWhole); }},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.name);
    Interrupt(test.first);
    const std::size_t came = Came();
    EXPECT_EQ(came > 0, test.asksForRest || test.tamper);
    if (test.tamper) test.tamper();
    server.On("/a.zip", [&](const SeenRequest& request) { return test.then(request, came); });
    const web::TransferReport report = Fetch();
    EXPECT_TRUE(report.Good()) << report.Details();
    EXPECT_TRUE(platform::ReadWhole(target, 1 << 24) == kWhole);
    const auto seen = server.Seen();
    ASSERT_EQ(seen.size(), test.requests);
    const std::string rest = "bytes=" + std::to_string(came) + "-";
    EXPECT_EQ(seen[0].Header("range"), test.asksForRest ? rest : "");
    EXPECT_EQ(seen[0].Header("if-range"), test.asksForRest ? "\"v1\"" : "");
    EXPECT_EQ(seen.back().Header("range"), test.lastForRest ? rest : "");
    EXPECT_EQ(Came(), 0u) << "it is of no more use";
    EXPECT_TRUE(platform::ListFolder(folders.Scratch("parts")).empty());
  }
}

TEST_F(ResumeTest, WhatLiesThereOfAnotherAddressIsDropped) {
  Interrupt(kRanges);
  server.On("/b.zip", support::Text("another"));
  EXPECT_TRUE(Fetch("/b.zip").Good());
  EXPECT_EQ(server.Seen()[0].Header("range"), "");
  EXPECT_EQ(Came(), 0u);
}

// A mirror that goes on with it without a length could otherwise fill the disk.
TEST_F(ResumeTest, MoreThanThereMustBeByNowBeginsAgain) {
  Interrupt(kRanges);
  const std::size_t came = Came();
  const std::string small = Body(1'000);
  server.On("/a.zip", [&](const SeenRequest& request) {
    if (request.Header("range").empty()) return support::Text(small);
    Answer rest = Rest(came);
    rest.framing = Answer::Framing::Chunked;
    return rest;
  });
  const web::TransferReport report = Fetch("/a.zip", {small.size()});
  EXPECT_TRUE(report.Good()) << report.Details();
  EXPECT_TRUE(platform::ReadWhole(target, 1 << 24) == small);
}

// A whole launcher: the line goes silent in the second archive, and the player closes it and starts it again.
TEST(Resume, AcrossAStartOfTheLauncher) {
  support::LauncherRun run;
  run.mirror.AddPatch("Mapas", {{"RECURSOS/MAPAS1/1.map", "uno"}});
  run.mirror.AddPatch("Mapas", {{"RECURSOS/MAPAS1/2.map", kWhole, true}});
  run.mirror.AddBinFile("KVN-DX8.exe", "el cliente");
  run.mirror.Publish();
  const std::string path = run.mirror.PathOf("OldAct/Mapas/Mapas2.zip");
  const std::string whole = run.mirror.server.AnswerFor({"GET", path, {}}).body;
  Answer cut = support::CutShort(whole, kCut, Answer::Cut::Silence);
  cut.headers = kRanges;
  run.mirror.server.On(path, cut);
  const std::string part = run.PathOf("RECURSOS/INIT/UPDATE/parts/MapasMapas2.zip");
  const auto close = run.machine.events->Timers().Start(1, [&] {
    const auto stamp = platform::StampOf(part);
    if (stamp && stamp->size > 100'000 && !run.Launched().Life().Ending())
      run.Launched().MainWindow().KeyDown(controls::kKeyEscape);
  });
  run.machine.clock.stepOnRead = 1;  // also while the launcher waits
  run.PlayToTheEnd();
  run.machine.events->Timers().Stop(close);
  EXPECT_FALSE(run.Has("MapasMapas2.zip"));
  std::string range;
  run.mirror.server.On(path, [&](const SeenRequest& request) {
    range = request.Header("range");
    const std::size_t from = range.empty() ? 0 : std::stoul(range.substr(6));
    return Answer{.status = range.empty() ? 200 : 206,
                  .headers = {{"Content-Range", "bytes " + std::to_string(from) + "-" +
                                                    std::to_string(whole.size() - 1) + "/" +
                                                    std::to_string(whole.size())}},
                  .body = whole.substr(from)};
  });
  run.PlayToTheEnd();
  EXPECT_NE(range, "") << "it went on where it had stopped";
  EXPECT_EQ(run.GameFiles(), run.mirror.Expected());
}

struct AheadTest : testing::Test, support::WebWorld {
  web::FileRequest Request(const std::string& path) { return {.url = server.Url(path), .path = {}}; }
  std::vector<web::FileRequest> Requests(const std::vector<std::string>& paths) {
    std::vector<web::FileRequest> requests;
    for (const std::string& path : paths) requests.push_back(Request(path));
    return requests;
  }
  std::string Order() {
    std::string order;
    for (const std::string& target : server.Targets()) order += target.substr(1);
    return order;
  }
  std::size_t Files() const { return platform::IsFolder(scratch) ? platform::ListFolder(scratch).size() : 0; }

  FaultyServer server;
  const std::string scratch = folders.Scratch("ahead");
  web::FetchAhead ahead{*host.http, scratch};
};

TEST_F(AheadTest, StaysWithinItsLimitsAndInOrder) {
  server.Otherwise([](const SeenRequest&) { return support::Text(std::string(1'000, 'x')); });
  server.On("/d", support::Silent());
  folder.Put("game/RECURSOS/INIT/UPDATE/ahead/1", "what a killed launcher left");
  ahead.Want(Requests({"/a", "/b", "/c", "/d", "/e", "/f"}), {.files = 3, .bytes = 1 << 20});
  ASSERT_TRUE(PumpUntil([&] { return Files() == 3; }));
  EXPECT_EQ(Order(), "abc");
  const auto item = ahead.Claim(server.Url("/a"));
  ASSERT_TRUE(item);
  EXPECT_TRUE(item->Wait(folder / "a", {}).kept);
  EXPECT_EQ(folder.Get("a").size(), 1'000u);
  ASSERT_TRUE(PumpUntil([&] { return Order() == "abcd"; }));
  EXPECT_EQ(ahead.Claim(server.Url("/f")), nullptr) << "not begun";
  ahead.Want(Requests({"/z"}), {});
  ASSERT_TRUE(PumpUntil([&] { return Order() == "abcdz"; })) << "what is given up has not failed";
  ahead.Stop();
  EXPECT_FALSE(platform::IsFolder(scratch)) << "what nobody claimed is gone";
  EXPECT_TRUE(platform::IsFile(folder / "a"));
}

TEST_F(AheadTest, StopsBehindAFailureAndBeforeALargeFile) {
  const struct {
    Answer second;
    std::optional<std::uint64_t> known;
    bool claimed;
    std::string order;
  } cases[] = {{support::Page(404, "no"), {}, true, "ab"},
               {support::Text(std::string(5'000, 'x')), {}, false, "ab"},
               {support::Text("x"), 5'000, false, "a"}};
  for (const auto& test : cases) {
    server.Forget();
    server.Otherwise([](const SeenRequest&) { return support::Text("x"); });
    server.On("/b", test.second);
    std::vector<web::FileRequest> requests = Requests({"/a", "/b", "/c"});
    requests[1].expected.size = test.known;
    ahead.Want(std::move(requests), {.files = 4, .bytes = 4'000});
    ASSERT_TRUE(PumpUntil([&] { return Order() == test.order; }));
    const auto first = ahead.Claim(server.Url("/a"));
    ASSERT_TRUE(first);
    EXPECT_TRUE(first->Wait(folder / "a", {}).report.Good());
    const auto second = test.known ? nullptr : ahead.Claim(server.Url("/b"));
    if (test.claimed) {
      ASSERT_TRUE(second);
      EXPECT_FALSE(second->Wait(folder / "b", {}).report.Good());
    }
    EXPECT_EQ(ahead.Claim(server.Url("/c")), nullptr);
    ahead.Stop();
    EXPECT_EQ(Order(), test.order);
    platform::RemoveFile(folder / "a");
    platform::TryRemoveFile(folder / "b");
  }
}

TEST_F(AheadTest, TakesWhatFillsTheLimitToTheByteAndNothingBesideIt) {
  const std::string full(4'000, 'x');
  server.Otherwise([&](const SeenRequest&) { return support::Text(full); });
  for (const std::optional<std::uint64_t> known : {std::optional<std::uint64_t>{}, {full.size()}}) {
    server.Forget();
    std::vector<web::FileRequest> requests = Requests({"/a", "/b"});
    for (web::FileRequest& request : requests) request.expected.size = known;
    ahead.Want(std::move(requests), {.files = 4, .bytes = full.size()});
    for (const std::string name : {"a", "b"}) {  // the second one once the first one is taken
      ASSERT_TRUE(PumpUntil([&] { return Order().ends_with(name); }));
      const auto item = ahead.Claim(server.Url("/" + name));
      ASSERT_TRUE(item);
      EXPECT_TRUE(item->Wait(folder / name, {}).kept);
      EXPECT_TRUE(folder.Get(name) == full);
      platform::RemoveFile(folder / name);
    }
    ahead.Stop();
  }
}

// Its answer begins only when it is waited for.
TEST_F(AheadTest, WhatProvesTooLargeWhenItsTurnHasComeIsFetchedForItself) {
  const std::string large = Body(5'000);
  std::promise<void> waited;
  const std::shared_future<void> turn = waited.get_future().share();
  server.On("/a", [&](const SeenRequest&) {
    turn.wait_for(std::chrono::seconds(10));
    return support::Text(large);
  });
  transfers.FetchNext(Requests({"/a"}), {.bytes = 4'000});
  ASSERT_TRUE(PumpUntil([&] { return Order() == "a"; }));
  web::FileRequest request = Request("/a");
  request.path = folder / "a";
  bool told = false;
  const auto report = transfers.DownloadUrlToFile(request, [&] {
    if (!std::exchange(told, true)) waited.set_value();
  });
  EXPECT_TRUE(report.Good()) << report.Details();
  EXPECT_TRUE(folder.Get("a") == large);
  EXPECT_EQ(Order(), "aa");
}

TEST(Progress, TellsWhichPatchOfHowManyAndOnlyRises) {
  support::LauncherRun run;
  for (int i = 0; i < 3; ++i)
    run.mirror.AddPatch("Mapas", {{"RECURSOS/MAPAS1/" + std::to_string(i), Body(400'000), true}});
  run.mirror.AddBinFile("KVN-DX8.exe", "el cliente");
  run.mirror.Publish();
  run.PlayToTheEnd();
  std::vector<std::string> patches;
  for (const std::string& call : run.screen.Matching("frmMain.lblsize: Parche ")) {
    const std::string place = call.substr(sizeof("frmMain.lblsize: Parche ") - 1, 6);
    if (patches.empty() || patches.back() != place) patches.push_back(place);
  }
  EXPECT_EQ(patches, (std::vector<std::string>{"1 de 3", "2 de 3", "3 de 3"}));
  double last = 0;
  for (const std::string& call : run.screen.Matching("frmMain.ProgressBar1.Whole: ")) {
    const double whole = std::stod(call.substr(sizeof("frmMain.ProgressBar1.Whole: ") - 1));
    EXPECT_TRUE(whole >= last || whole < 0) << call;
    last = whole;
  }
  EXPECT_LT(last, 0) << "it is over";
}

}  // namespace
