#include <gtest/gtest.h>

#include "support/web_world.hpp"

namespace {

using support::Answer;
using support::FaultyServer;
using support::WebWorld;

const std::string kPath = "/update/kvn2011/";
const std::string kProbe = kPath + "Online.txt";
const std::string kList = "/web/include/info.php";
const std::string kNews = "/web/include/noticiasbase.php";
const std::string kTwoServers = "1@Alpha@online@x@5@37@@8|2@Beta@OFFLINE@y@6@0@Mantenimiento@9";

// Asking ends with the answer to the last attempt: one that is given up may reach the server, and be counted,
// later.
const web::ScriptBudget kEveryAttempt{std::chrono::minutes(1)};

constexpr controls::Colour kRed = 255, kGreen = 65280;

class ServerListTest : public testing::Test {
 protected:
  ServerListTest() {
    server.On(kProbe, support::Text("1"));
    world.Mirror(1, server.Url(kPath));
    world.Use(server.Url(kPath));
    world.news.showMessage = [this](const std::string& text, const std::string& title, std::int32_t number,
                                    std::int32_t milliseconds) {
      notices.push_back(std::to_string(number) + " " + title + ": " + text + " " +
                        std::to_string(milliseconds));
    };
  }
  std::string Label(std::size_t i) { return world.frmMain.lblServerState[i]->Caption; }
  controls::Colour Colour(std::size_t i) { return world.frmMain.lblServerState[i]->ForeColor; }
  // The second update host is entry 2 of the ring; its API is the same server here.
  void UseSecondHost() {
    world.Mirror(2, server.Url(kPath));
    world.deployment.api = server.Url("");
  }

  FaultyServer server{"127.0.0.9"};
  WebWorld world;
  std::vector<std::string> notices;
};

TEST_F(ServerListTest, TwoServersAreShownAndKept) {
  server.On(kList, support::Text(kTwoServers));
  EXPECT_EQ(world.servers.GetServersList(), kTwoServers);
  EXPECT_EQ(server.Targets(), std::vector<std::string>{kList + "?op=complete"});
  EXPECT_EQ(Label(0), "Alpha ONLINE - 37 Users.");
  EXPECT_EQ(Colour(0), kGreen);
  EXPECT_EQ(Label(1), "Beta OFFLINE - Mantenimiento");
  EXPECT_EQ(Colour(1), kRed);
  EXPECT_EQ(Label(2), "");
  EXPECT_EQ(world.servers.Text(), kTwoServers + "|") << "the second one is kept although it is down";
}

TEST_F(ServerListTest, OddAnswers) {
  const std::string
      untouched = "Servidor Estado:/Servidor Estado:/Servidor Estado:/",
      unavailable = "Servidor Web no Disponible./Servidor Web no Disponible./Servidor Web no Disponible./",
      overflow = "Error: Error 6 (Overflow) procedimiento GetServersList Módulo modGeneral línea: 20",
      four = "1@A@ONLINE@@0@1@@0|1@B@ONLINE@@0@2@@0|1@C@ONLINE@@0@3@@0|1@D@ONLINE@@0@4@@0";
  const struct {
    std::string answer, labels, text;
    std::size_t probes;  // a new choice of the host
    std::string error;
  } cases[] = {
      {"<p>no servers today", unavailable, "", 1, ""},
      {"1@A@Online@@0@5@new@0|", "A ONLINE - 5 Users. - new///", "1@A@Online@@0@5@new@0|", 0, ""},
      {"|||", "///", "0@@@@0@0@@0|", 0, ""},
      {"x@A@up@@y@z@@|2@B@down@@@@@", "A UP/B DOWN//", "2@B@down@@0@0@@0|", 0, ""},
      {four, "A ONLINE - 1 Users./B ONLINE - 2 Users./C ONLINE - 3 Users./", four + "|", 0, ""},
      {"1@A@ONLINE@@0@40000@@0|", untouched, "", 0, overflow},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.answer);
    WebWorld fresh;
    fresh.Mirror(1, server.Url(kPath));
    fresh.Use(server.Url(kPath));
    server.Forget();
    server.On(kList, support::Text(test.answer));
    EXPECT_EQ(fresh.servers.GetServersList(), test.answer);
    std::string labels;
    for (const controls::Label* label : fresh.frmMain.lblServerState) labels += label->Caption.Get() + "/";
    EXPECT_EQ(labels, test.labels);
    EXPECT_EQ(fresh.servers.Text(), test.text);
    EXPECT_EQ(server.Count(kProbe), test.probes);
    EXPECT_EQ(fresh.host.dialogs.shown.empty() ? "" : fresh.host.dialogs.shown[0].text, test.error);
  }
}

