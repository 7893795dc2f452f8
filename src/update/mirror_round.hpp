#pragma once

#include <functional>
#include <optional>
#include <string>

#include "startup/services.hpp"
#include "update/run_mode.hpp"
#include "web/host_selection.hpp"

namespace update {

// What one mirror gave of a piece.
struct Attempt {
  enum class Kind {
    Good,
    NotArrived,  // the transfer failed, or a page came in its place
    BadContent,  // it came whole and is of no use
    OwnFailure,  // this machine could not take it, so no other mirror will do better
    Outdated,    // the operator has published something newer, so the run must begin anew
  };
  Kind kind = Kind::Good;
  std::string reason{};    // for the player: a few words in Spanish, no full stop
  std::string details{};   // for the log
  bool cut = false;        // worth a second try at the same mirror
  std::string digest{};    // of bad content, so that the same bytes of another mirror are recognised
  bool otherFile = false;  // bad content that is not what the operator signed
  bool noRoom = false;     // an own failure: the disk is full
};

// Asks the mirrors of the ring in turn for one piece of the publication until one gives it whole and good.
class MirrorRound {
 public:
  enum class End {
    Good,
    Failed,       // one whole round failed, or two mirrors gave the same bad bytes
    Interrupted,  // the run must end, or begin anew
  };
  struct Result {
    End end = End::Good;
    Attempt last{};      // of a failed round: the one that says most
    int notArrived = 0;  // how many transfers failed
  };

  MirrorRound(const startup::Services& services, const RunMode& mode, const web::Hosts& hosts,
              modGeneral::HostSelection& selection)
      : services_(services), mode_(mode), hosts_(hosts), selection_(selection) {}

  // `attempt` asks the mirror that is chosen then. Every failure is logged with its host.
  Result Fetch(const std::string& piece, const std::function<Attempt()>& attempt);

 private:
  const startup::Services& services_;
  const RunMode& mode_;
  const web::Hosts& hosts_;
  modGeneral::HostSelection& selection_;
};

}  // namespace update
