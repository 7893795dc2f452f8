#include <gtest/gtest.h>

#include "startup/launcher_settings.hpp"
#include "support/web_world.hpp"

namespace {

namespace keys = startup::keys;
using support::Answer;
using support::FaultyServer;
using support::WebWorld;

const std::string kPath = "/update/kvn2011/";
const std::string kProbe = kPath + "Online.txt";

class HostSelectionTest : public testing::Test {
 protected:
  std::string Stored(const char* section) {
    return world.host.settings->Get(keys::kApplication, section, keys::kUrl);
  }
  void Store(const std::string& last, const std::string& web) {
    world.host.settings->Set(keys::kApplication, keys::kLastUrl, keys::kUrl, last);
    world.host.settings->Set(keys::kApplication, keys::kUrlWeb, keys::kUrl, web);
    world.selection.RestoreHosts();
  }
  // Seven mirrors of one server under paths of their own; those listed in `up` answer their probe.
  void Ring(const std::vector<int>& up) {
    for (int i = 1; i <= 7; ++i) {
      world.Mirror(i, Entry(i));
      const bool answers = std::find(up.begin(), up.end(), i) != up.end();
      server.On("/" + std::to_string(i) + kProbe, answers ? support::Text("1") : support::Page(404, "no"));
    }
  }
  std::string Entry(int i) { return server.Url("/" + std::to_string(i) + kPath); }
  // The mirrors asked, each attempt a digit.
  std::string Asked() {
    std::string asked;
    for (const std::string& target : server.Targets()) asked += target[1];
    return asked;
  }

  FaultyServer server{"127.0.0.7"};
  WebWorld world;
};

TEST_F(HostSelectionTest, AProbeIsGoodOnlyWithTheNumberOne) {
  world.Mirror(1, server.Url(kPath));
  const struct {
    Answer answer;
    bool good;
  } cases[] = {
      {support::Text("1"), true},
      {support::Text("01x\r\n"), true},
      {support::Text("\xEF\xBB\xBF"
                     "1"),
       true},
      {support::Text(""), false},
      {support::Text("1 error"), false},
      {support::Text("<!DOCTYPE html><p>1"), false},
      {support::CutShort("1 and more", 1), false},
      {support::Redirect("ftp://127.0.0.1/Online.txt"), false},
      {support::Silent(), false},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.answer.body);
    server.Forget();
    server.On(kProbe, test.answer);
    EXPECT_EQ(world.selection.CheckOnline(server.Url(kPath), "Online.txt"), test.good);
    EXPECT_EQ(server.Seen().size(), test.good ? 1u : 3u);
  }
  int requests = 0;
  server.On(kProbe, [&](const support::SeenRequest&) { return support::Text(++requests < 3 ? "0" : "1"); });
  EXPECT_TRUE(world.selection.CheckOnline(server.Url(kPath), "Online.txt")) << "the third attempt counts";
  const support::ClosedPort closed("127.0.0.6");
  EXPECT_FALSE(world.selection.CheckOnline(closed.Url(kPath), "Online.txt"));
}

struct WalkCase {
  const char* name;
  int last, web;        // stored ring entries; 0 empty, 9 an address outside the ring
  std::vector<int> up;  // mirrors that answer
  std::string asked;    // every attempt
};

TEST_F(HostSelectionTest, WalksTheRingInItsOrder) {
  server.On("/9" + kProbe, support::Page(404, "no"));
  const WalkCase cases[] = {
      {"remembered", 4, 4, {4, 5}, "4"},
      {"after the last comes the first", 7, 7, {1, 2}, "7771"},
      {"the web base is tested, the walk goes on from the other", 3, 6, {4}, "6664"},
      {"an address that the deployment does not hold", 9, 9, {1}, "1"},
      {"no web base", 2, 0, {3}, "3"},
      {"all the way round", 2, 2, {1}, "2223334445556667771"},
  };
  const auto address = [&](int entry) { return entry == 0 ? std::string{} : Entry(entry); };
  for (const WalkCase& test : cases) {
    SCOPED_TRACE(test.name);
    Ring(test.up);
    Store(address(test.last), address(test.web));
    server.Forget();
    world.selection.ComenzarActualizacion();
    EXPECT_EQ(Asked(), test.asked);
    const std::string found = Entry(test.asked.back() - '0');
    EXPECT_EQ(world.hosts.CurrentUpdateURL, found);
    EXPECT_EQ(world.hosts.WebBaseURL, found);
    EXPECT_EQ(Stored(keys::kLastUrl), found);
    EXPECT_EQ(Stored(keys::kUrlWeb), found);
  }
  EXPECT_TRUE(world.host.dialogs.shown.empty());
}

TEST_F(HostSelectionTest, UnusableEntriesAreNeverAsked) {
  Ring({1, 2, 3, 4, 5});
  for (const int entry : {2, 3}) world.deployment.usable[static_cast<std::size_t>(entry - 1)] = false;
  Store(Entry(1), Entry(3));
  world.selection.ComenzarActualizacion();
  EXPECT_EQ(Asked(), "4") << "a remembered one is passed over too";
  world.deployment.usable.fill(false);
  world.Use("");
  world.selection.SwitchURL();
  EXPECT_EQ(world.hosts.WebBaseURL, "") << "nowhere to go";
}

