#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <random>
#include <string>

#include "controls/main_window.hpp"
#include "startup/services.hpp"
#include "web/Inet1.hpp"
#include "web/answer_cache.hpp"
#include "web/download_state.hpp"
#include "web/script_budget.hpp"
#include "web/smodXmlHttp.hpp"

namespace modGeneral {

inline constexpr int kProbeAttempts = 3;

// How long each attempt of a probe may take from connecting to the last byte, in milliseconds. A probe asks
// for one digit. The first attempt leaves a slow line time for names, connection and secure channel; a mirror
// that accepted it and stayed silent is given up after two shorter ones, so that it costs 20 seconds, and not
// three times the half minute that a download may stall.
inline constexpr std::array<std::uint32_t, kProbeAttempts> kProbeLimitsMs = {10'000, 5'000, 5'000};

// One walk round the ring in search of a mirror that can give something which the present one could not.
struct Round {
  std::size_t left = 0;  // mirrors that were not tried yet
};

// Finds a mirror that answers and remembers it.
class HostSelection {
 public:
  HostSelection(const startup::Services& services, controls::MainWindow& frmMain, web::Inet1& inet,
                web::smodXmlHttp& transfers, web::Hosts& hosts, web::ScriptBudget& budget,
                const std::array<std::uint32_t, kProbeAttempts>& probeLimitsMs = kProbeLimitsMs);

  // Fills the hosts from the settings store.
  void RestoreHosts();

  // Advances to the next usable mirror of the ring; without any the hosts stay as they are.
  void SwitchURL();

  // Called when a whole round of ComenzarActualizacion had no answer, before the pause that follows it. May
  // be empty.
  std::function<void()> ringSilent;

  // Walks the ring until a mirror answers its probe, then persists it. Rounds without an answer follow each
  // other more and more slowly (1, 2, 4 ... 30 s and a random share) and ask each mirror only once, so that a
  // ring that is switched off is spared; Hurry begins the next one at once.
  // Returns early when the program ends or `mayGoOn`, if given, says no.
  void ComenzarActualizacion(const std::function<bool()>& mayGoOn = {});
  void Hurry() { hurry_ = true; }
  // The machine woke or its network is another one: as Hurry, and AwaitReturn waits. May be called from any
  // thread.
  void NetworkChanged() { hurry_ = changed_ = true; }
  // When NetworkChanged was called since a mirror answered last: waits up to a minute for one to answer,
  // since the network may need a while. False when none did, and at once when it was not called.
  bool AwaitReturn(const std::function<bool()>& mayGoOn);

  // As ComenzarActualizacion, but gives up, and returns false, after one whole round.
  bool ConfirmHost();

  // A round that begins at the mirror in use.
  Round BeginRound() const;
  // Goes on to the next mirror of the round that answers its probe, and remembers it. False when there is
  // none left (the hosts then stand at the mirror where the round began) or the program ends.
  bool NextInRound(Round& round);

  // Whether baseURL & fileName answers with the number 1; at most three attempts. Stops what Inet1 is doing.
  bool CheckOnline(const std::string& baseURL, const std::string& fileName,
                   std::size_t attempts = kProbeAttempts);

  // Server date "-" public address, as far as they are known.
  std::string ClientAddressQuery();

 private:
  bool Passable(const std::string& baseURL) const;
  std::string NextMirror();
  bool Answers(std::size_t attempts = kProbeAttempts);
  void Choose();
  std::string Stored(const char* section) const;
  void PauseBetweenRounds(const std::function<bool()>& goOn);
  void Persist(const char* section, const std::string& url);
  std::string AddressQueryUrl() const;
  bool TakeAddress(const std::string& body);

  const startup::Services& services_;
  controls::MainWindow& frmMain_;
  web::Inet1& inet_;
  web::smodXmlHttp& transfers_;
  web::Hosts& hosts_;
  web::ScriptBudget& budget_;
  std::array<std::uint32_t, kProbeAttempts> probeLimitsMs_;
  web::AnswerCache cache_;  // of good probes
  std::size_t place_ = 0;   // in the ring, of the mirror chosen last
  std::minstd_rand random_{std::random_device{}()};
  std::atomic<bool> hurry_ = false, changed_ = false;
  std::uint32_t roundPauseMs_ = 0;  // before the last round; 0: none failed yet
  bool ShownConnecting = false;
  bool LastCheckOK = false;
  std::string ServerDate;
  std::string PublicAddress;
};

}  // namespace modGeneral
