#pragma once

#include <string>

#include "controls/main_window.hpp"
#include "platform/host.hpp"
#include "startup/deployment.hpp"
#include "startup/error_recorder.hpp"
#include "startup/lifetime.hpp"
#include "web/Inet1.hpp"
#include "web/download_state.hpp"
#include "web/smodXmlHttp.hpp"

namespace modGeneral {

// Finds a mirror that answers and remembers it.
class HostSelection {
 public:
  HostSelection(platform::Host& host, const startup::Deployment& deployment, startup::ErrorRecorder& recorder,
                startup::Lifetime& lifetime, controls::MainWindow& frmMain, web::Inet1& inet,
                web::smodXmlHttp& transfers, web::Hosts& hosts);

  // Fills the hosts from the settings store.
  void RestoreHosts();

  // Advances to the next usable mirror of the ring.
  void SwitchURL();

  // Walks the ring until a mirror answers its probe, then persists it. Returns early only when the program
  // ends.
  void ComenzarActualizacion();

  // Whether baseURL & fileName answers with the number 1; at most three attempts.
  bool CheckOnline(const std::string& baseURL, const std::string& fileName);

  // Server date "-" public address.
  std::string ClientAddressQuery();

 private:
  platform::Host& host_;
  const startup::Deployment& deployment_;
  startup::ErrorRecorder& recorder_;
  startup::Lifetime& lifetime_;
  controls::MainWindow& frmMain_;
  web::Inet1& inet_;
  web::smodXmlHttp& transfers_;
  web::Hosts& hosts_;
  bool ShownConnecting = false;
  bool LastCheckOK = false;
  std::string ServerDate;
  std::string PublicAddress;
};

}  // namespace modGeneral
