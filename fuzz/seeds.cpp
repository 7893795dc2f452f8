// Writes the seeds of the fuzz targets with the project's own writers; `fuzz/make-seeds` runs it.
#include <cstdio>
#include <string>

#include "base/text.hpp"
#include "platform/files.hpp"
#include "startup/deployment.hpp"
#include "support/archives.hpp"
#include "support/signer.hpp"
#include "update/digest_record.hpp"
#include "update/patch_journal.hpp"

namespace {

std::string root;

void Write(const std::string& name, const std::string& bytes) {
  platform::MakeFolders(platform::FolderOf(root + "/" + name));
  platform::WriteWhole(root + "/" + name, bytes);
}

update::SignedFile Publication() {
  update::SignedFile file;
  file.version = 7;
  file.signedAt = 1'795'250'000;
  file.expires = 1'797'900'000;
  file.counts = {1, 2, 0, 0, 3, 0, 32767};
  file.files["NewAct2/Info.kvn"] = {std::string(64, 'a'), 692'000};
  file.files["OldAct/Mapas/Mapas1.zip"] = {std::string(64, '0'), 0};
  file.files["NewAct2/Bin/canci\xC3\xB3n 1.kvn"] = {std::string(64, '9'), 4'294'967'296};
  return file;
}

void WriteSigned() {
  const support::Signer signer;
  update::SignedFile file = Publication();
  Write("signed_file.key", signer.PublicKey() + "\n");
  Write("signed_file/whole", signer.Signed(file));
  Write("signed_file/body", update::SignedBody(file));
  file.nextKey = signer.PublicKey();
  Write("signed_file/next-key", signer.Signed(file));
  Write("signed_file/time", "2026-11-21T17:00:00Z");
  Write("signed_file/empty", signer.Signed(""));
}

std::vector<support::IndexItem> Index() {
  return {{support::Md5Of("a"), "\\Bin\\KVN-DX8.exe"},
          {support::Md5Of("b"), "\\Bin\\datos\\sonido \xF1.wav"},
          {"not found                       ", "\\Bin\\opcional.txt"},
          {support::Md5Of("c"), "\\Bin\\..\\fuera.txt"},
          {"                                ", "/BIN/otro.dat"}};
}

std::string TinyRecords(std::size_t count) {
  return support::MakeIndex(std::vector<support::IndexItem>(count, {std::string(32, '0'), ""}));
}

void WriteIndexes() {
  Write("index_file/few", support::MakeIndex(Index()));
  Write("index_file/none", support::MakeIndex({}));
  Write("index_file/more-than-there-are", support::MakeIndex(Index(), 6));
  Write("index_file/many-tiny", TinyRecords(1900));
  Write("packed_file/index", support::MakePacked(support::MakeIndex(Index())));
  Write("packed_file/many-tiny", support::MakePacked(TinyRecords(20'000)));
  Write("packed_file/refused", support::MakePacked(support::MakeIndex(std::vector<support::IndexItem>(
                                   5'000, {support::Md5Of("x"), "\\..\\" + std::string(60, 'n')}))));
  Write("packed_file/text", support::MakePacked("mapa 1\r\nmapa 2\r\n"));
  Write("packed_file/claims-less", support::MakePacked("mapa 1\r\nmapa 2\r\n", 5));
  Write("packed_file/claims-more", support::MakePacked("mapa 1\r\nmapa 2\r\n", 500));
  Write("packed_file/zeros", support::MakePacked(std::string(200'000, '\0')));
  Write("packed_file/cut", support::MakePacked("mapa 1\r\nmapa 2\r\n").substr(0, 15));
}

void WriteArchives() {
  const std::string text = "capa=1 x=2 y=3 solido=si\n";
  Write("zip_archive/several", support::MakeZip({{"RECURSOS/MAPAS1/Mapa1.map", text},
                                                 {"RECURSOS/", "", true},
                                                 {"Bin/old.dat", "newer", true},
                                                 {"Bin/programa", text, false, 1 << 11, 8, 0100755}}));
  Write("zip_archive/none", support::MakeZip({}));
  Write("zip_archive/evil-name", support::MakeZip({{"../fuera.txt", text}}));
  Write("zip_archive/ours", support::MakeZip({{"Bin/MD5Update.ini", text}}));
  Write("zip_archive/file-and-folder", support::MakeZip({{"a", text}, {"a/b", text}}));
  Write("zip_archive/old-names", support::MakeZip({{"canci\xF3n.wav", text, false, 0}}));
  Write("zip_archive/zeros", support::MakeZip({{"ceros.dat", std::string(1'000'000, '\0')}}));
  std::vector<support::ZipItem> many(60);
  for (std::size_t i = 0; i < many.size(); ++i) many[i] = {std::to_string(i), "", true};
  Write("zip_archive/many-tiny", support::MakeZip(many));
}

// Backwards, since the provider takes numbers from the end of its input.
void WriteEntries() {
  Write("archive_entries/two", std::string("Bin/a.dat\\ some bytes\\ ") + std::string(3, '\0') +
                                   "mapas/b\\ other bytes\\ " + std::string(8, '\1'));
}

// Without their seals, which the target makes.
void WriteRecords() {
  const std::string file = root + "/digest_record/plain";
  platform::MakeFolders(platform::FolderOf(file));
  update::DigestRecord record(file, "any");
  record.Remember("KVN-DX8.exe", {692'000, 133'000'000'000}, {});
  record.Remember("datos/sonido \xC3\xB1.wav", {0, -1}, {});
  record.Save([](const std::string&) {});
  const std::string text = platform::ReadWhole(file, 1 << 16);
  platform::WriteWhole(file, text.substr(0, text.find("; sello ")));
}

void WriteJournals() {
  update::WriteJournal(root, {{"n", "n/m"}, {"Bin/old.dat", "n/m/b", "c"}});
  const std::string journal = root + "/diario.txt", text = platform::ReadWhole(journal, 1 << 16);
  platform::RemoveFile(journal);
  Write("patch_journal/begun", "\x17" + text);
  Write("patch_journal/moved", "\x16" + text);
  Write("patch_journal/torn", "\xFF" + text.substr(0, text.size() / 2));
}

const std::pair<const char*, std::string> kTexts[] = {
    {"update_list/plain", "[INIT]\nInit=1\nMapas=32767\nGraficos=0\nMidis=5\nWavs=x\nAU= 7\nExtras=1e3\n"},
    {"update_list/one-line", "[INIT] Init=1 Mapas=2 Graficos=40000 Midis=\"5\" Wavs=-1 AU=.5 Extras=+3"},
    {"server_list/plain",
     "1@Kelvarin Norte@ONLINE@1@0@187@@0|2@Sur@Online@1@0@64@Evento doble@0|3@Pruebas@OFFLINE@0@0@0@Mant@0"},
    {"server_list/too-large", "1@a@ONLINE@1@0@99999@@0|300@b@ONLINE@@@@@|"},
    {"server_list/separators", std::string(1000, '|')},
    {"server_list/no-list", "<!DOCTYPE html><h1>404</h1>"},
    {"news/plain",
     "12|0|Torneo de parejas este s\xC3\xA1"
     "bado|14-11-2026@"},
    {"news/odd", "99999999999|0|t|x@y|@|"},
    {"client_address/dotted", "21/11/2026-203.0.113.9"},
    {"client_address/colons", "21/11/2026-2001:db8:0:0:0:0:0:1"},
    {"client_address/unknown", "21/11/2026-Null No AU"},
    {"ini_text/change",
     "INIT\nFPS\n60\nMusicVolume\n; comment\r\n[INIT]\r\nFPS=100\r\nMusicVolume = \"5\"\r\n[b]\r\nFPS=1"},
    {"ini_text/add", "INIT\nNew\n1\nFPS\n[INIT]\nFPS=100\n\n\n[other]\nNew=2\n"},
    {"ini_text/section", "A\nb\nc\nd\nno section"},
    {"game_config/plain",
     "[INIT]\r\nVersion=1.0.03\r\nFPS=60\r\nSoundVolume=-100\r\nMusicVolume=5\r\nNameSaved=\xF1"
     "andu\r\nMaxInterfaces=2\r\n"
     "CreditoInterfaz0=a\r\nCreditoInterfaz2=c\r\nChatType=3\r\nWAV1=1\r\nWAV305=1\r\n"},
    {"game_config/too-large", "[INIT]\r\nVersion=1.0.03\r\nSoundVolume=40000\r\nFPS=7\r\n"},
    {"game_config/other-version", "[INIT]\r\nVersion=0.9\r\nRememberPassword=1\r\n"},
    {"deployment/plain",
     "[MIRRORS]\n1=http://127.0.0.1:8250/update/kvn2011/\n2=ftp://x/\n7=https://mirror.example/a b/\n"
     "[SITE]\nWeb=http://x///\n[LAUNCH]\nParameter=KELVARIN\n[TRUST]\nPublicKey=QUJD\n"},
    {"url/plain", "http://user@host:80/a/./b/../c//d?x=../y#z"},
    {"url/upper", "HTTPS://Host:443/%41/ \xC3\xB1/.."},
    {"relative_name/plain", "\\Bin\\datos/sonido \xC3\xB1.wav"},
    {"relative_name/device", "a/COM\xC2\xB9.txt"},
    {"relative_name/climbs", "a/..\\..\\b"},
    {"http_answer/fresh",
     "200\ncache-control: max-age=60, public\netag: \"v1\"\nage: 10\ncontent-type: text/html; "
     "charset=\"ISO-8859-1\"\n\nni\xF1o"
     "\1"
     "304\nexpires: Sun, 06 Nov 1994 08:49:37 GMT\ndate: Sat, 29 Feb 2020 23:59:60 GMT\n\n"},
    {"http_answer/guessed",
     "200\nlast-modified: Sun, 06 Nov 1994 08:49:37 GMT\ndate: Mon, 07 Nov 1994 08:49:37 GMT\n\n\xEF\xBB\xBF"
     "1"
     "\1"
     "200\ncache-control: no-store\n\n\xF0\x9F\x8E\xAE\xED\xA0\x80"},
    {"file_transfer/plain",
     "whole\n5 abcde\n200\ncontent-length: 5\n\nabcde\1whole\n4\n200\n\nabcde\1parts\n\n404\n\npage"},
    {"file_transfer/resumed",
     "parts\n\n200\ncontent-length: 2000000\netag: \"v1\"\naccept-ranges: bytes\n\nthe first bytes"
     "\1parts\n\n206\netag: \"v1\"\ncontent-range: bytes 15-1999999/2000000\nx-cut: 1\n\nmore"
     "\1parts\n30\n206\netag: \"v1\"\ncontent-range: bytes 19-1999999/2000000\n\nand the last"},
};

}  // namespace

int main(int count, char** words) {
  if (count != 2) return 2;
  root = words[1];
  WriteSigned();
  WriteIndexes();
  WriteArchives();
  WriteEntries();
  WriteRecords();
  WriteJournals();
  for (const auto& [name, text] : kTexts) Write(name, text);
  return 0;
}
