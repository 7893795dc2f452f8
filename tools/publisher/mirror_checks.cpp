#include "publisher/mirror_checks.hpp"

#include <algorithm>
#include <map>
#include <set>

#include "base/url.hpp"
#include "platform/machine.hpp"
#include "publisher/cache_rules.hpp"
#include "publisher/checks.hpp"
#include "publisher/live_mirror.hpp"

namespace publisher {
namespace {

constexpr int kMirrors = 7;
constexpr int kSecondHost[] = {2, 5};  // entries whose scripts are asked at another place

using Digests = std::map<std::string, std::string>;

struct Checked {
  std::string url;
  Digests digests;
  std::size_t files = 0;
};

Checked CheckOne(const std::string& url, std::map<std::string, std::string> elsewhere,
                 const std::string& publicKey, Findings& findings, Console& console) {
  LiveMirror mirror(url, std::move(elsewhere), findings);
  Examination examination(mirror, publicKey, findings, console);
  examination.CheckAll();
  mirror.CheckManners();
  return {url, mirror.Digests(), examination.Expected().size()};
}

// The scripts may answer each player differently.
bool IsTheSameEverywhere(const std::string& name) {
  return KindOf(name) == FileKind::Archive || KindOf(name) == FileKind::Replaced;
}

// Every mirror beside the first one that has the file.
void Compare(const std::vector<Checked>& mirrors, Findings& findings) {
  std::map<std::string, const Checked*> first;
  for (const Checked& mirror : mirrors) {
    for (const auto& [name, digest] : mirror.digests) {
      if (!IsTheSameEverywhere(name)) continue;
      const Checked* other = first.emplace(name, &mirror).first->second;
      if (other->digests.at(name) == digest) continue;
      findings.Problem(mirror.url + base::UrlPath(name) + ": it is not the same as " + other->url +
                       base::UrlPath(name));
    }
  }
}

bool IsSecondHost(int entry) {
  return std::find(std::begin(kSecondHost), std::end(kSecondHost), entry) != std::end(kSecondHost);
}

// Where launchers ask for the scripts of their second update host.
std::map<std::string, std::string> ElsewhereFor(int entry, const std::string& url, std::string api) {
  if (!IsSecondHost(entry)) return {};
  while (api.ends_with('/')) api.pop_back();
  return {{names::kServers, base::ResolvedUrl(url + "../../" + names::kServers)},
          {names::kNews, api + "/" + names::kNews},
          {names::kAddress, api + "/" + names::kAddress}};
}

}  // namespace

std::size_t CheckMirror(const std::string& url, const std::string& publicKey, Findings& findings,
                        Console& console) {
  if (!base::IsMirrorUrl(url))
    throw Failure(url + ": no complete address, http or https, that ends in \"/\"");
  return CheckOne(url, {}, publicKey, findings, console).files;
}

std::size_t CheckDeployment(const std::string& file, Findings& findings, Console& console) {
  const auto profiles = platform::MakeProfileFiles();
  const std::string api = profiles->GetVar(file, "SITE", "Api");
  const std::string publicKey = profiles->GetVar(file, "TRUST", "PublicKey");
  std::vector<Checked> mirrors;
  std::set<std::string> seen;
  std::size_t files = 0;
  for (int entry = 1; entry <= kMirrors; ++entry) {
    const std::string url = profiles->GetVar(file, "MIRRORS", std::to_string(entry));
    if (url.empty()) continue;
    if (!base::IsMirrorUrl(url)) {
      findings.Problem(file + ": MIRRORS/" + std::to_string(entry) + " is \"" + url +
                       "\", no complete address, http or https, that ends in \"/\"");
      continue;
    }
    if (!seen.insert(url).second) {
      findings.Warning(file + ": MIRRORS/" + std::to_string(entry) + " is named a second time");
      continue;
    }
    if (IsSecondHost(entry) && api.empty()) {
      findings.Problem(file + ": SITE/Api is missing, where launchers on MIRRORS/" + std::to_string(entry) +
                       " ask for the web scripts");
    }
    console.err << "checking " << url << "\n";
    mirrors.push_back(CheckOne(url, ElsewhereFor(entry, url, api), publicKey, findings, console));
    files += mirrors.back().files;
  }
  if (mirrors.empty()) throw Failure(file + ": its section MIRRORS names no mirror");
  Compare(mirrors, findings);
  return files;
}

}  // namespace publisher
