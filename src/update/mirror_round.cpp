#include "update/mirror_round.hpp"

#include <set>

namespace update {

MirrorRound::Result MirrorRound::Fetch(const std::string& piece, const std::function<Attempt()>& attempt) {
  using Kind = Attempt::Kind;
  Result result;
  std::set<std::string> badContents;
  modGeneral::Round round = selection_.BeginRound();
  bool triedAgain = false;
  for (;;) {
    Attempt now = attempt();
    if (!mode_.MayGoOn() || now.kind == Kind::Outdated) return {End::Interrupted};
    if (now.kind == Kind::Good) return {End::Good};
    services_.recorder.Note(piece + ": " + now.details + " " + hosts_.CurrentUpdateURL);
    result.end = End::Failed;
    if (now.kind == Kind::NotArrived) ++result.notArrived;
    const bool again = now.cut && !triedAgain;
    const bool same = now.kind == Kind::BadContent && !badContents.insert(now.digest).second;
    const bool hopeless = now.kind == Kind::OwnFailure || same;
    // Bytes that came and are bad tell more than a mirror that did not answer.
    if (hopeless || now.kind == Kind::BadContent || result.last.kind != Kind::BadContent)
      result.last = std::move(now);
    if (hopeless) return result;
    triedAgain = again;
    if (again) continue;
    if (selection_.NextInRound(round)) continue;
    const bool returned = selection_.AwaitReturn([this] { return mode_.MayGoOn(); });
    if (!mode_.MayGoOn()) return {End::Interrupted};
    if (!returned) return result;
    round = selection_.BeginRound();
  }
}

}  // namespace update
