#include <csignal>

#include "publisher/commands.hpp"
#include "publisher/layout.hpp"
#include "publisher/mirror_server.hpp"

namespace publisher {

bool Serve(const CommandLine& line, Console& console) {
  const Layout layout = Layout::Existing(line.operands[0]);
  // Blocked before the server makes its threads, so that only the wait below takes them.
  sigset_t ends;
  sigemptyset(&ends);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&ends, signal);
  pthread_sigmask(SIG_BLOCK, &ends, nullptr);
  const MirrorServer server(layout, line.options.serve, console);
  console.out << "Serving " << layout.Root() << " on " << server.Url() << std::endl;
  int signal = 0;
  sigwait(&ends, &signal);
  return true;
}

}  // namespace publisher
