#include "support/tls_servers.hpp"

#include <chrono>
#include <thread>

#include "support/host_path.hpp"

namespace support {
namespace {

constexpr auto kGenerous = std::chrono::seconds(60);

}  // namespace

TlsServers::TlsServers() {
  const std::string script = HostPath(LAUNCHER_TLS_SERVERS), folder = HostPath(folder_.Path());
  if (script.empty() || !StartOnHost("/bin/sh", "\"" + script + "\" \"" + folder + "\"")) return;
  const auto end = std::chrono::steady_clock::now() + kGenerous;
  while (!folder_.Has("ready") && !folder_.Has("failed") && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  running_ = folder_.Has("ready");
}

std::string TlsServers::Url(const std::string& kind) const {
  return "https://localhost:" + folder_.Get(kind + ".port") + "/";
}

std::string TlsServers::Authority() const { return folder_ / "trusted.crt"; }

}  // namespace support
