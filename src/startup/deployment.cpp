#include "startup/deployment.hpp"

#include <algorithm>
#include <span>
#include <vector>

#include "base/base64.hpp"
#include "base/runtime_error.hpp"
#include "base/url.hpp"
#include "platform/files.hpp"
#include "platform/signature.hpp"

namespace startup {
namespace {

struct TextKey {
  const char* key;
  std::string Deployment::*field;
  const char* builtIn;
};

constexpr TextKey kSiteKeys[] = {
    {"Web", &Deployment::web, "http://127.0.0.1:8250"},
    {"Api", &Deployment::api, "http://127.0.0.1:8250"},
    {"Support", &Deployment::support, "http://127.0.0.1:8250/soporte"},
    {"Forum", &Deployment::forum, "http://127.0.0.1:8250/foro"},
    {"Social", &Deployment::social, "http://127.0.0.1:8250/social"},
    {"Chat", &Deployment::chat, "https://127.0.0.1:8251/chat"},
    {"Client1", &Deployment::client1, "http://127.0.0.1:8250/cliente"},
    {"Client2", &Deployment::client2, "http://127.0.0.1:8250/files/cliente"},
};
constexpr TextKey kLaunchKeys[] = {
    {"Parameter", &Deployment::parameter, "KELVARIN"},
    {"StaffApplication", &Deployment::staffApplication, "KVN_STAFF"},
};
constexpr struct {
  const char* section;
  std::span<const TextKey> keys;
} kTexts[] = {{"SITE", kSiteKeys}, {"LAUNCH", kLaunchKeys}};

constexpr std::array<const char*, kMirrorCount> kBuiltInMirrors = {
    "https://127.0.0.1:8251/update/kvn2011/",      "https://127.0.0.2:8251/files/update/kvn2011/",
    "http://127.0.0.1:8250/update/kvn2011/",       "http://127.0.0.3:8250/update/kvn2011/",
    "http://127.0.0.2:8250/files/update/kvn2011/", "https://127.0.0.4:8251/update/kvn2011/",
    "https://127.0.0.5:8251/update/kvn2011/",
};

constexpr std::uint64_t kLargestFile = 1 << 20;

// Why a file that is there cannot be read; a key or mirror that it names must not be taken for none.
std::string WhyUnreadable(const std::string& file) {
  if (!platform::IsThere(file)) return {};
  try {
    platform::ReadWhole(file, kLargestFile);
    return {};
  } catch (const base::RuntimeError& error) {
    return error.Description();
  }
}

// The built-in ring counts as long as none of the entries is filled in.
void LoadMirrors(platform::ProfileFiles& profiles, const std::string& file, Deployment& deployment) {
  std::vector<std::string> keys;
  for (int entry = 1; entry <= kMirrorCount; ++entry) keys.push_back(std::to_string(entry));
  const auto values = profiles.Find(file, "MIRRORS", keys);
  const bool named = !deployment.unreadable.empty() ||
                     std::any_of(values.begin(), values.end(),
                                 [](const auto& value) { return !value.value_or("").empty(); });
  for (std::size_t i = 0; i < deployment.mirrors.size(); ++i) {
    deployment.mirrors[i] = values[i].value_or(named ? "" : kBuiltInMirrors[i]);
    deployment.usable[i] = base::IsMirrorUrl(deployment.mirrors[i]);
  }
}

void CutTrailingSlashes(std::string& url) {
  while (url.ends_with('/')) url.pop_back();
}

}  // namespace

bool Deployment::AnyUsable() const { return std::find(usable.begin(), usable.end(), true) != usable.end(); }

bool Deployment::IsSecondHost(const std::string& url) const { return url == mirrors[1] || url == mirrors[4]; }

bool IsUsableKey(const std::string& publicKey) {
  const auto key = base::FromBase64(publicKey);
  return key && platform::IsPublicKey(*key);
}

std::vector<std::string> ProblemsOf(const Deployment& deployment) {
  if (!deployment.unreadable.empty())
    return {"Deployment.ini no se puede leer (" + deployment.unreadable + "), por eso no se instala nada."};
  std::vector<std::string> problems;
  if (deployment.publicKey && !IsUsableKey(*deployment.publicKey)) {
    problems.push_back(
        "Deployment.ini: TRUST/PublicKey no es una clave que se pueda usar; no se instala nada.");
  }
  for (std::size_t i = 0; i < deployment.mirrors.size(); ++i) {
    if (deployment.usable[i] || deployment.mirrors[i].empty()) continue;
    problems.push_back("Deployment.ini: MIRRORS/" + std::to_string(i + 1) +
                       " no es una dirección http o https completa terminada en \"/\"; no se usará.");
  }
  if (!deployment.AnyUsable()) {
    problems.push_back(
        "Deployment.ini: ninguna dirección de MIRRORS se puede usar; no es posible actualizar el juego.");
  }
  return problems;
}

Deployment LoadDeployment(platform::ProfileFiles& profiles, const std::string& file) {
  Deployment deployment;
  deployment.unreadable = WhyUnreadable(file);
  for (const auto& [section, texts] : kTexts) {
    std::vector<std::string> keys;
    for (const TextKey& text : texts) keys.emplace_back(text.key);
    const auto values = profiles.Find(file, section, keys);
    for (std::size_t i = 0; i < texts.size(); ++i) {
      deployment.*texts[i].field = values[i].value_or(texts[i].builtIn);
    }
  }
  CutTrailingSlashes(deployment.web);
  CutTrailingSlashes(deployment.api);
  const std::string key = "PublicKey";
  deployment.publicKey = profiles.Find(file, "TRUST", {&key, 1}).front();
  LoadMirrors(profiles, file, deployment);
  return deployment;
}

}  // namespace startup
