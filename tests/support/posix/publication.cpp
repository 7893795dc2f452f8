#include "support/posix/publication.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <random>
#include <sstream>
#include <thread>

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

std::string TestPublication::Keygen(const std::string& file) {
  EXPECT_EQ(Run({"keygen", file}), 0) << err;
  const std::size_t begin = out.find('=') + 1;
  return out.substr(begin, out.size() - 1 - begin);
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

bool Holds(const std::string& text, const std::string& piece) {
  return text.find(piece) != std::string::npos;
}

void KillAtAnyMoment(TestPublication& pub, const std::function<void(int)>& change,
                     const std::function<int()>& work) {
  change(-1);
  const auto start = std::chrono::steady_clock::now();
  ASSERT_EQ(work(), 0) << pub.err;
  const auto usual =
      std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start);
  std::minstd_rand random(7);
  int killed = 0;
  for (int round = 0; round < 20; ++round) {
    change(round);
    const pid_t child = fork();
    if (child == 0) _exit(work() == 0 ? 0 : 9);
    std::this_thread::sleep_for(
        std::chrono::microseconds(random() % static_cast<unsigned>(usual.count() + 1)));
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    killed += WIFSIGNALED(status);
    EXPECT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) == 0);
    ASSERT_EQ(pub.Check(), 0) << "round " << round << "\n" << pub.out;
  }
  EXPECT_GT(killed, 0);
  EXPECT_EQ(work(), 0) << pub.err;
  EXPECT_EQ(pub.Check(), 0) << pub.out;
}

std::string Noise(std::size_t size, unsigned seed) {
  std::minstd_rand random(seed);
  std::string bytes(size, '\0');
  for (char& c : bytes) c = static_cast<char>(random() >> 8);
  return bytes;
}

}  // namespace support
