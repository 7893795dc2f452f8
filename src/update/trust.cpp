#include "update/trust.hpp"

#include "base/base64.hpp"
#include "base/runtime_error.hpp"
#include "startup/blocking.hpp"
#include "util/sha256.hpp"

namespace update {
namespace {

constexpr const char* kName = "Signed.txt";
constexpr std::size_t kLargestSigned = 64u << 20;  // bytes; half a million files have a smaller one

// "2027-02-19T23:59:59Z" as players write it.
std::string DayOf(std::int64_t seconds) {
  const std::string text = UtcText(seconds);
  return text.substr(8, 2) + "/" + text.substr(5, 2) + "/" + text.substr(0, 4);
}

std::string_view PlainWordsOf(SignedFault fault) {
  constexpr std::pair<SignedFault, std::string_view> kWords[] = {
      {SignedFault::Unsigned, "falta la firma"},
      {SignedFault::UnknownFormat, "la firmada está en un formato que este launcher no conoce"},
      {SignedFault::Older, "la firmada es más vieja que la última conocida"},
      {SignedFault::Different, "la firmada es otra con el número de la última conocida"},
  };
  for (const auto& [known, words] : kWords) {
    if (known == fault) return words;
  }
  return "la firma no es la del juego";
}

}  // namespace

Trust::Trust(const startup::Services& services, const web::Hosts& hosts, MirrorRound& mirrors,
             const web::Pace& pace)
    : services_(services),
      hosts_(hosts),
      mirrors_(mirrors),
      pace_(pace),
      memory_(services.host.settings, services.folders) {}

void Trust::BeginRun() {
  unkeyed_ = outdated_ = false;
  judge_ = {};
  accepted_.reset();
  askedSince_.clear();
}

// Which signatures count, or why nothing may be fetched. A key that was followed once changes only to the one
// that it announced; while players get their new Deployment.ini, the operator still signs with the old one.
std::string Trust::ChooseKeys() {
  const startup::Deployment& deployment = services_.deployment;
  if (!deployment.unreadable.empty())
    return "Deployment.ini no se puede leer (" + deployment.unreadable + "), por eso no se instala nada.";
  const TrustMemory::Keys used = memory_.KeysInUse();
  if (!deployment.publicKey) {
    unkeyed_ = used.current.empty();
    return unkeyed_ ? "" : "En Deployment.ini falta PublicKey, la clave con la que se firmaba este juego.";
  }
  const std::string& named = *deployment.publicKey;
  if (!startup::IsUsableKey(named)) return "La clave PublicKey de Deployment.ini no se puede usar.";
  if (!used.current.empty() && named != used.current && named != used.next)
    return "La clave PublicKey de Deployment.ini no es la que firmaba este juego, ni la que esa anunció.";
  AddKey(named);
  if (!used.current.empty() && named != used.current) AddKey(used.current);
  return {};
}

void Trust::AddKey(const std::string& key) {
  judge_.keys.push_back({key, base::FromBase64(key).value_or(""), memory_.NewestUnder(key)});
}

Trust::Answer Trust::Accept(std::string& why) {
  if (accepted_) return Answer::Ready;
  BeginRun();
  why = ChooseKeys();
  if (!why.empty()) return Answer::Refused;
  if (unkeyed_) return Answer::Ready;
  worst_ = SignedFault::None;
  const MirrorRound::Result result = mirrors_.Fetch(kName, [this] { return AttemptSigned(); });
  if (result.end == MirrorRound::End::Good) return Answer::Ready;
  if (result.end == MirrorRound::End::Interrupted) return Answer::Interrupted;
  why = result.last.kind == Attempt::Kind::OwnFailure
            ? "No se pudo recordar la publicación firmada: " + result.last.reason + "."
            : "Ningún servidor tiene una publicación firmada válida: " + worstWords_ + ".";
  return Answer::Refused;
}

Trust::Asked Trust::Ask() {
  web::Bytes answer = web::FetchBytes(services_, hosts_.CurrentUpdateURL + kName, kLargestSigned, pace_);
  Asked asked{{}, std::move(answer.report)};
  const int status = asked.report.outcome.status;
  if (!asked.report.Good()) {
    const bool missing = asked.report.Arrived() && (status == 404 || status == 410);
    asked.verdict.fault = missing ? SignedFault::Unsigned : SignedFault::NotArrived;
  } else {
    judge_.now = services_.host.clock.UnixTime();
    startup::RunBlocking(services_, [&](std::stop_token) { asked.verdict = judge_.Judge(answer.bytes); });
  }
  return asked;
}

Attempt Trust::AttemptSigned() {
  Asked asked = Ask();
  const SignedFault fault = asked.verdict.fault;
  if (asked.report.own) return {Attempt::Kind::OwnFailure, asked.report.Reason(), asked.report.Details()};
  if (fault == SignedFault::None) {
    try {
      Take(std::move(asked.verdict));
    } catch (const base::RuntimeError& error) {
      return {Attempt::Kind::OwnFailure, error.Description(), error.Description()};
    }
    return {};
  }
  const bool arrived = fault != SignedFault::NotArrived;
  const std::string words = arrived ? WordsOf(asked.verdict) : asked.report.Reason();
  if (fault > worst_) {
    worst_ = fault;
    worstWords_ = words;
  }
  return {.kind = arrived ? Attempt::Kind::BadContent : Attempt::Kind::NotArrived,
          .reason = words,
          .details = arrived ? words : asked.report.Details(),
          .cut = asked.report.outcome.error == platform::HttpError::CutShort,
          .digest = hosts_.CurrentUpdateURL};  // what one mirror withholds another may have
}

void Trust::Take(SignedVerdict verdict) {
  const TrustMemory::Keys used = memory_.KeysInUse();
  const bool sameKey = used.current == verdict.key;
  memory_.Remember(verdict.key, TrustMemory::Publication{verdict.file.version, verdict.digest});
  // An announcement holds until another one takes its place: players may have the key already.
  const std::string& next = verdict.file.nextKey;
  memory_.Remember({verdict.key, next.empty() && sameKey ? used.next : next});
  accepted_ = std::move(verdict.file);
}

std::string Trust::WordsOf(const SignedVerdict& verdict) const {
  const std::string today = " y esta computadora dice que hoy es " + services_.host.clock.DateText();
  switch (verdict.fault) {
    case SignedFault::Expired:
      return "venció el " + DayOf(verdict.file.expires) + today;
    case SignedFault::FromFuture:
      return "se firmó el " + DayOf(verdict.file.signedAt) + today;
    default:
      return std::string(PlainWordsOf(verdict.fault));
  }
}

std::optional<web::Expected> Trust::ExpectedOf(const std::string& name) const {
  if (unkeyed_) return web::Expected{};
  if (!accepted_) return std::nullopt;
  const auto found = accepted_->files.find(name);
  if (found == accepted_->files.end()) return std::nullopt;
  return web::Expected{found->second.size, found->second.digest};
}

std::optional<PatchCounts> Trust::Counts() const {
  return accepted_ ? std::optional(accepted_->counts) : std::nullopt;
}

bool Trust::PublishedSince() {
  if (!accepted_ || outdated_ || !askedSince_.insert(hosts_.CurrentUpdateURL).second) return outdated_;
  const SignedVerdict verdict = Ask().verdict;
  outdated_ = verdict.fault == SignedFault::None && verdict.file.version > accepted_->version;
  return outdated_;
}

std::string Trust::RecordSeal() {
  const std::string secret = memory_.Secret();
  return secret.empty() ? secret : util::Sha256(secret + services_.deployment.publicKey.value_or(""));
}

}  // namespace update
