#include "support/signed_run.hpp"

#include "platform/encoding.hpp"
#include "update/counter_store.hpp"

namespace support {

SignedRun::SignedRun() {
  PublishGame(mirror, "siete");
  mirror.Sign(signer, Version(7));
  folder.Put(game + "/Bin/KVN-DX8.exe", "el cliente de antes");
  folder.Put(game + "/launcher.exe", "el launcher");
  Deploy({mirror.Url()});
}

update::SignedFile SignedRun::Version(std::uint64_t number) const {
  constexpr std::int64_t kHour = 3600;
  update::SignedFile file;
  file.version = number;
  file.signedAt = machine.clock.unixTime - kHour;
  file.expires = machine.clock.unixTime + 30 * 24 * kHour;
  return file;
}

void SignedRun::PublishGame(GameMirror& mirror, const std::string& edition) {
  mirror.AddPatch("Mapas", {{"RECURSOS/MAPAS1/1.map", "uno"}});
  mirror.AddPatch("Mapas", {{"RECURSOS/MAPAS1/2.map", "dos " + edition}});
  mirror.AddPatch("Extras", {{"leame.txt", std::string(5'000, 'x') + edition}});
  mirror.AddBinFile("KVN-DX8.exe", "el cliente " + edition);
  mirror.AddBinFile("Sub\\a.dll", std::string(3'000, 'a') + edition);
  mirror.Publish();
}

void SignedRun::Deploy(const std::vector<std::string>& mirrors, const std::string& publicKey) {
  support::Deploy(folder, game, mirrors, mirror.server.Url(""), publicKey);
}

FaultyServer& SignedRun::Twin() {
  FaultyServer& twin = twins.emplace_back("127.0.0.12");
  twin.Otherwise([this](const SeenRequest& request) { return mirror.server.AnswerFor(request); });
  return twin;
}

void SignedRun::PlayOnce(const std::string& commandLine) {
  mirror.server.Forget();
  Start(commandLine);
  if (commandLine.empty()) Play();
  UntilStopped();
}

bool SignedRun::ClientStarted() const {
  for (const platform::StartRequest& request : machine.processes.started) {
    if (request.program.ends_with("KVN-DX8.exe")) return true;
  }
  return false;
}

std::string SignedRun::Log() const { return platform::FromAnsi(folder.Get("Errores.log")); }

std::map<std::string, std::string> SignedRun::Everything() const {
  std::map<std::string, std::string> files = GameFiles();
  files["Deployment.ini"] = folder.Get(game + "/Deployment.ini");
  for (const char* category : update::kCategories) files[category] = Counter(category);
  return files;
}

}  // namespace support
