#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "startup/services.hpp"
#include "update/mirror_round.hpp"
#include "update/signed_verdict.hpp"
#include "update/trust_memory.hpp"
#include "update/update_list.hpp"
#include "web/bytes_fetch.hpp"
#include "web/download_state.hpp"
#include "web/expected.hpp"
#include "web/pace.hpp"

namespace update {

// What the operator signed, as far as this run of the update goes. With a key in Deployment.ini nothing
// counts but what the one publication says that was accepted for the run; without one everything may be
// fetched, and nothing is known of it.
class Trust {
 public:
  Trust(const startup::Services& services, const web::Hosts& hosts, MirrorRound& mirrors,
        const web::Pace& pace = {});

  // What was accepted counts no longer; nothing may be fetched before Accept.
  void BeginRun();

  enum class Answer {
    Ready,
    Refused,      // nothing may be fetched; `why` tells the player, in one sentence (Spanish)
    Interrupted,  // the run must end
  };
  // Accepts a publication for this run, from whichever mirror has one that counts; the second call of a run
  // keeps it. Each mirror's fault is logged.
  Answer Accept(std::string& why);

  // What a file of the publication ("OldAct/Mapas/Mapas1.zip") must be; none when it may not be fetched.
  std::optional<web::Expected> ExpectedOf(const std::string& name) const;

  // The numbers of the newest patches; none without a key, when those of the mirror count.
  std::optional<PatchCounts> Counts() const;

  // To be asked when the mirror in use gave another file than the one vouched for: whether it is because the
  // operator has published something newer meanwhile. Asks each mirror once.
  bool PublishedSince();
  // Whether it has been so in this run, which must then begin anew.
  bool Outdated() const { return outdated_; }

  // Seals the record of digests: known to this user's launchers alone, another one for each folder and key.
  // Empty when there can be none.
  std::string RecordSeal();

 private:
  struct Asked {
    SignedVerdict verdict;
    web::TransferReport report;
  };

  std::string ChooseKeys();
  void AddKey(const std::string& key);
  Asked Ask();
  Attempt AttemptSigned();
  void Take(SignedVerdict verdict);
  std::string WordsOf(const SignedVerdict& verdict) const;

  const startup::Services& services_;
  const web::Hosts& hosts_;
  MirrorRound& mirrors_;
  const web::Pace pace_;
  TrustMemory memory_;

  bool unkeyed_ = false;  // found out in this run; everything may be fetched
  SignedJudge judge_;
  std::optional<SignedFile> accepted_;
  SignedFault worst_ = SignedFault::None;  // of the mirrors asked
  std::string worstWords_;
  std::set<std::string> askedSince_;  // mirrors, whether there is something newer
  bool outdated_ = false;
};

}  // namespace update
