#include "web/server_list.hpp"

#include <algorithm>

#include "base/numeric.hpp"
#include "base/text.hpp"
#include "startup/procedure.hpp"

namespace modGeneral {
namespace {

// No more records of an answer are kept: three are shown, and an answer of nothing but separators would fill
// the memory.
constexpr std::size_t kMostServers = 256;

// An answer that no header keeps fresh is not asked for at each tick, which is a third of what an open
// launcher costs its mirror.
constexpr std::uint64_t kShortestAgeMs = 30'000;

constexpr const char* kOnline = "ONLINE";
constexpr controls::Colour kRed = 255;
constexpr controls::Colour kGreen = 65280;

bool IsOnline(const Server& server) { return base::Upper(server.state) == kOnline; }

Server ServerOf(std::string_view record) {
  const auto text = [record](int n) { return std::string(base::Field(record, n, '@')); };
  const auto number = [record](int n) { return base::Val(base::Field(record, n, '@')); };
  return {.field1 = base::ToByte(number(1)),
          .name = text(2),
          .state = text(3),
          .field4 = text(4),
          .field5 = base::ToInt32(number(5)),
          .players = base::ToInt16(number(6)),
          .remark = text(7),
          .field8 = base::ToInt32(number(8))};
}

std::string RecordOf(const Server& server) {
  return std::to_string(server.field1) + "@" + server.name + "@" + server.state + "@" + server.field4 + "@" +
         std::to_string(server.field5) + "@" + std::to_string(server.players) + "@" + server.remark + "@" +
         std::to_string(server.field8) + "|";
}

std::string CaptionOf(const Server& server) {
  if (server.name.empty() && server.state.empty()) return {};
  std::string caption = server.name + " ";
  if (IsOnline(server)) {
    caption += kOnline + (" - " + std::to_string(server.players)) + " Users.";
  } else {
    caption += base::Upper(server.state);
  }
  return server.remark.empty() ? caption : caption + " - " + server.remark;
}

auto WordsOf(const char* procedure) {
  return [procedure](const startup::Failure& failure) {
    return failure.Opening() + " procedimiento " + procedure + " Módulo modGeneral línea: " + failure.Line();
  };
}

}  // namespace

ServerList::ServerList(const startup::Services& services, controls::MainWindow& frmMain, web::Inet1& inet,
                       web::smodXmlHttp& transfers, const web::Hosts& hosts, HostSelection& selection,
                       web::ScriptBudget& budget)
    : services_(services),
      frmMain_(frmMain),
      inet_(inet),
      transfers_(transfers),
      hosts_(hosts),
      selection_(selection),
      budget_(budget) {}

std::string ServerList::GetServersList() {
  std::string answer;
  const auto body = [&](int& line) {
    line = 10;
    answer = Ask().text;
    if (answer.empty() || answer == refused_) return;
    Take(answer, line);
    if (servers_.empty()) return;
    line = 50;
    if (listParsed_) {
      OrderLblServerList();
    } else {
      selection_.ComenzarActualizacion();
    }
  };
  startup::Guarded(services_.recorder, body, WordsOf("GetServersList"));
  return answer;
}

void ServerList::Take(const std::string& answer, int& line) {
  line = 20;
  refused_ = answer;  // until it is known to be good; the news timer brings the same answer every two seconds
  Parse(answer);
  refused_.clear();
  line = 30;
  SetCaptions(servers_.empty() ? "Servidor Web no Disponible." : "");
  line = 40;
  serverListText_.clear();
  for (std::size_t i = 0; i < servers_.size(); ++i) {
    // The second record is kept whatever its state.
    if (IsOnline(servers_[i]) || i == 1) serverListText_ += RecordOf(servers_[i]);
  }
}

// An answer that is no list changes nothing once there is one: what the player sees was true a minute ago.
void ServerList::KeepFresh() {
  const auto body = [&](int& line) {
    line = 10;
    const std::uint64_t now = services_.host.clock.Milliseconds();
    if (askedAt_ && now - *askedAt_ < kShortestAgeMs) return;
    if (serverListText_.empty()) return void(GetServersList());
    const web::TextAnswer answer = Ask();
    const bool list = answer.report.Arrived() && answer.head.status < 300 && base::Contains(answer.text, "|");
    if (!list || answer.text == shown_ || answer.text == refused_) return;
    Take(answer.text, line);
    line = 50;
    shown_ = answer.text;
    OrderLblServerList();
  };
  startup::Guarded(services_.recorder, body, WordsOf("GetServersList"));
}

// The two ways of fetching take turns.
web::TextAnswer ServerList::Ask() {
  const bool secondHost = services_.deployment.IsSecondHost(hosts_.WebBaseURL);
  const std::string url =
      hosts_.WebBaseURL + "../../web/include/info.php" + (secondHost ? "" : "?op=complete");
  web::Attempts attempts(services_, budget_);
  web::TextAnswer answer;
  answer.report.outcome.error = platform::HttpError::Cancelled;
  for (bool viaInet = secondHost; !answer.report.Arrived() && attempts.Next(); viaInet = !viaInet) {
    const web::TextOptions options{.wholeLimitMs = attempts.LimitMs(), .cache = &cache_};
    answer = viaInet ? inet_.OpenURL(url, options) : transfers_.GetHttpText(url, options);
  }
  askedAt_ = services_.host.clock.Milliseconds();
  return answer;
}

void ServerList::SetCaptions(const char* caption) {
  for (controls::Label* label : frmMain_.lblServerState) label->Caption = caption;
}

void ServerList::Parse(const std::string& answer) {
  listParsed_ = false;
  if (!base::Contains(answer, "|")) {
    selection_.ComenzarActualizacion();
    return;
  }
  std::vector<Server> servers;
  std::string_view rest = answer;
  while (!rest.empty() && servers.size() < kMostServers) {  // nothing behind a last "|" is no server
    const std::size_t end = std::min(rest.find('|'), rest.size());
    servers.push_back(ServerOf(rest.substr(0, end)));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  servers_ = std::move(servers);
  listParsed_ = true;
}

void ServerList::OrderLblServerList() {
  const auto body = [this](int& line) {
    const std::size_t shown = std::min(servers_.size(), frmMain_.lblServerState.size());
    for (std::size_t i = 0; i < shown; ++i) {
      line = 10;
      controls::Label& label = *frmMain_.lblServerState[i];
      label.ForeColor = IsOnline(servers_[i]) ? kGreen : kRed;
      label.Caption = CaptionOf(servers_[i]);
    }
  };
  startup::Guarded(services_.recorder, body, WordsOf("OrderLblServerList"));
}

}  // namespace modGeneral
