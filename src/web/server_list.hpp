#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "web/host_selection.hpp"

namespace modGeneral {

// One game server as its record of eight "@"-separated fields tells it.
struct Server {
  std::uint8_t field1 = 0;
  std::string name;
  std::string state;
  std::string field4;
  std::int32_t field5 = 0;
  std::int16_t players = 0;
  std::string remark;
  std::int32_t field8 = 0;
};

// The servers and their three labels in the main window.
class ServerList {
 public:
  ServerList(const startup::Services& services, controls::MainWindow& frmMain, web::Inet1& inet,
             web::smodXmlHttp& transfers, const web::Hosts& hosts, HostSelection& selection,
             web::ScriptBudget& budget);

  // Asks, parses, shows; Text then holds the servers that are up. The raw answer, empty when nothing arrived.
  std::string GetServersList();
  // Asks, at most twice a minute and not while the last answer is fresh, and shows what changed.
  void KeepFresh();
  void OrderLblServerList();
  // Replaces the servers; an answer without any "|" leaves them and chooses the host anew. Raises 6
  // (Overflow) for a number that its field cannot hold, the servers being left as well.
  void Parse(const std::string& answer);

  const std::string& Text() const { return serverListText_; }
  const std::vector<Server>& Servers() const { return servers_; }

 private:
  web::TextAnswer Ask();
  void Take(const std::string& answer, int& line);
  void SetCaptions(const char* caption);

  const startup::Services& services_;
  controls::MainWindow& frmMain_;
  web::Inet1& inet_;
  web::smodXmlHttp& transfers_;
  const web::Hosts& hosts_;
  HostSelection& selection_;
  web::ScriptBudget& budget_;
  web::AnswerCache cache_;
  std::vector<Server> servers_;
  bool listParsed_ = false;
  std::string serverListText_;
  std::string refused_;                   // the last answer that could not be parsed, which was told
  std::string shown_;                     // the last answer that KeepFresh showed
  std::optional<std::uint64_t> askedAt_;  // in milliseconds of the clock
};

}  // namespace modGeneral
