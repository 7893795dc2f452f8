#pragma once

#include <map>
#include <string>
#include <vector>

#include "support/archives.hpp"
#include "support/faulty_server.hpp"
#include "support/signer.hpp"
#include "support/temp_folder.hpp"

namespace support {

// A mirror that publishes a small game; what it answers can be spoiled afterwards through `server`.
class GameMirror {
 public:
  static constexpr const char* kBase = "/update/kvn2011/";

  GameMirror();

  // The next patch of a category; files by their paths below the game folder.
  void AddPatch(const std::string& category, const std::vector<ZipItem>& files);
  // A file of the index by its path below Bin ("\" between folders), and its packed download.
  void AddBinFile(const std::string& name, const std::string& bytes);
  void AddIndexRecord(const IndexItem& item) { index_.push_back(item); }
  void Publish();  // the update list and the index, as they stand

  // Every file of the publication as it was published last, by its name below the base.
  const std::map<std::string, std::string>& Published() const { return published_; }
  // Publishes a Signed.txt over them; its counts and digests are theirs, the rest as `file` has it.
  void Sign(const Signer& signer, update::SignedFile file);

  // How the game folder must look afterwards: path below it ("/") to bytes.
  const std::map<std::string, std::string>& Expected() const { return expected_; }

  std::string Url() const { return server.Url(kBase); }
  std::string PathOf(const std::string& relative) const { return kBase + relative; }
  // What was asked below the base, in order, the probe and the web scripts left out; packed files, which are
  // asked for several at a time, by their names.
  std::vector<std::string> Asked() const;

  FaultyServer server;

 private:
  void PublishFile(const std::string& name, const std::string& bytes);

  std::map<std::string, std::string> published_;
  std::map<std::string, int> counts_;
  std::vector<IndexItem> index_;
  std::map<std::string, std::string> expected_;
};

// Writes a Deployment.ini whose first mirrors are these; the others are closed ports. `publicKey`: empty when
// it names none.
void Deploy(const TempFolder& folder, const std::string& game, const std::vector<std::string>& mirrors,
            const std::string& web, const std::string& publicKey = {});

}  // namespace support
