#include "soak/game.hpp"

#include <cstdlib>
#include <random>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "platform/files.hpp"
#include "publisher/commands.hpp"

namespace soak {
namespace {

constexpr std::uint64_t kLargest = 64 << 20;
constexpr std::size_t kFirstReleases = 10;  // so that each category has several patches, one behind the other

// Half of the files compress, half do not.
std::string Content(unsigned number, std::size_t size) {
  std::minstd_rand random(number + 1);
  std::string bytes;
  bytes.reserve(size + 40);
  while (bytes.size() < size) {
    if (number % 2 == 0) {
      bytes += static_cast<char>(random() >> 8);
    } else {
      bytes += "capa=" + std::to_string(random() % 7) + " x=" + std::to_string(random() % 100) + "\r\n";
    }
  }
  bytes.resize(size);
  return bytes;
}

// 60 files of four categories and of Bin. One is so large that its archive is gone on with after an
// interruption.
Files FirstVersion(const std::string& client) {
  constexpr const char* kFolders[] = {"RECURSOS/MAPAS1/Mapa ",
                                      "RECURSOS/GRAFICOS/gr\xC3\xA1"
                                      "fico ",
                                      "RECURSOS/WAVS/", "datos/textos/di\xC3\xA1logo ", "Bin/recursos/"};
  Files files;
  for (unsigned i = 0; i < 58; ++i) {
    files[kFolders[i % std::size(kFolders)] + std::to_string(i) + ".dat"] = Content(i, 500 + i * i * 25);
  }
  files["RECURSOS/GRAFICOS/fondo.dat"] = Content(100, 1'600'000);
  files["Bin/KVN-DX8.exe"] = client;
  return files;
}

Files SecondVersion(Files files) {
  for (const unsigned i : {0, 5, 10, 3, 8, 4, 9}) {
    for (auto& [name, bytes] : files) {
      if (name.ends_with((i < 10 ? " " : "") + std::to_string(i) + ".dat") ||
          name == "Bin/recursos/" + std::to_string(i) + ".dat")
        bytes = Content(1000 + i, bytes.size() + 17);
    }
  }
  files.erase("Bin/recursos/14.dat");
  files["Bin/recursos/nuevo.dat"] = Content(2000, 30'000);
  files["RECURSOS/MAPAS1/Mapa nuevo.dat"] = Content(2001, 5'000);
  return files;
}

// What the first version's releases have published by then.
Files Share(const Files& all, std::size_t release) {
  Files share;
  std::size_t number = 0;
  for (const auto& file : all) {
    if (number++ % kFirstReleases < release) share.insert(file);
  }
  return share;
}

void Put(const std::string& folder, const Files& files) {
  for (const auto& [name, bytes] : files) {
    const std::string path = folder + "/" + name;
    platform::MakeFolders(platform::FolderOf(path));
    platform::WriteWhole(path, bytes);
  }
}

std::string Published(const std::vector<std::string>& words) {
  std::ostringstream said, complained;
  publisher::Console console{said, complained};
  if (publisher::Run(words, console) != 0)
    throw std::runtime_error("publisher " + words[0] + ": " + complained.str());
  return said.str();
}

Files WithoutOwn(Files files) {
  std::erase_if(files, [](const auto& file) { return file.first.starts_with("."); });
  return files;
}

}  // namespace

Files FilesOf(const std::string& folder) {
  Files files;
  for (const platform::FoundFile& found : platform::ListTree(folder)) {
    files[found.path] = platform::ReadWhole(folder + "/" + found.path, kLargest);
  }
  return files;
}

Game::Game(const std::string& folder, const std::string& client)
    : list(folder + "/list"), first(FirstVersion(client)), second(SecondVersion(first)) {
  const std::string publication = folder + "/publication", key = folder + "/key.pem";
  const std::string line = Published({"keygen", key});
  publicKey = line.substr(line.find('=') + 1, line.find('\n') - line.find('=') - 1);
  Published({"init", publication});
  for (std::size_t step = 1; step <= kFirstReleases; ++step) {
    Put(folder + "/first", Share(first, step));
    Published({"release", publication, folder + "/first", "--key", key, "--no-client"});
  }
  publishedFirst = WithoutOwn(FilesOf(publication));
  Put(folder + "/second", second);
  Published({"release", publication, folder + "/second", "--key", key, "--no-client"});
  published = WithoutOwn(FilesOf(publication));
  const std::string command =
      "cd '" + folder + "/second' && find . -type f -print0 | xargs -0 md5sum >'" + list + "'";
  if (std::system(command.c_str()) != 0) throw std::runtime_error("no list by md5sum");
}

}  // namespace soak
