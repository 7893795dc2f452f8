#include "support/posix/publication.hpp"

#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "platform/files.hpp"
#include "publisher/commands.hpp"
#include "update/inflater.hpp"
#include "update/zip_archive.hpp"

namespace support {

TestPublication::TestPublication() { EXPECT_EQ(Init(), 0) << err; }

int TestPublication::Run(const std::vector<std::string>& words) {
  std::ostringstream said, complained;
  publisher::Console console{said, complained};
  const int status = publisher::Run(words, console);
  out = said.str();
  err = complained.str();
  return status;
}

int TestPublication::Release(std::vector<std::string> options) {
  std::vector<std::string> words = {"release", Root(), game.Path()};
  words.insert(words.end(), options.begin(), options.end());
  return Run(words);
}

std::map<std::string, std::string> TestPublication::Everything() const { return FilesOf(Root()); }

std::map<std::string, std::string> FilesOf(const std::string& folder) {
  std::map<std::string, std::string> files;
  for (const platform::FoundFile& found : platform::ListTree(folder)) {
    files[found.path] = platform::ReadWhole(folder + "/" + found.path, 1u << 30);
  }
  return files;
}

std::map<std::string, std::string> FilesIn(const std::string& archive) {
  const update::ZipArchive zip(archive);
  update::Inflater inflater;
  std::map<std::string, std::string> files;
  for (const auto& entry : zip.Entries()) {
    if (entry.folder) continue;
    std::string& bytes = files[entry.name];
    const auto take = [&](std::span<const std::byte> piece) {
      bytes.append(reinterpret_cast<const char*>(piece.data()), piece.size());
    };
    zip.Expand(entry, inflater, take, {});
  }
  return files;
}

std::string Noise(std::size_t size, unsigned seed) {
  std::minstd_rand random(seed);
  std::string bytes(size, '\0');
  for (char& c : bytes) c = static_cast<char>(random() >> 8);
  return bytes;
}

}  // namespace support
