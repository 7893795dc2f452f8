#include "web/server_list.hpp"

#include "base/text.hpp"
#include "fuzz/support/promises.hpp"
#include "fuzz/support/web_world.hpp"

namespace {

constexpr std::size_t kMostServers = 256;

auto FieldsOf(const modGeneral::Server& server) {
  return std::tie(server.field1, server.name, server.state, server.field4, server.field5, server.players,
                  server.remark, server.field8);
}

// Those that the launcher keeps as text.
std::vector<modGeneral::Server> Kept(const std::vector<modGeneral::Server>& servers) {
  std::vector<modGeneral::Server> kept;
  for (std::size_t i = 0; i < servers.size(); ++i) {
    if (i == 1 || base::Upper(servers[i].state) == "ONLINE") kept.push_back(servers[i]);
  }
  return kept;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::WebWorld world;
  world.http.bodies["info.php"] = fuzz::Text(data, size);
  world.servers.GetServersList();
  const auto servers = world.servers.Servers();
  fuzz::Require(servers.size() <= kMostServers, "an answer of separators does not fill the memory");
  world.Step(31'000);
  world.servers.KeepFresh();
  if (world.servers.Text().empty()) return 0;
  const auto kept = Kept(servers);
  world.servers.Parse(world.servers.Text());
  const auto& again = world.servers.Servers();
  fuzz::Require(std::equal(again.begin(), again.end(), kept.begin(), kept.end(),
                           [](const auto& a, const auto& b) { return FieldsOf(a) == FieldsOf(b); }),
                "servers kept as text are the same servers");
  return 0;
}
