#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "web/server_list.hpp"

namespace web {

// The body of the main window's timer "Timer": asks for news and keeps the server list fresh.
class NewsQuery {
 public:
  // ShowMessage of the news pop-up: text, title, number, milliseconds.
  using ShowMessage = std::function<void(const std::string&, const std::string&, std::int32_t, std::int32_t)>;

  NewsQuery(const startup::Services& services, controls::MainWindow& frmMain, Inet1& inet,
            smodXmlHttp& transfers, const Hosts& hosts, modGeneral::HostSelection& selection,
            modGeneral::ServerList& servers, ScriptBudget& budget);

  void Timer_Timer();

  ShowMessage showMessage;  // set by the owner of the pop-up; empty: nothing is shown

  // Asked at the beginning of each tick for what says whether that tick may go on; set by the owner of the
  // mode. Empty: every tick goes on until the program ends.
  std::function<std::function<bool()>()> beginTick;

 private:
  TextAnswer Ask(const std::function<bool()>& goOn);
  void PauseAfter(const TextAnswer& answer);
  void TakeNews(const std::string& answer);

  const startup::Services& services_;
  controls::MainWindow& frmMain_;
  Inet1& inet_;
  smodXmlHttp& transfers_;
  const Hosts& hosts_;
  modGeneral::HostSelection& selection_;
  modGeneral::ServerList& servers_;
  ScriptBudget& budget_;
  AnswerCache cache_;
  std::string lastTitle_;
  std::string refused_;        // the last answer that could not be read, which was told
  std::uint32_t pauseMs_ = 0;  // of the last failure
  std::uint64_t askFrom_ = 0;  // in milliseconds of the clock
  std::int16_t ticks_ = 0;
  bool shown_ = false;
};

}  // namespace web
