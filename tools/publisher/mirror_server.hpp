#pragma once

#include <memory>

#include "publisher/command_line.hpp"
#include "publisher/layout.hpp"

namespace publisher {

// Serves a publication over HTTP on a loopback address from its making to its end; files are sent in pieces
// as they are read. Failure when it cannot listen.
class MirrorServer {
 public:
  MirrorServer(const Layout& layout, const ServeOptions& options, Console& console);
  ~MirrorServer();  // ends transfers that are under way

  std::string Url() const;  // of its root, "http://ADDRESS:PORT/"

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace publisher
