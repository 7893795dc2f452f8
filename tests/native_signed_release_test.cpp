#include <gtest/gtest.h>

#include <ctime>
#include <sstream>

#include "publisher/mirror_server.hpp"
#include "support/launcher_run.hpp"
#include "support/posix/publication.hpp"

namespace {

// A publication by the publisher's own commands, as launchers that were given its key take it.
struct SignedRelease : testing::Test {
  SignedRelease() {
    pub.game.Put("Bin/KVN-DX8.exe", "el cliente");
    pub.game.Put("Bin/Año 1/ñandú #1 & más.dat", support::Noise(50'000, 1));
    pub.game.Put("RECURSOS/MAPAS1/1.map", "uno");
    publicKey = pub.Keygen(key);
    EXPECT_EQ(pub.Release({"--key", key}), 0) << pub.err;
    run.machine.clock.unixTime = std::time(nullptr);  // by which the publisher has signed
    publisher::ServeOptions options;
    options.port = 0;
    server = std::make_unique<publisher::MirrorServer>(publisher::Layout(pub.Root()), options, console);
    const std::string web = server->Url();
    support::Deploy(run.folder, run.game, {web + "update/kvn2011/"}, web.substr(0, web.size() - 1),
                    publicKey);
  }
  ~SignedRelease() override { run.machine.http.reset(); }  // before the server waits for its connections

  void Play() { run.PlayUntilStopped(); }
  std::map<std::string, std::string> Game() const { return support::FilesOf(pub.game.Path()); }

  support::TestPublication pub;
  const std::string key = pub.folder / "key.pem";
  std::string publicKey;
  std::ostringstream said;
  publisher::Console console{said, said};
  std::unique_ptr<publisher::MirrorServer> server;
  support::LauncherRun run;
};

TEST_F(SignedRelease, IsInstalledAndUpdatedUnderItsKey) {
  Play();
  EXPECT_EQ(run.GameFiles(), Game()) << run.Status();
  pub.game.Put("Bin/KVN-DX8.exe", "el cliente nuevo");
  pub.game.Put("RECURSOS/MAPAS1/1.map", "uno nuevo");
  ASSERT_EQ(pub.Release({"--key", key}), 0) << pub.err;
  Play();
  EXPECT_EQ(run.GameFiles(), Game()) << run.Status();
}

}  // namespace
