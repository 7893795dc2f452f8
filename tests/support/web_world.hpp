#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "platform/files.hpp"
#include "support/faulty_server.hpp"
#include "support/test_services.hpp"
#include "web/news_query.hpp"

namespace support {

// The web floor of a launcher that is installed in a temporary folder, with seven mirrors that are of no use
// until a test names some.
struct WebWorld : TestServices {
  WebWorld() : TestServices("game") {
    platform::MakeFolders(folders.Scratch(""));
    deployment.api = "http://127.0.0.1:1";
  }

  // Ring entry 1 to 7.
  void Mirror(int entry, const std::string& url) {
    deployment.mirrors[static_cast<std::size_t>(entry - 1)] = url;
    deployment.usable[static_cast<std::size_t>(entry - 1)] = true;
  }
  void Use(const std::string& baseURL) { hosts.CurrentUpdateURL = hosts.WebBaseURL = baseURL; }

  // Lets events and timers run until `condition` holds; false when it does not within ten seconds.
  bool PumpUntil(const std::function<bool()>& condition) {
    const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition()) {
      if (std::chrono::steady_clock::now() > giveUp) return false;
      host.clock.Step(20);
      host.events->WaitEvents(5);
    }
    return true;
  }

  // Calls `action` from the event loop, once `condition` holds.
  void When(std::function<bool()> condition, std::function<void()> action) {
    host.clock.stepOnRead = 1;  // time passes while the launcher waits
    auto& timers = host.events->Timers();
    const auto id = std::make_shared<platform::TimerQueue::Id>();
    *id = timers.Start(1, [=, &timers] {
      if (!condition()) return;
      timers.Stop(*id);
      action();
    });
  }

  controls::MainWindow frmMain{host.events->Timers()};
  web::DownloadState state;
  web::Hosts hosts;
  web::smodXmlHttp transfers{services, frmMain, state, hosts};
  web::Inet1 inet{services};
  web::ScriptBudget scripts{std::chrono::milliseconds(700)};
  modGeneral::HostSelection selection{services, frmMain, inet, transfers, hosts, scripts, {500, 500, 500}};
  modGeneral::ServerList servers{services, frmMain, inet, transfers, hosts, selection, scripts};
  web::NewsQuery news{services, frmMain, inet, transfers, hosts, selection, servers, scripts};
};

}  // namespace support
