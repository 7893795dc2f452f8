#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "support/temp_folder.hpp"

namespace support {

// A game folder and its publication, worked on by the publisher's commands in this process.
class TestPublication {
 public:
  TestPublication();

  // The exit status; `out` and `err` hold what was said by the last command.
  int Run(const std::vector<std::string>& words);
  int Init() { return Run({"init", Root()}); }
  int Patch(const std::string& category) { return Run({"patch", Root(), category, game.Path()}); }
  int Index() { return Run({"index", Root(), game.Path()}); }
  int Check() { return Run({"check", Root()}); }
  int Release(std::vector<std::string> options = {});  // of the game folder

  std::string Keygen(const std::string& file);  // the public key, as Deployment.ini names it

  std::string Root() const { return folder / "pub"; }
  std::string Get(const std::string& relative) const { return folder.Get("pub/" + relative); }
  void Put(const std::string& relative, const std::string& bytes) const {
    folder.Put("pub/" + relative, bytes);
  }

  // Every file of the publication and its path, the publisher's own included.
  std::map<std::string, std::string> Everything() const;

  TempFolder folder;
  TempFolder game;
  std::string out, err;
};

// Every file below a folder, path ("/") to bytes.
std::map<std::string, std::string> FilesOf(const std::string& folder);

// Every file of an archive, name ("/") to bytes, each proved.
std::map<std::string, std::string> FilesIn(const std::string& archive);

bool Holds(const std::string& text, const std::string& piece);

// Lets `work` change the publication in a process of its own again and again, each time after `change` (round
// -1 at first, then 0 and more), and kills it at any moment: the publication must pass its check after each.
void KillAtAnyMoment(TestPublication& pub, const std::function<void(int)>& change,
                     const std::function<int()>& work);

std::string Noise(std::size_t size, unsigned seed);  // bytes that do not compress

}  // namespace support
