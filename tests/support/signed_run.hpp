#pragma once

#include <functional>
#include <list>
#include <map>
#include <string>
#include <vector>

#include "support/launcher_run.hpp"
#include "support/signer.hpp"

namespace support {

// A launcher that follows an operator's key, and his mirror with publication 7. An older client is installed.
struct SignedRun : LauncherRun {
  static constexpr const char* kNoneCounts = "Ningún servidor tiene una publicación firmada válida: ";

  SignedRun();

  // Of an hour ago and good for a month.
  update::SignedFile Version(std::uint64_t number) const;
  // What an operator would publish and the launcher install: two patches of Mapas, one of Extras, two files
  // of Bin. `edition` stands in their bytes.
  static void PublishGame(GameMirror& mirror, const std::string& edition);

  // Mirrors in ring order; the others of the ring refuse.
  void Deploy(const std::vector<std::string>& mirrors, const std::string& publicKey);
  void Deploy(const std::vector<std::string>& mirrors) { Deploy(mirrors, signer.PublicKey()); }

  // A mirror that does as `mirror`, but for what the test makes it answer.
  FaultyServer& Twin();
  std::string UrlOf(const FaultyServer& server) const { return server.Url(GameMirror::kBase); }

  void PlayOnce(const std::string& commandLine = "");
  bool ClientStarted() const;
  std::string Log() const;
  std::string SignedText() { return mirror.server.AnswerFor({"GET", mirror.PathOf("Signed.txt"), {}}).body; }
  // The game's files, the counters and Deployment.ini, path to bytes.
  std::map<std::string, std::string> Everything() const;

  Signer signer;
  std::list<FaultyServer> twins;
};

}  // namespace support