TEST_F(ServerListTest, AHostileAnswerTakesLittleMemory) {
  server.On(kList, support::Text(std::string(10'000'000, '|')));
  world.servers.GetServersList();
  EXPECT_LE(world.servers.Servers().size(), 256u);
}

TEST_F(ServerListTest, AnAnswerThatDidNotComeIsAskedForByBothWaysAndLeavesTheLabels) {
  for (const Answer& whole : {support::Text(""), support::Page(404, "")}) {
    server.Forget();
    server.On(kList, whole);
    EXPECT_EQ(world.servers.GetServersList(), "");
    EXPECT_EQ(server.Seen().size(), 1u) << "an answer without a list is an answer";
  }
  server.Forget();
  server.On(kList, {.body = kTwoServers, .cutAfter = 9});
  EXPECT_EQ(world.servers.GetServersList(), "");
  EXPECT_GE(server.Seen().size(), 4u);
  EXPECT_EQ(Label(0), "Servidor Estado:");
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(server.Seen()[i].Header("content-type").empty(), i % 2 == 1) << "the two ways take turns";
  }
}

TEST_F(ServerListTest, TheEndOfTheProgramEndsTheAttempts) {
  server.On(kList, support::Silent());
  world.When([this] { return !server.Seen().empty(); }, [this] { world.lifetime.End(0); });
  EXPECT_EQ(world.servers.GetServersList(), "");
  world.news.Timer_Timer();
  EXPECT_EQ(server.Seen().size(), 1u);
}

TEST_F(ServerListTest, NewsAreShownOncePerTitle) {
  server.On(kList, support::Text(kTwoServers));
  server.On(kNews, support::Text("12|x|Torneo|el 20-11 a las 18@rest@"));
  for (int i = 0; i < 3; ++i) world.news.Timer_Timer();
  EXPECT_EQ(notices, std::vector<std::string>{"12 Torneo: el 20/11 a las 18 15000"});
  server.On(kNews, support::Text("13|x|Otro|hoy@"));
  for (int i = 0; i < 2; ++i) world.news.Timer_Timer();
  ASSERT_EQ(notices.size(), 2u);
  EXPECT_EQ(notices[1], "13 Otro: hoy 15000");
  EXPECT_EQ(server.Count(kNews), 5u);
  EXPECT_EQ(server.Count(kProbe), 5u) << "the host is confirmed on every tick";
  EXPECT_EQ(server.Count(kList + "?op=complete"), 1u) << "the list is there already";
  EXPECT_EQ(world.frmMain.lblEstado.Caption.Get(), "");
  EXPECT_EQ(Label(0), "Alpha ONLINE - 37 Users.");
}

