// "publisher check" of live mirrors, good ones and ones that spoil things.
#include <gtest/gtest.h>

#include <sstream>

#include "publisher/cache_rules.hpp"
#include "publisher/mirror_server.hpp"
#include "support/archives.hpp"
#include "support/faulty_server.hpp"
#include "support/posix/publication.hpp"

namespace {

using support::Answer;
using support::FaultyServer;
using support::Holds;
using support::SeenRequest;
using support::TestPublication;

constexpr const char* kBase = "/files/update/kvn2011/";

struct MirrorCheckTest : testing::Test {
  MirrorCheckTest() {
    pub.game.Put("Bin/KVN-DX8.exe", support::Noise(40'000, 1));
    pub.game.Put("RECURSOS/MAPAS1/ñ #1.map", "map");
    pub.game.Put("Bin/ñ #1.dll", "library");
    EXPECT_EQ(pub.Release(), 0) << pub.err;
  }

  // The publication as a good server sends it, over HTTP without parts.
  Answer Honest(const SeenRequest& request, const char* caching = nullptr) const {
    const auto name = publisher::Layout::NameFor(Decoded(request.Path()));
    if (!name || !pub.folder.Has("pub/" + *name)) return support::Page(404, "not here");
    const std::string body = pub.Get(*name), tag = "\"" + support::Md5Of(body) + "\"";
    const char* usual = publisher::CachingOf(publisher::KindOf(*name)).header;
    if (request.Header("if-none-match") == tag) return {.status = 304, .headers = {{"ETag", tag}}};
    Answer answer =
        support::Text(body, {{"ETag", tag}, {"Cache-Control", caching != nullptr ? caching : usual}});
    if (request.Header("range") == "bytes=1-2" && request.Header("if-range").empty()) {
      answer.status = 206;
      answer.body = body.substr(1, 2);
      answer.headers.emplace_back("Content-Range", "bytes 1-2/" + std::to_string(body.size()));
    }
    return answer;
  }

  static std::string Decoded(const std::string& path) {
    std::string plain;
    for (std::size_t i = 0; i < path.size(); ++i) {
      plain += path[i] == '%' ? static_cast<char>(std::stoi(path.substr(i + 1, 2), nullptr, 16)) : path[i];
      if (path[i] == '%') i += 2;
    }
    return plain;
  }

  TestPublication pub;
  std::ostringstream log;
  publisher::Console console{log, log};
};

TEST_F(MirrorCheckTest, TheTrialServerIsWithoutFault) {
  const publisher::MirrorServer server(publisher::Layout(pub.Root()), {.port = 0, .log = true}, console);
  for (const char* base : {"update/kvn2011/", "files/update/kvn2011/"}) {
    EXPECT_EQ(pub.Run({"check", server.Url() + base}), 0) << pub.out << log.str();
    EXPECT_TRUE(Holds(pub.out, "10 files asked for, 0 problems, 0 warnings")) << pub.out;
  }
  EXPECT_TRUE(Holds(log.str(), "GET /web/include/info.php?op=complete 200")) << log.str();
  EXPECT_EQ(pub.Run({"check", server.Url() + "update/kvn2011"}), 1);
  EXPECT_TRUE(Holds(pub.err, "no complete address")) << pub.err;
  pub.Put("NewAct2/Bin/KVN-DX8.exe.kvn", "spoiled");
  EXPECT_EQ(pub.Run({"check", server.Url() + "update/kvn2011/"}), 1);
  EXPECT_TRUE(Holds(pub.out, "problem: " + server.Url() + "update/kvn2011/NewAct2/Bin/KVN-DX8.exe.kvn: "))
      << pub.out;
}

TEST_F(MirrorCheckTest, FindsEachWayOfSendingAFileBadly) {
  using Spoil = std::function<void(const SeenRequest&, Answer&)>;
  const auto header = [](const char* name, const char* value) -> Spoil {
    return [=](const SeenRequest&, Answer& answer) {
      std::erase_if(answer.headers, [&](const auto& each) { return each.first == name; });
      if (*value != '\0') answer.headers.emplace_back(name, value);
    };
  };
  const auto when = [](int status, std::function<void(Answer&)> change) -> Spoil {
    return [=](const SeenRequest&, Answer& answer) {
      if (answer.status == status) change(answer);
    };
  };
  const auto instead = [](const Answer& other) -> Spoil {
    return [=](const SeenRequest&, Answer& answer) { answer = other; };
  };
  const auto withStatus = [](int status) { return [=](Answer& answer) { answer.status = status; }; };
  const char *const list = "OldAct/Update.ini", *const index = "NewAct2/Info.kvn",
                    *const patch = "OldAct/Mapas/Mapas1.zip";
  const struct {
    const char* file;  // that is asked for
    Spoil spoil;
    const char* told;  // a warning when it starts with one
  } cases[] = {
      {list, header("Cache-Control", "max-age=86400"), "problem: it may be kept for 86400 s"},
      {list, header("Cache-Control", ""), "warning: it does not say how long"},
      {"Online.txt", header("Cache-Control", "public, max-age=3600"), "problem: it may be kept for 3600 s"},
      {index, header("ETag", ""), "warning: it has neither ETag nor Last-Modified"},
      {index, when(200, [](Answer& answer) { answer.framing = Answer::Framing::Chunked; }),
       "warning: it has no Content-Length"},
      {index,
       [](const SeenRequest& request, Answer& answer) {
         if (!request.Header("if-range").empty()) answer.status = 206, answer.body = "xx";
       },
       "problem: a part is sent though the file is another one"},
      {index, when(206, [](Answer& answer) { answer.body = "xy"; }), "problem: another part of it is sent"},
      {index, when(206, withStatus(200)), "warning: no part of it can be had"},
      {"Online.txt", when(304, withStatus(200)), "warning: it is sent again though it has not changed"},
      {patch, [](const SeenRequest&, Answer& answer) { answer.cutAfter = answer.body.size() / 2; },
       "problem: it is cut short"},
      {patch, instead(support::Page(404, "gone")), "problem: it is missing"},
      {patch, when(200, [](Answer& answer) { answer.body = "<html>hotel login</html>"; }), "problem: "},
      {"OldAct/Init/no-such-patch.zip", instead(support::Page(200, "<html>start page</html>")),
       "problem: there is no such file, but it is answered with status 200"},
  };
  for (const auto& [file, spoil, told] : cases) {
    FaultyServer server;
    const std::string path = std::string(kBase) + file;
    server.Otherwise([&, spoil = spoil](const SeenRequest& request) {
      Answer answer = Honest(request);
      if (request.Path() == path) spoil(request, answer);
      return answer;
    });
    const std::string text(told);
    const std::size_t colon = text.find(": ");
    const std::string line = text.substr(0, colon + 2) + server.Url(path) + ": " + text.substr(colon + 2);
    EXPECT_EQ(pub.Run({"check", server.Url(kBase)}), text.starts_with("problem") ? 1 : 0) << told << pub.out;
    EXPECT_TRUE(Holds(pub.out, line)) << told << "\n" << pub.out;
    EXPECT_EQ(std::count(pub.out.begin(), pub.out.end(), '\n'), 2) << told << "\n" << pub.out;
  }
}

TEST_F(MirrorCheckTest, MirrorsOfADeploymentAreHeldAgainstEachOther) {
  FaultyServer behind("127.0.0.2");
  behind.Otherwise([&](const SeenRequest& request) {
    Answer answer = Honest(request);
    if (answer.status == 304) return answer;
    if (request.Path().ends_with("Update.ini")) answer.body += "; another\r\n";
    if (request.Path().ends_with("info.php")) answer.body = "9@Otro@ONLINE@0@0@1@@0|";
    return answer;
  });
  const publisher::MirrorServer server(publisher::Layout(pub.Root()), {.port = 0, .log = true}, console);
  const std::string good = server.Url() + "update/kvn2011/", other = behind.Url(kBase);
  pub.folder.Put("Deployment.ini", "[MIRRORS]\r\n1=" + good + "\r\n2=" + other +
                                       "\r\n3=\r\n4=ftp://x/\r\n5=" + good +
                                       "\r\n[SITE]\r\nApi=" + server.Url() + "\r\n");
  EXPECT_EQ(pub.Run({"check", pub.folder / "Deployment.ini"}), 1);
  EXPECT_TRUE(Holds(pub.out, "problem: " + other + "OldAct/Update.ini: it is not the same as " + good +
                                 "OldAct/Update.ini\n"))
      << pub.out;
  EXPECT_TRUE(Holds(pub.out, "MIRRORS/4 is \"ftp://x/\", no complete address")) << pub.out;
  EXPECT_TRUE(
      Holds(pub.out, "warning: " + (pub.folder / "Deployment.ini") + ": MIRRORS/5 is named a second time"));
  EXPECT_TRUE(Holds(pub.out, "20 files asked for, 2 problems, 1 warnings")) << pub.out;
  // The second host's scripts are asked where launchers ask for them.
  EXPECT_EQ(behind.Count("/files/web/include/info.php"), 1u);
  EXPECT_EQ(behind.Count("/files/web/include/noticiasbase.php"), 0u);
  EXPECT_TRUE(Holds(log.str(), "GET /web/include/ipdate.php 200")) << log.str();
  pub.folder.Put("Deployment.ini", "[SITE]\r\n");
  EXPECT_EQ(pub.Run({"check", pub.folder / "Deployment.ini"}), 1);
  EXPECT_TRUE(Holds(pub.err, "Deployment.ini: its section MIRRORS names no mirror")) << pub.err;
}

TEST_F(MirrorCheckTest, TheRecordShowsWhatNoMirrorDoes) {
  pub.game.Put("leame.txt", "one");
  ASSERT_EQ(pub.Patch("Extras"), 0);
  const std::string archive = pub.Get("OldAct/Extras/Extras1.zip"), list = pub.Get("OldAct/Update.ini");
  pub.game.Put("leame.txt", "two");
  ASSERT_EQ(pub.Patch("AU"), 0);
  pub.Put("OldAct/Extras/Extras1.zip", pub.Get("OldAct/AU/AU1.zip"));  // a good archive, but another one
  EXPECT_EQ(pub.Check(), 1);
  EXPECT_TRUE(Holds(pub.out, "Extras1.zip: it was replaced after it had been published")) << pub.out;
  pub.Put("OldAct/Extras/Extras1.zip", archive);
  pub.Put("OldAct/Update.ini", list);
  EXPECT_EQ(pub.Check(), 1);
  EXPECT_TRUE(Holds(pub.out, "Update.ini: AU went back from 1 to 0, but players may have had all 1"))
      << pub.out;
  EXPECT_EQ(pub.Patch("AU"), 1);
  EXPECT_TRUE(Holds(pub.err, "AU went back to 0")) << pub.err;
  EXPECT_EQ(pub.Patch("Wavs"), 0) << pub.err;
  pub.Put(".publisher/record.txt", "not\n");
  EXPECT_EQ(pub.Check(), 1);
  EXPECT_TRUE(Holds(pub.out, ".publisher/record.txt: line 1 ")) << pub.out;
}

}  // namespace
