#include "web/host_selection.hpp"

#include <algorithm>

#include "base/numeric.hpp"
#include "base/text.hpp"
#include "startup/launcher_settings.hpp"
#include "startup/procedure.hpp"

namespace modGeneral {
namespace {

namespace keys = startup::keys;

constexpr std::uint32_t kPauseMs = 100;
constexpr std::uint32_t kPauseSlices = 10;  // the window handles its events after each
constexpr std::uint32_t kShortestPauseMs = 1'000, kLongestPauseMs = 30'000;
constexpr std::uint32_t kPauseSliceMs = 50;
constexpr std::uint32_t kReturnMs = 60'000;  // in which a machine that woke has its network again
constexpr const char* kProbeFile = "Online.txt";

// A page with status 200 in place of the digit gives itself away by these words.
bool IsGoodAnswer(const std::string& body) {
  if (base::NumberText(base::Val(body)) != "1") return false;
  const std::string upper = base::Upper(body);
  return !base::Contains(upper, "DOCTYPE") && !base::Contains(upper, "ERROR");
}

auto WordsOf(const char* procedure) {
  return [procedure](const startup::Failure& failure) {
    return failure.Opening() + " in procedure " + procedure + " of Módulo modGeneral";
  };
}

}  // namespace

HostSelection::HostSelection(const startup::Services& services, controls::MainWindow& frmMain,
                             web::Inet1& inet, web::smodXmlHttp& transfers, web::Hosts& hosts,
                             web::ScriptBudget& budget,
                             const std::array<std::uint32_t, kProbeAttempts>& probeLimitsMs)
    : services_(services),
      frmMain_(frmMain),
      inet_(inet),
      transfers_(transfers),
      hosts_(hosts),
      budget_(budget),
      probeLimitsMs_(probeLimitsMs) {}

void HostSelection::RestoreHosts() {
  hosts_.CurrentUpdateURL = Stored(keys::kLastUrl);
  hosts_.WebBaseURL = Stored(keys::kUrlWeb);
}

// Only hosts that the deployment names are used; an address that it no longer holds is forgotten.
std::string HostSelection::Stored(const char* section) const {
  std::string url = services_.host.settings.Get(keys::kApplication, section, keys::kUrl);
  const auto& ring = services_.deployment.mirrors;
  return std::find(ring.begin(), ring.end(), url) == ring.end() ? std::string{} : url;
}

// An operator may list one address twice; the walk goes on from the place it has reached, not from the first
// entry that reads the same, or it would never get beyond.
std::string HostSelection::NextMirror() {
  const auto& ring = services_.deployment.mirrors;
  if (ring[place_] != hosts_.CurrentUpdateURL) {
    const auto found = std::find(ring.begin(), ring.end(), hosts_.CurrentUpdateURL);
    place_ = found == ring.end() ? ring.size() - 1 : static_cast<std::size_t>(found - ring.begin());
  }
  for (std::size_t step = 1; step <= ring.size(); ++step) {
    const std::size_t next = (place_ + step) % ring.size();
    if (!services_.deployment.usable[next]) continue;
    place_ = next;
    return ring[next];
  }
  return hosts_.CurrentUpdateURL;
}

void HostSelection::SwitchURL() {
  const auto body = [this](int&) {
    hosts_.WebBaseURL = NextMirror();
    hosts_.CurrentUpdateURL = hosts_.WebBaseURL;
    if (ShownConnecting) {
      frmMain_.lblEstado.Caption = "Conectando con el servidor de Kelvarin";
      ShownConnecting = true;
    } else {
      frmMain_.lblEstado.Caption = "Web inalcanzable, buscando web alternativa...";
    }
    for (std::uint32_t i = 0; i < kPauseSlices && !services_.lifetime.Ending(); ++i) {
      services_.host.clock.Sleep(kPauseMs / kPauseSlices);
      services_.host.events.DoEvents();
    }
  };
  startup::Guarded(services_.recorder, body, WordsOf("SwitchURL"));
}

bool HostSelection::Passable(const std::string& baseURL) const {
  const auto& ring = services_.deployment.mirrors;
  const auto found = std::find(ring.begin(), ring.end(), baseURL);
  return found == ring.end() || services_.deployment.usable[static_cast<std::size_t>(found - ring.begin())];
}

void HostSelection::ComenzarActualizacion(const std::function<bool()>& mayGoOn) {
  const auto goOn = [&] { return !services_.lifetime.Ending() && (!mayGoOn || mayGoOn()); };
  const auto body = [&](int&) {
    roundPauseMs_ = 0;
    for (Round round = BeginRound(); goOn(); --round.left) {
      if (Answers(roundPauseMs_ == 0 ? kProbeAttempts : 1)) return Choose();
      if (!goOn()) return;
      SwitchURL();
      if (round.left > 0) continue;
      if (ringSilent) ringSilent();
      PauseBetweenRounds(goOn);
      round.left = BeginRound().left + 1;
    }
  };
  startup::Guarded(services_.recorder, body, WordsOf("ComenzarActualizacion"));
}

bool HostSelection::Answers(std::size_t attempts) {
  return Passable(hosts_.WebBaseURL) && CheckOnline(hosts_.WebBaseURL, kProbeFile, attempts);
}

void HostSelection::Choose() {
  changed_ = false;
  hosts_.CurrentUpdateURL = hosts_.WebBaseURL;
  Persist(keys::kLastUrl, hosts_.CurrentUpdateURL);
  Persist(keys::kUrlWeb, hosts_.WebBaseURL);
}

// A hundred thousand launchers must not ask again in the same moment as soon as their mirrors are back.
void HostSelection::PauseBetweenRounds(const std::function<bool()>& goOn) {
  roundPauseMs_ = std::clamp(roundPauseMs_ * 2, kShortestPauseMs, kLongestPauseMs);
  std::uniform_int_distribution<std::uint32_t> share(0, roundPauseMs_ / 2);
  const std::uint32_t pause = roundPauseMs_ + share(random_);
  hurry_ = false;
  for (std::uint32_t waited = 0; waited < pause && !hurry_ && goOn(); waited += kPauseSliceMs) {
    services_.host.clock.Sleep(kPauseSliceMs);
    services_.host.events.DoEvents();
  }
}

bool HostSelection::ConfirmHost() {
  cache_.Forget(hosts_.WebBaseURL + kProbeFile);  // the host is in doubt, so its last word does not count
  if (!Answers()) {
    Round round = BeginRound();
    return NextInRound(round);
  }
  Choose();
  return true;
}

bool HostSelection::AwaitReturn(const std::function<bool()>& mayGoOn) {
  if (!changed_.exchange(false)) return false;
  const std::uint64_t end = services_.host.clock.Milliseconds() + kReturnMs;
  roundPauseMs_ = 0;
  while (mayGoOn() && services_.host.clock.Milliseconds() < end) {
    if (ConfirmHost()) return true;
    PauseBetweenRounds(mayGoOn);
  }
  return false;
}

Round HostSelection::BeginRound() const {
  const auto& usable = services_.deployment.usable;
  const auto mirrors = static_cast<std::size_t>(std::count(usable.begin(), usable.end(), true));
  return {mirrors == 0 ? 0 : mirrors - 1};
}

bool HostSelection::NextInRound(Round& round) {
  for (; round.left > 0 && !services_.lifetime.Ending(); --round.left) {
    SwitchURL();
    if (!Answers()) continue;
    --round.left;
    Choose();
    return true;
  }
  if (!services_.lifetime.Ending()) SwitchURL();  // once more, and the ring is back where the round began
  return false;
}

// The news timer comes by every two seconds; the disk is spared what it holds already.
void HostSelection::Persist(const char* section, const std::string& url) {
  if (services_.host.settings.Get(keys::kApplication, section, keys::kUrl) == url) return;
  services_.host.settings.Set(keys::kApplication, section, keys::kUrl, url);
}

// The news timer confirms the mirror every two seconds; a mirror that marks its answer as fresh is spared
// that by the cache. A bad answer is never kept.
bool HostSelection::CheckOnline(const std::string& baseURL, const std::string& fileName,
                                std::size_t attempts) {
  const std::string url = baseURL + fileName;
  LastCheckOK = false;
  for (std::size_t attempt = 0; attempt < attempts && !services_.lifetime.Ending(); ++attempt) {
    web::TextOptions options{.wholeLimitMs = probeLimitsMs_[attempt]};
    std::string body;
    if (attempt == 0) {
      options.cache = &cache_;
      inet_.Cancel();
      body = inet_.OpenURL(url, options).text;
    } else {
      body = transfers_.GetHttpText(url, options).text;
    }
    LastCheckOK = IsGoodAnswer(body);
    if (LastCheckOK) return true;
    cache_.Forget(url);
  }
  return false;
}

}  // namespace modGeneral
