#include "web/news_query.hpp"

#include <algorithm>

#include "base/numeric.hpp"
#include "base/text.hpp"
#include "startup/procedure.hpp"

namespace web {
namespace {

constexpr std::int16_t kTicksUntilShownAgain = 27000;  // 15 hours of ticks
constexpr std::int32_t kShownMs = 15000;
constexpr std::uint32_t kShortestPauseMs = 2'000, kLongestPauseMs = 60'000;
constexpr const char* kScript = "web/include/noticiasbase.php";

}  // namespace

NewsQuery::NewsQuery(const startup::Services& services, controls::MainWindow& frmMain, Inet1& inet,
                     smodXmlHttp& transfers, const Hosts& hosts, modGeneral::HostSelection& selection,
                     modGeneral::ServerList& servers, ScriptBudget& budget)
    : services_(services),
      frmMain_(frmMain),
      inet_(inet),
      transfers_(transfers),
      hosts_(hosts),
      selection_(selection),
      servers_(servers),
      budget_(budget) {}

// A run may begin while this waits for an answer. The status line belongs to the run from then on, so the
// rest is left out. A tick that asked nobody leaves the line alone; one that wrote puts back what belongs
// there.
void NewsQuery::Timer_Timer() {
  if (services_.host.clock.Milliseconds() < askFrom_) return;
  budget_.Renew();
  const std::function<bool()> mayGoOn = beginTick ? beginTick() : [] { return true; };
  const auto goOn = [&] { return !services_.lifetime.Ending() && mayGoOn(); };
  const auto body = [&](int& line) {
    line = 10;
    const TextAnswer answer = Ask(goOn);
    if (!goOn()) return;
    PauseAfter(answer);
    if (answer.text.empty()) return;
    line = 20;
    const std::string before = frmMain_.lblEstado.Caption;
    if (answer.asked) frmMain_.lblEstado.Caption = "Cargando lista de servidores y usuarios online...";
    line = 30;
    if (answer.text != refused_) TakeNews(answer.text);
    line = 40;
    selection_.ComenzarActualizacion(goOn);
    line = 50;
    if (goOn()) servers_.KeepFresh();
    line = 60;
    if (goOn()) servers_.Parse(servers_.Text());
    line = 70;
    if (goOn() && frmMain_.lblEstado.Caption.Get() != before)
      frmMain_.lblEstado.Caption = frmMain_.restingStatus;
  };
  startup::Guarded(services_.recorder, body, [](const startup::Failure& failure) {
    return failure.Opening() + " en el procedimiento Timer_Timer del modulo Formulario frmMain en la línea " +
           failure.Line();
  });
}

TextAnswer NewsQuery::Ask(const std::function<bool()>& goOn) {
  const bool secondHost = services_.deployment.IsSecondHost(hosts_.WebBaseURL);
  const std::string base = hosts_.WebBaseURL + (secondHost ? "/" : "../../") + kScript;
  const std::string api = services_.deployment.api + "/" + kScript;
  Attempts attempts(services_, budget_);
  TextAnswer answer;
  answer.report.outcome.error = platform::HttpError::Cancelled;
  for (bool first = true; !answer.report.Arrived() && goOn() && attempts.Next(); first = false) {
    const TextOptions options{.wholeLimitMs = attempts.LimitMs(), .cache = &cache_};
    const bool viaInet = first == secondHost;
    const std::string& url = first && secondHost ? api : base;
    answer = viaInet ? inet_.OpenURL(url, options) : transfers_.GetHttpText(url, options);
  }
  return answer;
}

// A script that fails, or has nothing to say, is asked again later and later.
void NewsQuery::PauseAfter(const TextAnswer& answer) {
  const bool good = !answer.text.empty() && answer.head.status < 400;
  pauseMs_ = good ? 0 : std::clamp(pauseMs_ * 2, kShortestPauseMs, kLongestPauseMs);
  askFrom_ = services_.host.clock.Milliseconds() + pauseMs_;
}

void NewsQuery::TakeNews(const std::string& answer) {
  refused_ =
      answer;  // until it is known to be good, so that bad news are told once and not every two seconds
  const std::string_view news = base::Field(answer, 1, '@');
  if (news.size() == answer.size() || !base::Contains(news, "|")) return;
  const std::int32_t number = base::ToInt32(base::Val(base::Field(news, 1, '|')));
  refused_.clear();
  const std::string title(base::Field(news, 3, '|'));
  if (title != lastTitle_) {
    lastTitle_ = title;
    shown_ = false;
  }
  ++ticks_;
  if (shown_ && ticks_ < kTicksUntilShownAgain) return;
  ticks_ = 0;
  shown_ = true;
  if (showMessage) showMessage(base::Replaced(base::Field(news, 4, '|'), "-", "/"), title, number, kShownMs);
}

}  // namespace web
