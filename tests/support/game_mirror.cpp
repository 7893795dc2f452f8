#include "support/game_mirror.hpp"

#include <algorithm>

#include "base/text.hpp"
#include "startup/deployment.hpp"
#include "update/counter_store.hpp"
#include "util/sha256.hpp"

namespace support {

GameMirror::GameMirror() {
  server.On(PathOf("Online.txt"), Text("1"));
  for (const char* script : {"/web/include/info.php", "/web/include/info.php?op=complete"}) {
    server.On(script, Text("1@Alpha@online@@0@37@@0|2@Beta@OFFLINE@@0@0@Mantenimiento@0"));
  }
  server.On("/web/include/ipdate.php", Text("21/11/2026-127.0.0.1"));
  server.On("/web/include/noticiasbase.php", Text("7||Torneo|Hoy 20-30@"));
}

void GameMirror::AddPatch(const std::string& category, const std::vector<ZipItem>& files) {
  const int number = ++counts_[category];
  for (const ZipItem& file : files) {
    if (!file.name.ends_with('/')) expected_[file.name] = file.bytes;
  }
  PublishFile("OldAct/" + category + "/" + category + std::to_string(number) + ".zip", MakeZip(files));
}

void GameMirror::AddBinFile(const std::string& name, const std::string& bytes) {
  const std::string slashed = base::Replaced(name, "\\", "/");
  index_.push_back({Md5Of(bytes), "\\Bin\\" + name});
  expected_["Bin/" + slashed] = bytes;
  PublishFile("NewAct2/Bin/" + slashed + ".kvn", MakePacked(bytes));
}

void GameMirror::Publish() {
  std::string list = "[INIT]";
  for (const char* category : update::kCategories) {
    list += std::string(" ") + category + "=" + std::to_string(counts_[category]);
  }
  server.On(PathOf("OldAct/Update.ini"), Text(list));
  PublishFile("NewAct2/Info.kvn", MakePacked(MakeIndex(index_)));
}

void GameMirror::PublishFile(const std::string& name, const std::string& bytes) {
  published_[name] = bytes;
  server.On(PathOf(name), Text(bytes));
}

void GameMirror::Sign(const Signer& signer, update::SignedFile file) {
  for (std::size_t i = 0; i < update::kCategories.size(); ++i)
    file.counts[i] = static_cast<std::int16_t>(counts_[update::kCategories[i]]);
  for (const auto& [name, bytes] : published_) file.files[name] = {util::Sha256(bytes), bytes.size()};
  server.On(PathOf("Signed.txt"), Text(signer.Signed(file)));
}

std::vector<std::string> GameMirror::Asked() const {
  std::vector<std::string> asked;
  for (const std::string& target : server.Targets()) {
    if (!target.starts_with(kBase) || target.ends_with("Online.txt")) continue;
    asked.push_back(target.substr(std::string_view(kBase).size()));
  }
  const auto packed = [](const std::string& name) { return name.starts_with("NewAct2/Bin/"); };
  for (auto at = asked.begin(); at != asked.end();) {
    const auto from = std::find_if(at, asked.end(), packed);
    at = std::find_if_not(from, asked.end(), packed);
    std::sort(from, at);
  }
  return asked;
}

void Deploy(const TempFolder& folder, const std::string& game, const std::vector<std::string>& mirrors,
            const std::string& web, const std::string& publicKey) {
  static const ClosedPort closed;
  std::string ini = "[MIRRORS]\r\n";
  for (int i = 0; i < startup::kMirrorCount; ++i) {
    const auto at = static_cast<std::size_t>(i);
    ini += std::to_string(i + 1) + "=" +
           (at < mirrors.size() ? mirrors[at] : closed.Url("/" + std::to_string(i) + "/")) + "\r\n";
  }
  ini += "[SITE]\r\nWeb=" + web + "\r\nApi=" + web + "\r\nSupport=http://soporte.example/\r\n";
  ini += "[LAUNCH]\r\nParameter=CLAVE 1\r\nStaffApplication=LauncherTestStaff\r\n";
  if (!publicKey.empty()) ini += "[TRUST]\r\nPublicKey=" + publicKey + "\r\n";
  folder.Put(game + "/Deployment.ini", ini);
}

}  // namespace support
