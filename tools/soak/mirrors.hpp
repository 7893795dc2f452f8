#pragma once

#include <atomic>
#include <list>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "soak/dice.hpp"
#include "soak/game.hpp"
#include "support/faulty_server.hpp"

namespace soak {

// The ring of seven that one installation knows. Some entries refuse every connection, one may fail its
// probe, the others answer theirs; whichever piece is asked for, one of those gives it whole, another one for
// each piece, and what the rest give is left to the dice.
class Mirrors {
 public:
  enum class Role { Refuses, FailsProbe, Answers };

  Mirrors(const Game& game, const Dice& dice);

  std::vector<std::string> Addresses() const { return addresses_; }  // in ring order
  std::string Site() const;                                          // where the scripts are
  void Behave() { behave_ = true; }                                  // no faults from now on
  void NextStart() { ++start_; }  // of the launcher; other mirrors are good now

  std::map<std::string, int> Faults() const;  // that were met, by kind
  int Fetched() const { return fetched_; }    // archives and files of Bin that were asked for so far

 private:
  support::Answer AnswerOf(int entry, const support::SeenRequest& request);
  support::Answer FileOf(int entry, const std::string& name, const support::SeenRequest& request);
  support::Answer Spoilt(int entry, const std::string& name, const std::string& good, Dice dice);
  bool IsGood(int entry, const std::string& name) const;
  bool TakesSilence(Dice& dice);

  const Game& game_;
  const Dice dice_;
  double badness_;    // share of requests that meet a fault
  bool silenceLeft_;  // one at most, since it takes the launcher's whole patience
  std::vector<Role> roles_;
  std::vector<int> answering_;
  std::vector<std::string> addresses_;
  std::atomic<bool> behave_ = false;
  std::atomic<int> start_ = 0, fetched_ = 0;
  mutable std::mutex mutex_;
  std::map<std::string, int> faults_, asked_;
  std::list<support::ClosedPort> closed_;
  std::list<support::FaultyServer> servers_;  // last, so that their threads end first
};

}  // namespace soak