// A modal box every two seconds would take the launcher from the player.
TEST_F(ServerListTest, WhatCannotBeReadIsToldOncePerAnswer) {
  server.On(kList, support::Text("1@Alpha@online@x@5@40000@@8|"));
  server.On(kNews, support::Text("99999999999||T|t@"));
  for (int i = 0; i < 3; ++i) world.news.Timer_Timer();
  EXPECT_EQ(world.host.dialogs.shown.size(), 2u);
  world.host.clock.Step(30'000);
  server.On(kList, support::Text("1@Alpha@online@x@5@50000@@8|"));
  for (int i = 0; i < 3; ++i) world.news.Timer_Timer();
  EXPECT_EQ(world.host.dialogs.shown.size(), 3u);
}

TEST_F(ServerListTest, PlayerCountsLiveAndABadAnswerLeavesThem) {
  world.scripts = kEveryAttempt;
  server.On(kNews, support::Text("1||T|t@"));
  const struct {
    Answer answer;
    const char* label;
  } steps[] = {
      {support::Text("1@Alpha@online@x@5@37@@8|"), "Alpha ONLINE - 37 Users."},
      {support::Text("1@Alpha@online@x@5@41@@8|"), "Alpha ONLINE - 41 Users."},
      {support::Page(502, "a|b"), "Alpha ONLINE - 41 Users."},
      {{.body = "1@Alpha@online@x@5@50@@8|", .cutAfter = 20}, "Alpha ONLINE - 41 Users."},
      {support::Text("1@Alpha@cerrado@x@5@0@@8|"), "Alpha CERRADO"},
  };
  for (const auto& step : steps) {
    server.On(kList, step.answer);
    world.news.Timer_Timer();
    EXPECT_EQ(Label(0), step.label);
    const std::size_t asked = server.Count(kList + "?op=complete");
    world.news.Timer_Timer();
    EXPECT_EQ(server.Count(kList + "?op=complete"), asked) << "not at each tick";
    world.host.clock.Step(30'000);
  }
}

TEST_F(ServerListTest, NewsThatFailAreAskedForLaterAndLater) {
  for (const Answer& failing :
       {support::Text(""), support::Page(404, "none"), {.body = "1|", .cutAfter = 1}}) {
    WebWorld fresh;
    fresh.Mirror(1, server.Url(kPath));
    fresh.Use(server.Url(kPath));
    fresh.scripts = kEveryAttempt;
    server.On(kNews, failing);
    server.Forget();
    int asked = 0;  // ticks, of the 300 in ten minutes
    for (int i = 0; i < 300; ++i) {
      const std::size_t before = server.Count(kNews);
      fresh.news.Timer_Timer();
      asked += server.Count(kNews) > before;
      fresh.host.clock.Step(2'000);
    }
    EXPECT_GE(asked, 10);
    EXPECT_LE(asked, 16) << "at 2, 4, 8, 16, 32 and then every 60 seconds";
  }
}

TEST_F(ServerListTest, UnchangedNewsComeAgainAfter27000Ticks) {
  server.On(kList, support::Text(kTwoServers));
  server.On(kNews, support::Text("1||T|t@", {{"Cache-Control", "max-age=86400"}}));
  server.On(kProbe, support::Text("1", {{"Cache-Control", "max-age=86400"}}));
  for (int i = 0; i < 27000; ++i) world.news.Timer_Timer();
  EXPECT_EQ(notices.size(), 1u);
  world.news.Timer_Timer();
  EXPECT_EQ(notices.size(), 2u);
  EXPECT_EQ(server.Seen().size(), 3u) << "the mirror was asked once for each answer that it calls fresh";
}

TEST_F(ServerListTest, OddNews) {
  server.On(kList, support::Text(kTwoServers));
  const struct {
    std::string answer, notice, error;
  } cases[] = {
      {"1||T|t", "", ""},
      {"x||T@", "0 T:  15000", ""},
      {"99999999999||T|t@", "",
       "Error: Error 6 (Overflow) en el procedimiento Timer_Timer del modulo Formulario frmMain en la línea "
       "30"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.answer);
    notices.clear();
    world.host.dialogs.shown.clear();
    server.On(kNews, support::Text(test.answer));
    world.news.Timer_Timer();
    EXPECT_EQ(notices.empty() ? "" : notices[0], test.notice);
    EXPECT_EQ(world.host.dialogs.shown.empty() ? "" : world.host.dialogs.shown[0].text, test.error);
  }
}

TEST_F(ServerListTest, NewsOfTheSecondHost) {
  UseSecondHost();
  int asked = 0;
  server.On(kNews, [&](const support::SeenRequest&) {
    return ++asked == 1 ? Answer{.body = "1||T|t@", .cutAfter = 2} : support::Text("1||T|t@");
  });
  server.On(kPath + kNews, support::Text("2||U|u@"));
  server.On(kList, support::Text(kTwoServers));
  world.news.Timer_Timer();
  EXPECT_EQ(notices, std::vector<std::string>{"2 U: u 15000"}) << "first its API, then the mirror itself";
  EXPECT_EQ(asked, 1);
}

TEST_F(ServerListTest, PlayingLeavesTheNewsAlone) {
  std::atomic<bool> playing = false;
  world.news.beginTick = [&] { return [&] { return !playing; }; };
  server.On(kNews, [&](const support::SeenRequest&) {
    while (!playing) std::this_thread::yield();
    return support::Text("1||T|t@");
  });
  world.When([this] { return !server.Seen().empty(); },
             [&] {
               world.frmMain.lblEstado.Caption = "Buscando actualizaciones...";
               playing = true;
             });
  world.news.Timer_Timer();
  EXPECT_EQ(world.frmMain.lblEstado.Caption.Get(), "Buscando actualizaciones...");
  EXPECT_TRUE(notices.empty());
  EXPECT_EQ(server.Seen().size(), 1u);
}

}  // namespace
