#pragma once

#include <map>
#include <string>

namespace soak {

using Files = std::map<std::string, std::string>;  // path with "/" to bytes

// Every file below a folder.
Files FilesOf(const std::string& folder);

// A small generated game in two versions, published and signed: the first by several releases, the second by
// one.
struct Game {
  // Everything is made below `folder`; `client`: what is published as the game client. Raises when it cannot
  // be.
  Game(const std::string& folder, const std::string& client);

  std::string publicKey;            // as Deployment.ini names it
  std::string list;                 // path of the second version's list, made by md5sum
  Files first, second;              // the game's files
  Files published, publishedFirst;  // what mirrors serve, and served before the second release
};

}  // namespace soak
