#include "startup/deployment.hpp"

#include "base/url.hpp"
#include "fuzz/support/game_world.hpp"
#include "fuzz/support/promises.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const fuzz::GameWorld world;
  world.folder.Put("Deployment.ini", fuzz::Text(data, size));
  const startup::Deployment deployment =
      startup::LoadDeployment(*world.host.profiles, world.folder / "Deployment.ini");
  const auto problems = startup::ProblemsOf(deployment);
  fuzz::Require(deployment.unreadable.empty(), "a small file can be read");
  fuzz::Require(!problems.empty() || deployment.AnyUsable(), "a ring without a mirror is a problem");
  for (std::size_t i = 0; i < deployment.mirrors.size(); ++i) {
    const std::string& mirror = deployment.mirrors[i];
    fuzz::Require(deployment.usable[i] || mirror.empty() || !problems.empty(), "a bad address is a problem");
    if (deployment.usable[i])
      fuzz::Require(base::ResolvedUrl(mirror + "Online.txt").starts_with("http"), "a mirror can be asked");
  }
  fuzz::Require(!deployment.web.ends_with('/') && !deployment.api.ends_with('/'), "roots end in no slash");
  if (deployment.publicKey && !startup::IsUsableKey(*deployment.publicKey))
    fuzz::Require(!problems.empty(), "a key that cannot be used is a problem");
  return 0;
}
