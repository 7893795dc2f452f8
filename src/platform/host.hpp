#pragma once

#include "platform/clock.hpp"
#include "platform/dialogs.hpp"
#include "platform/event_loop.hpp"
#include "platform/http_client.hpp"
#include "platform/processes.hpp"
#include "platform/profile_files.hpp"
#include "platform/settings_store.hpp"
#include "platform/shell.hpp"

namespace platform {

// The seam to the machine. The owner of a Host outlives everything that was given a service of it.
struct Host {
  Clock& clock;
  EventLoop& events;
  Dialogs& dialogs;
  Processes& processes;
  Shell& shell;
  SettingsStore& settings;
  ProfileFiles& profiles;
  HttpClient& http;
};

}  // namespace platform