TEST_F(HostSelectionTest, ADoubledEntryDoesNotTrapTheWalk) {
  Ring({6});
  world.Mirror(4, Entry(3));
  Store(Entry(3), Entry(3));
  world.selection.ComenzarActualizacion();
  EXPECT_EQ(Asked(), "3333335556");
}

TEST_F(HostSelectionTest, AMirrorMayVouchForItself) {
  server.On(kProbe, support::Text("1", {{"Cache-Control", "max-age=30"}}));
  world.Use(server.Url(kPath));
  for (int i = 0; i < 10; ++i) {
    world.selection.ComenzarActualizacion();
    world.host.clock.Step(6'000);
  }
  EXPECT_EQ(server.Seen().size(), 2u);
  server.Forget();
  world.host.clock.Step(60'000);
  server.On(kProbe, support::Text("0", {{"Cache-Control", "max-age=30"}}));
  EXPECT_FALSE(world.selection.CheckOnline(server.Url(kPath), "Online.txt"));
  EXPECT_FALSE(world.selection.CheckOnline(server.Url(kPath), "Online.txt"));
  EXPECT_EQ(server.Seen().size(), 6u) << "a bad answer is never used again";
}

TEST_F(HostSelectionTest, AHostInDoubtIsAskedAndNotItsLastWord) {
  server.On(kProbe, support::Text("1", {{"Cache-Control", "max-age=3600"}}));
  world.Mirror(1, server.Url(kPath));
  world.Use(server.Url(kPath));
  EXPECT_TRUE(world.selection.ConfirmHost());
  EXPECT_TRUE(world.selection.ConfirmHost());
  EXPECT_EQ(server.Seen().size(), 2u);
  server.On(kProbe, support::Page(503, "no"));
  EXPECT_FALSE(world.selection.ConfirmHost()) << "one round, not an endless walk";
}

TEST_F(HostSelectionTest, RoundsWithoutAnAnswerGetSlower) {
  Ring({});
  Store("", "");
  std::vector<std::uint64_t> rounds;
  server.On("/1" + kProbe, [&](const support::SeenRequest&) {
    rounds.push_back(world.host.clock.Now());
    return support::Page(503, "no");
  });
  const auto id = world.host.events->Timers().Start(1, [&] {
    if (rounds.size() > 3 + 9) world.lifetime.End(0);
  });
  world.selection.ComenzarActualizacion();
  world.host.events->Timers().Stop(id);
  std::vector<std::uint64_t> pauses;
  // Asked three times in the first round, and once in each that follows.
  for (std::size_t i = 3; i < rounds.size(); ++i) pauses.push_back(rounds[i] - rounds[i - 1]);
  ASSERT_GE(pauses.size(), 8u);
  for (std::size_t i = 1; i < 5; ++i) EXPECT_GT(pauses[i], pauses[i - 1]);
  EXPECT_GE(pauses[0], 1'000u);
  EXPECT_GE(pauses[7], 30'000u);
  EXPECT_LE(pauses[7], 60'000u);
}

TEST_F(HostSelectionTest, AddressQuery) {
  const std::string script = "/web/include/ipdate.php";
  const struct {
    const char *answer, *result;
  } cases[] = {
      {"21/11/2026-10.0.0.7", "21/11/2026-10.0.0.7"},
      {"21/11/2026-10.0.0.7-more", "21/11/2026-10.0.0.7"},
      {"yesterday-10.0.0.7", "-10.0.0.7"},
      {"21/11/2026-2001:db8::1", "21/11/2026-2001:db8::1"},
      {"yesterday-Null", "-"},
      {"21/11/2026-Null No AU", ""},
      {"", ""},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.answer);
    WebWorld fresh;
    fresh.Use(server.Url(kPath));
    server.Forget();
    server.On(script, support::Text(test.answer));
    EXPECT_EQ(fresh.selection.ClientAddressQuery(), test.result);
    EXPECT_EQ(server.Count(script), 1u) << "a whole answer is an answer";
  }
}

// Address, list and news share what a player may be kept waiting for.
TEST_F(HostSelectionTest, ScriptsThatFailSpendOneBudgetTogether) {
  const std::string script = "/web/include/ipdate.php";
  world.Use(server.Url(kPath));
  server.On(script, {.body = "21/11", .cutAfter = 3});
  EXPECT_EQ(world.selection.ClientAddressQuery(), "");
  EXPECT_GE(server.Count(script), 4u);
  EXPECT_FALSE(server.Seen()[0].Header("content-type").empty()) << "first by the one way, then by the other";
  EXPECT_TRUE(server.Seen()[1].Header("content-type").empty());
  world.scripts.Renew();
  support::FaultyServer silent;
  silent.On(script, support::Silent());
  world.Use(silent.Url(kPath));
  EXPECT_EQ(world.selection.ClientAddressQuery(), "");
  EXPECT_EQ(silent.Count(script), 1u) << "the first one spent it";
  EXPECT_EQ(world.servers.GetServersList(), "");
  world.selection.ClientAddressQuery();
  EXPECT_EQ(silent.Seen().size(), 1u);
}

}  // namespace
