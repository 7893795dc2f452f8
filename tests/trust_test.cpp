// Everything that a hostile mirror can try against a launcher that has the operator's key: nothing of it is
// taken, nothing is lost, and the player reads why.
#include <gtest/gtest.h>

#include <atomic>

#include "base/text.hpp"
#include "platform/files.hpp"
#include "support/signed_run.hpp"

namespace {

using platform::DialogAnswer;
using support::Answer;
using support::GameMirror;
using support::SignedRun;

constexpr std::int64_t kDay = 24 * 3600;

std::string Path(const std::string& piece) { return GameMirror::kBase + piece; }

std::string Question(const std::string& why) {
  return why + "\r\n¿Deseas iniciar el juego instalado sin actualizarlo?";
}

// What the game must look like when all went well.
std::map<std::string, std::string> Installed(const SignedRun& run, const GameMirror& mirror) {
  std::map<std::string, std::string> files = mirror.Expected();
  files["launcher.exe"] = "el launcher";
  files["Deployment.ini"] = run.Get("Deployment.ini");
  for (const char* category : update::kCategories) files[category] = "0\r\n";
  files["Mapas"] = "2\r\n";
  files["Extras"] = "1\r\n";
  return files;
}

// Nothing was taken and nothing lost, the player was told and asked.
void ExpectRefused(SignedRun& run, const std::map<std::string, std::string>& before, const std::string& why) {
  EXPECT_EQ(run.Everything(), before);
  EXPECT_EQ(run.Status(), why);
  EXPECT_TRUE(run.Shown(Question(why)));
  EXPECT_FALSE(run.ClientStarted());
  EXPECT_EQ(run.Launched().Mode(), update::Mode::Idle) << "play and repair are there again";
  EXPECT_NE(run.Log().find(why), std::string::npos) << run.Log();
}

TEST(Trust, InstallsWhatTheOperatorSigned) {
  SignedRun run;
  run.PlayOnce();
  EXPECT_EQ(run.Everything(), Installed(run, run.mirror));
  const std::vector<std::string> asked = {"Signed.txt",
                                          "OldAct/Update.ini",
                                          "OldAct/Mapas/Mapas1.zip",
                                          "OldAct/Mapas/Mapas2.zip",
                                          "OldAct/Extras/Extras1.zip",
                                          "NewAct2/Info.kvn",
                                          "NewAct2/Bin/KVN-DX8.exe.kvn",
                                          "NewAct2/Bin/Sub/a.dll.kvn"};
  EXPECT_EQ(run.mirror.Asked(), asked);
  EXPECT_TRUE(run.machine.dialogs.shown.empty());
  EXPECT_TRUE(run.ClientStarted());

  run.PlayOnce();
  EXPECT_EQ(run.mirror.Asked(),
            (std::vector<std::string>{"Signed.txt", "OldAct/Update.ini", "NewAct2/Info.kvn"}))
      << "what was proved stays so";
}

TEST(Trust, APublicationThatIsNotTheOperatorsNewestIsNotTaken) {
  const auto serve = [](SignedRun& run, const Answer& answer) {
    run.mirror.server.On(Path("Signed.txt"), answer);
  };
  const auto accept = [](SignedRun& run, std::uint64_t version) {
    run.mirror.Sign(run.signer, run.Version(version));
    run.PlayOnce();
    run.machine.processes.started.clear();
  };
  const auto sign = [](SignedRun& run, std::int64_t signedIn, std::int64_t expiresIn) {
    update::SignedFile file = run.Version(7);
    file.signedAt = run.machine.clock.unixTime + signedIn;
    file.expires = run.machine.clock.unixTime + expiresIn;
    run.mirror.Sign(run.signer, file);
  };
  const struct {
    const char* attack;
    std::function<void(SignedRun&)> spoil;
    const char* why;
  } cases[] = {
      {"no signature", [&](SignedRun& run) { serve(run, support::Page(404, "no")); }, "falta la firma"},
      {"page", [&](SignedRun& run) { serve(run, support::Text("<html>hola</html>")); },
       "la firma no es la del juego"},
      {"altered",
       [&](SignedRun& run) {
         serve(run, support::Text(base::Replaced(run.SignedText(), "\nMapas 2\n", "\nMapas 1\n")));
       },
       "la firma no es la del juego"},
      {"cut by a line",
       [&](SignedRun& run) {
         const std::string text = run.SignedText();
         serve(run, support::Text(text.substr(0, text.rfind('\n', text.size() - 2) + 1)));
       },
       "la firma no es la del juego"},
      {"lengthened",
       [&](SignedRun& run) {
         serve(run, support::Text(run.SignedText() + std::string(64, '0') + " 1 OldAct/z.zip\n"));
       },
       "la firma no es la del juego"},
      {"cut on the way", [&](SignedRun& run) { serve(run, support::CutShort(run.SignedText(), 300)); },
       "la conexión se cortó antes del final"},
      {"endless",
       [&](SignedRun& run) {
         serve(run, {.body = std::string((64 << 20) + 1, 'x'), .framing = Answer::Framing::Chunked});
       },
       "la respuesta es demasiado grande"},
      {"wrong key", [](SignedRun& run) { run.mirror.Sign(support::Signer(), run.Version(7)); },
       "la firma no es la del juego"},
      {"signed, of another format",
       [&](SignedRun& run) { serve(run, support::Text(run.signer.Signed("Kelvarin 2\nversion 8\n"))); },
       "la firmada está en un formato que este launcher no conoce"},
      {"rollback",
       [&](SignedRun& run) {
         accept(run, 8);
         run.mirror.Sign(run.signer, run.Version(7));
       },
       "la firmada es más vieja que la última conocida"},
      {"two under one number",
       [&](SignedRun& run) {
         accept(run, 7);
         sign(run, -100, kDay);
       },
       "la firmada es otra con el número de la última conocida"},
      {"freeze", [&](SignedRun& run) { sign(run, -9 * kDay, -kDay); },
       "venció el 20/11/2026 y esta computadora dice que hoy es 21/11/2026"},
      {"signed in the future", [&](SignedRun& run) { sign(run, 2 * kDay, 9 * kDay); },
       "se firmó el 23/11/2026 y esta computadora dice que hoy es 21/11/2026"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.attack);
    SignedRun run;
    test.spoil(run);
    const auto before = run.Everything();
    run.PlayOnce();
    ExpectRefused(run, before, SignedRun::kNoneCounts + std::string(test.why) + ".");
    EXPECT_NE(run.Log().find(std::string("Signed.txt: ") + test.why), std::string::npos) << run.Log();
    EXPECT_EQ(run.mirror.server.Count(Path("OldAct/Update.ini")), 0u) << "nothing else is asked for";
  }
}

TEST(Trust, ThePlayerMayStartWhatIsInstalled) {
  SignedRun run;
  run.mirror.server.On(Path("Signed.txt"), support::Page(404, "no"));
  run.machine.dialogs.answers = {DialogAnswer::Yes};
  run.PlayOnce();
  EXPECT_TRUE(run.ClientStarted());
  EXPECT_TRUE(run.Launched().Life().Ending());
  EXPECT_EQ(run.GameFiles().at("Bin/KVN-DX8.exe"), "el cliente de antes");
}

TEST(Trust, UpdateOnlyModeEndsWithOneAndTheReasonInTheLog) {
  SignedRun run;
  run.mirror.Sign(support::Signer(), run.Version(7));
  const auto before = run.Everything();
  run.PlayOnce("/UPDATES");
  EXPECT_EQ(run.Launched().Life().ExitStatus(), 1);
  EXPECT_EQ(run.Everything(), before);
  EXPECT_FALSE(run.ClientStarted());
  EXPECT_NE(run.Log().find(SignedRun::kNoneCounts + std::string("la firma no es la del juego.")),
            std::string::npos)
      << run.Log();
}

Answer ListOf(const std::string& count) {
  std::string list = "[INIT]";
  for (const char* category : update::kCategories) list += std::string(" ") + category + "=" + count;
  return support::Text(list);
}

struct Piece {
  const char* attack;
  std::string name;
  Answer answer;
};

std::vector<Piece> EvilPieces() {
  const std::string client = support::MakePacked("un cliente malo");
  const std::string evilIndex =
      support::MakeIndex({{support::Md5Of("un cliente malo"), "\\Bin\\KVN-DX8.exe"}});
  return {
      {"arbitrary archive", "OldAct/Mapas/Mapas1.zip",
       support::Text(support::MakeZip({{"Deployment.ini", "[MIRRORS]\r\n1=http://malo/\r\n"},
                                       {"launcher.exe", "malo"},
                                       {"Bin/KVN-DX8.exe", "malo"}}))},
      {"endless archive",
       "OldAct/Mapas/Mapas2.zip",
       {.body = std::string(32 << 20, 'x'), .framing = Answer::Framing::Chunked}},
      {"archive of an older publication", "OldAct/Mapas/Mapas2.zip",
       support::Text(support::MakeZip({{"RECURSOS/MAPAS1/2.map", "dos seis"}}))},
      {"arbitrary index", "NewAct2/Info.kvn", support::Text(support::MakePacked(evilIndex))},
      {"index of nothing", "NewAct2/Info.kvn", support::Text(support::MakePacked(support::MakeIndex({})))},
      {"arbitrary client", "NewAct2/Bin/KVN-DX8.exe.kvn", support::Text(client)},
      {"page for the client", "NewAct2/Bin/KVN-DX8.exe.kvn", support::Page(404, "no")},
      {"counters raised", "OldAct/Update.ini", ListOf("32767")},
      {"counters lowered", "OldAct/Update.ini", ListOf("0")},
      {"no counters", "OldAct/Update.ini", support::Page(404, "no")},
  };
}

TEST(Trust, AFileThatIsNotTheSignedOneComesFromTheNextMirror) {
  for (const Piece& piece : EvilPieces()) {
    SCOPED_TRACE(piece.attack);
    SignedRun run;
    support::FaultyServer& evil = run.Twin();
    evil.On(Path(piece.name), piece.answer);
    run.Deploy({run.UrlOf(evil), run.mirror.Url()});
    run.PlayOnce();
    EXPECT_EQ(run.Everything(), Installed(run, run.mirror));
    EXPECT_TRUE(run.ClientStarted());
    EXPECT_TRUE(run.machine.dialogs.shown.empty());
    EXPECT_EQ(evil.Count(Path(piece.name)), 1u);
  }
}

// Each mirror of a ring is bad in its own way or all in the same way, one is good.
TEST(Trust, SixBadMirrorsDoNotHideTheGoodOne) {
  for (const bool allTheSame : {false, true}) {
    SCOPED_TRACE(allTheSame);
    SignedRun run;
    const std::vector<Piece> pieces = EvilPieces();
    std::vector<std::string> mirrors;
    for (std::size_t i = 0; i < 6; ++i) {
      support::FaultyServer& evil = run.Twin();
      for (const Piece& piece : pieces) {
        if (allTheSame || &piece == &pieces[i]) evil.On(Path(piece.name), piece.answer);
      }
      if (allTheSame) evil.On(Path("Signed.txt"), support::Text("malo"));
      mirrors.push_back(run.UrlOf(evil));
    }
    mirrors.push_back(run.mirror.Url());
    run.Deploy(mirrors);
    run.PlayOnce();
    EXPECT_EQ(run.Everything(), Installed(run, run.mirror));
    EXPECT_TRUE(run.machine.dialogs.shown.empty());
  }
}

// The first mirror has a newer list over older files, the second one older files under an older list.
TEST(Trust, ListsAndFilesOfDifferentMirrorsAreNotMixed) {
  SignedRun run;
  GameMirror next;
  SignedRun::PublishGame(next, "ocho");
  next.Sign(run.signer, run.Version(8));
  support::FaultyServer& mixed = run.Twin();
  mixed.On(Path("Signed.txt"), next.server.AnswerFor({"GET", Path("Signed.txt"), {}}));
  run.Deploy({run.UrlOf(mixed), run.mirror.Url()});
  const std::string before = run.Get("Bin/KVN-DX8.exe");
  run.PlayOnce();
  EXPECT_EQ(run.Status(), "No se pudo instalar Mapas/Mapas2.zip: su contenido no es el firmado.");
  EXPECT_EQ(run.Counter("Mapas"), "1\r\n") << "the first one is the same in both";
  EXPECT_EQ(run.Get("Bin/KVN-DX8.exe"), before);

  run.Deploy({run.UrlOf(mixed), run.mirror.Url(), next.Url()});
  run.PlayOnce();
  EXPECT_EQ(run.Everything(), Installed(run, next));
}

TEST(Trust, AFileThatNobodySignedIsNotAskedFor) {
  SignedRun run;
  update::SignedFile file = run.Version(7);
  const std::string body = run.SignedText();
  const std::size_t line = body.rfind('\n', body.find(" OldAct/Mapas/Mapas2.zip")) + 1;
  std::string shorter = body.substr(body.find('\n') + 1);
  const std::size_t from = line - (body.size() - shorter.size());
  shorter.erase(from, shorter.find('\n', from) + 1 - from);
  run.mirror.server.On(Path("Signed.txt"), support::Text(run.signer.Signed(shorter)));
  run.PlayOnce();
  EXPECT_EQ(run.mirror.server.Count(Path("OldAct/Mapas/Mapas2.zip")), 0u);
  EXPECT_EQ(run.Status(), "No se pudo instalar Mapas/Mapas2.zip: no está en la publicación firmada.");
  EXPECT_EQ(run.Counter("Mapas"), "1\r\n");
}

// The operator publishes the next version at the moment when a file is asked for.
TEST(Trust, APublicationInTheMiddleOfARunIsTakenWhole) {
  for (const char* moment : {"OldAct/Mapas/Mapas2.zip", "NewAct2/Info.kvn", "NewAct2/Bin/Sub/a.dll.kvn"}) {
    SCOPED_TRACE(moment);
    SignedRun run;
    GameMirror next;
    SignedRun::PublishGame(next, "ocho");
    next.AddPatch("Mapas", {{"RECURSOS/MAPAS1/2.map", "dos ocho"}});
    next.AddPatch("Extras", {{"leame.txt", std::string(5'000, 'x') + "ocho"}});
    next.Publish();
    next.Sign(run.signer, run.Version(8));
    std::atomic<bool> published = false;
    support::FaultyServer& server = run.twins.emplace_back("127.0.0.12");
    server.Otherwise([&](const support::SeenRequest& request) {
      if (request.target == Path(moment)) published = true;
      return (published ? next : run.mirror).server.AnswerFor(request);
    });
    run.Deploy({run.UrlOf(server)});
    run.PlayOnce();
    EXPECT_EQ(run.GameFiles(), [&] {
      auto files = next.Expected();
      files["launcher.exe"] = "el launcher";
      return files;
    }());
    EXPECT_EQ(run.Counter("Mapas"), "3\r\n");
    EXPECT_EQ(run.Counter("Extras"), "2\r\n");
    EXPECT_TRUE(run.ClientStarted());
    EXPECT_TRUE(run.machine.dialogs.shown.empty());
    EXPECT_LE(server.Count(Path("Signed.txt")), 3u) << "at the start, at the difference, at the new start";
  }
}

}  // namespace
