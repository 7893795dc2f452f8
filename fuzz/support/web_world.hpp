#pragma once

#include <map>
#include <string>

#include "platform/http_client.hpp"
#include "support/test_services.hpp"
#include "web/news_query.hpp"

namespace fuzz {

// Answers from memory, each address ending as a key does; a probe is always answered well.
class CannedHttp : public platform::HttpClient {
 public:
  platform::HttpOutcome Get(const platform::HttpRequest& request, platform::HttpSink& sink,
                            std::stop_token) override;

  std::map<std::string, std::string> bodies;  // by the end of the address, without its query
};

// The web floor of a launcher with one mirror. What it keeps, it keeps for one input.
class WebWorld {
  static support::TestServices& Shared();
  support::TestServices& base_ = Shared();

 public:
  WebWorld();

  CannedHttp http;
  platform::Host machine{base_.host.clock, *base_.host.events,   base_.host.dialogs,   base_.host.processes,
                         base_.host.shell, *base_.host.settings, *base_.host.profiles, http};
  startup::Services services{machine,     base_.folders,  base_.deployment,
                             base_.flags, base_.recorder, base_.lifetime};
  controls::MainWindow frmMain{base_.host.events->Timers()};
  web::DownloadState state;
  web::Hosts hosts;
  web::smodXmlHttp transfers{services, frmMain, state, hosts};
  web::Inet1 inet{services};
  web::ScriptBudget scripts;
  modGeneral::HostSelection selection{services, frmMain, inet, transfers, hosts, scripts};
  modGeneral::ServerList servers{services, frmMain, inet, transfers, hosts, selection, scripts};
  web::NewsQuery news{services, frmMain, inet, transfers, hosts, selection, servers, scripts};

  void Step(std::uint64_t milliseconds) { base_.host.clock.Step(milliseconds); }
};

}  // namespace fuzz
