// Single downloads: what the player sees while they run, and how they end.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "platform/files.hpp"
#include "support/archives.hpp"
#include "support/faulty_server.hpp"
#include "support/test_services.hpp"
#include "update/chunked_transfer.hpp"
#include "update/download.hpp"

namespace {

using support::MakePacked;
using support::MakeZip;

struct DownloadTest : testing::Test, support::TestServices {
  DownloadTest() : TestServices("juego") {
    for (const std::string& made : {folders.BinDir, folders.ResourcesUpdateDir, folders.Scratch("")}) {
      platform::MakeFolders(made);
    }
    deployment.client1 = "http://uno.example";
    deployment.client2 = "http://dos.example";
    deployment.forum = "http://foro.example";
    hosts.CurrentUpdateURL = server.Url("/m/");
    download.remoteFolder = "NewAct2/";
    mode.StartUpDone();
    mode.cmdIniciar_Click();
    window.tmrUpdates.Set(false);  // the test itself is the run
    std::string why;
    EXPECT_EQ(trust.Accept(why), update::Trust::Answer::Ready) << "there is no key";
  }

  support::FaultyServer server;
  controls::MainWindow window{host.events->Timers()};
  web::DownloadState state;
  web::Hosts hosts;
  web::Inet1 inet{services};
  web::smodXmlHttp transfers{services, window, state, hosts};
  web::ScriptBudget scripts;
  modGeneral::HostSelection selection{services, window, inet, transfers, hosts, scripts, {500, 500, 500}};
  update::RunMode mode{services, window, {[](bool) {}, [](bool) {}, {}, {}, {}}};
  update::MirrorRound mirrors{services, mode, hosts, selection};
  update::Trust trust{services, hosts, mirrors};
  update::smodUnzip unzip{services};
  int closed = 0;
  update::Download download{
      {services, window, state, hosts, transfers, mirrors, trust, unzip, [this] { ++closed; }}};
  update::ChunkedTransfer chunked{services, window, inet, state, [this] { ++closed; }};
};

TEST_F(DownloadTest, AnArchiveIsSavedFlatUnpackedAndRemoved) {
  server.On("/m/NewAct2/Mapas/Mapas1.zip", support::Text(MakeZip({{"a/b.txt", "hola"}})));
  folder.Put("juego/MapasMapas1.zip", "viejo");
  EXPECT_EQ(download.DescargarArchivo("Mapas/Mapas1.zip", true).result, update::DownloadResult::Done);
  EXPECT_EQ(state.TargetPath, folder / "juego/MapasMapas1.zip");
  EXPECT_FALSE(folder.Has("juego/MapasMapas1.zip"));
  EXPECT_EQ(folder.Get("juego/a/b.txt"), "hola");
  EXPECT_EQ(window.lblEstado.Caption.Get(), "Actualizando juego, por favor aguarde unos minutos.");
}

// Without another mirror a round is one transfer: three are retried in silence, the fourth asks.
TEST_F(DownloadTest, TheQuestionComesWithTheFourthTimeOut) {
  using platform::DialogAnswer;
  using update::DownloadResult;
  const support::ClosedPort closedPort;
  hosts.CurrentUpdateURL = closedPort.Url("/");
  host.dialogs.answers = {DialogAnswer::Yes, DialogAnswer::No};
  std::vector<DownloadResult> results;
  std::string reason;
  for (int i = 0; i < 9; ++i) {
    const update::Fetched fetched = download.DescargarArchivo("x.zip", true);
    results.push_back(fetched.result);
    reason = fetched.reason;
  }
  // Yes starts the count of silent retries anew; No does not, so the next time-out asks again.
  const std::vector<DownloadResult> expected = {
      DownloadResult::TryAgain, DownloadResult::TryAgain, DownloadResult::TryAgain,
      DownloadResult::TryAgain, DownloadResult::TryAgain, DownloadResult::TryAgain,
      DownloadResult::TryAgain, DownloadResult::Stopped,  DownloadResult::Stopped};
  EXPECT_EQ(results, expected);
  EXPECT_EQ(reason, "no se pudo conectar con el servidor");
  EXPECT_EQ(host.dialogs.shown.size(), 3u);
  EXPECT_TRUE(state.TimedOut && state.RetryPending);
  const std::string log = folder.Get("Errores.log");
  EXPECT_NE(log.find("x.zip: no se pudo conectar con el servidor (0 bytes; "), std::string::npos) << log;
}

// What this machine cannot take stops at once, names the amount and asks no other mirror.
TEST_F(DownloadTest, ADiskWithoutRoomIsNamedBeforeAByteIsTaken) {
  support::Answer huge = support::Text("x");
  huge.announced = "9000000000000000";
  server.On("/m/NewAct2/x.zip", huge);
  deployment.mirrors[0] = server.Url("/m/");
  deployment.mirrors[1] = server.Url("/otro/");
  deployment.usable[0] = deployment.usable[1] = true;
  const update::Fetched fetched = download.DescargarArchivo("x.zip", true);
  EXPECT_EQ(fetched.result, update::DownloadResult::Stopped);
  EXPECT_TRUE(fetched.reason.starts_with("disco lleno: faltan 85")) << fetched.reason;
  EXPECT_EQ(server.Targets(), std::vector<std::string>{"/m/NewAct2/x.zip"});
  EXPECT_TRUE(host.dialogs.shown.empty());
  EXPECT_NE(folder.Get("Errores.log").find("x.zip: disco lleno: faltan"), std::string::npos);
  EXPECT_FALSE(folder.Has("juego/x.zip"));
}

// What was fetched ahead gives way to the file whose turn it is, and only for want of room.
TEST_F(DownloadTest, WhatLiesReadyMakesRoomAndAFileInUseIsNotFetchedTwice) {
  server.On("/m/NewAct2/a.zip", support::Text(MakeZip({{"a", "a"}})));
  std::atomic<int> asked = 0;
  server.On("/m/NewAct2/b.zip", [&](const support::SeenRequest&) {
    support::Answer answer = support::Text(MakeZip({{"b", "b"}}));
    if (++asked == 1) answer.announced = "9000000000000000";
    return answer;
  });
  server.On("/m/NewAct2/c.zip", support::Text(MakeZip({{"c", "c"}})));
  server.On("/m/NewAct2/d.zip", support::Text(MakeZip({{"d", "d"}})));
  download.following = {"b.zip", "c.zip", "d.zip"};
  EXPECT_EQ(download.DescargarArchivo("a.zip", true).result, update::DownloadResult::Done);
  download.following = {"c.zip", "d.zip"};
  EXPECT_EQ(download.DescargarArchivo("b.zip", true).result, update::DownloadResult::Done);
  EXPECT_EQ(folder.Get("juego/b"), "b");
  folder.Put("juego/c/x", "");  // a folder in the file's place
  download.following = {"d.zip"};
  EXPECT_EQ(download.DescargarArchivo("c.zip", true).result, update::DownloadResult::Stopped);
  EXPECT_EQ(server.Count("/m/NewAct2/c.zip"), 1u);
  while (server.Count("/m/NewAct2/d.zip") == 0) std::this_thread::yield();
  download.ForgetFollowing();
  EXPECT_FALSE(platform::IsFolder(folders.Scratch("Unzip"))) << "what was prepared goes as well";
}

TEST_F(DownloadTest, TheEndOfTheProgramDuringADownloadClosesTheLauncher) {
  server.On("/m/NewAct2/x.zip", support::Silent());
  const auto id = host.events->Timers().Start(1, [this] {
    if (!server.Seen().empty()) lifetime.End(0);
  });
  host.clock.stepOnRead = 1;
  EXPECT_EQ(download.DescargarArchivo("x.zip", true).result, update::DownloadResult::Cancelled);
  host.events->Timers().Stop(id);
  EXPECT_EQ(closed, 1);
  EXPECT_FALSE(folder.Has("juego/x.zip"));
}

TEST_F(DownloadTest, TheFullClientNeverFindsItsArchive) {
  server.On("/m/Kelvarin.zip", support::Text(MakeZip({{"a.txt", "x"}})));
  download.DescargarCliente();
  EXPECT_EQ(window.lblName.Caption.Get(), "Cliente Kelvarin.zip");
  EXPECT_EQ(window.lblDirectorio.Caption.Get(), folders.BinDir + platform::kSeparator);
  EXPECT_FALSE(folder.Has("juego/Bin/Kelvarin.zip"));
  EXPECT_FALSE(folder.Has("juego/Bin/a.txt"));
  ASSERT_EQ(host.dialogs.shown.size(), 1u);
  EXPECT_EQ(host.dialogs.shown[0].text,
            "Error al Unzipear, pruebe que el archivo sea un original .ZIP y no .RAR");
  // A time-out returns without its question, however often it comes.
  server.On("/m/Kelvarin.zip", support::CutShort("x", 0));
  const std::uint64_t before = host.clock.Milliseconds();
  for (int i = 0; i < 6; ++i) download.DescargarCliente();
  EXPECT_EQ(host.dialogs.shown.size(), 1u);
  EXPECT_GE(host.clock.Milliseconds() - before, 6 * 10'000u);
}

TEST_F(DownloadTest, AChunkedTransferShowsSizesAndItsOddSpeed) {
  inet.StateChanged += [this](int number) { chunked.Inet1_StateChanged(number); };
  const auto transfer = [&](const support::Answer& answer) {
    state = {};
    state.TargetPath = folder / "juego/trozos";
    platform::TryRemoveFile(state.TargetPath);
    server.On("/trozos", answer);
    inet.Execute(server.Url("/trozos"));
    for (int i = 0; i < 10'000 && !state.Completed; ++i) {
      host.clock.Step(1);
      host.events->WaitEvents(1);
    }
    EXPECT_TRUE(state.Completed);
  };
  const std::string body(2560, 'x');
  transfer(support::Text(body));
  EXPECT_FALSE(state.Failed);
  EXPECT_TRUE(folder.Get("juego/trozos") == body);
  EXPECT_EQ(window.lblVelocity.Caption.Get(),
            "2kb de 2kb a 5kb/s");  // 2.5 kb, to even; the whole size as speed
  EXPECT_EQ(window.lblsize.Caption.Get(), "2kb");
  EXPECT_EQ(window.lblEstado.Caption.Get(), "Descarga finalizada.");

  support::Answer unknown = support::Text(body);
  unknown.framing = support::Answer::Framing::UntilClose;
  transfer(unknown);
  EXPECT_EQ(window.lblsize.Caption.Get(), "0kb");

  transfer(support::CutShort(body, 1500));
  EXPECT_TRUE(state.Failed);
  EXPECT_FALSE(folder.Has("juego/trozos"));
  EXPECT_EQ(window.lblEstado.Caption.Get(), "Error en la conexión.");
}

}  // namespace
